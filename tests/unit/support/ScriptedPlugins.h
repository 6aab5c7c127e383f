// Plugins whose blocks and entry points are the test's own, in modules that the scripted loader knows; and a
// table that loads them.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "plugins/PluginTable.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

// The block is what the host sees; a call of an entry point comes out in the function of its name.
struct ScriptedPlugin {
    using Call = std::function<u32(PluginInfo&)>;

    ScriptedPlugin() { block.size = sizeof block; }
    ScriptedPlugin(const ScriptedPlugin&) = delete;
    ScriptedPlugin& operator=(const ScriptedPlugin&) = delete;

    void Named(i32 type, const char* name, const char* description = "") {
        block.type = type;
        block.name = name;
        block.description = description;
    }
    void On(PluginEntryPoint PluginInfo::*entryPoint, Call call);

    PluginInfo block{};
    Call init, exit, configure, run, about;
};

namespace detail {

// The block is the first member, so that its address is the plugin's.
template <ScriptedPlugin::Call ScriptedPlugin::*call>
u32 PLUGIN_CALL Enter(PluginInfo* info) {
    return (reinterpret_cast<ScriptedPlugin*>(info)->*call)(*info);
}

}  // namespace detail

inline void ScriptedPlugin::On(PluginEntryPoint PluginInfo::*entryPoint, Call call) {
    struct Row {
        PluginEntryPoint PluginInfo::*entryPoint;
        Call ScriptedPlugin::*call;
        PluginEntryPoint function;
    };
    const Row rows[] = {
        {&PluginInfo::Init, &ScriptedPlugin::init, &detail::Enter<&ScriptedPlugin::init>},
        {&PluginInfo::Exit, &ScriptedPlugin::exit, &detail::Enter<&ScriptedPlugin::exit>},
        {&PluginInfo::Configure, &ScriptedPlugin::configure, &detail::Enter<&ScriptedPlugin::configure>},
        {&PluginInfo::Run, &ScriptedPlugin::run, &detail::Enter<&ScriptedPlugin::run>},
        {&PluginInfo::About, &ScriptedPlugin::about, &detail::Enter<&ScriptedPlugin::about>}};
    for (const Row& row : rows) {
        if (row.entryPoint != entryPoint) continue;
        this->*row.call = std::move(call);
        block.*entryPoint = row.function;
    }
}

// "/v/Plugins" of a program "/v/vardelwatch", with up to eight modules that export a block.
class PluginFolder {
  public:
    static constexpr const char* kPath = "/v/Plugins/";

    explicit PluginFolder(TestServices& services) : services_(services) {
        services_.folders.programPath = "/v/vardelwatch";
        services_.folders.separator = '/';
    }
    // A module whose GetPluginInfo gives the plugin's block, in a folder below, if named.
    void Add(const std::string& file, ScriptedPlugin& plugin, const std::string& below = "") {
        blocks_[used_] = &plugin.block;
        AddExport(file, kGetters[used_++], below);
    }
    // A module that exports `getInfo`; one without the export when that is null.
    void AddExport(const std::string& file, GetPluginInfoFunction getInfo, const std::string& below = "") {
        const std::string folder = kPath + below;
        services_.modules.folders[folder].push_back({file, false});
        services_.modules.modules.insert(folder + file);
        if (getInfo)
            services_.modules.entryPoints[folder + file + "!GetPluginInfo"] =
                reinterpret_cast<void*>(getInfo);
    }
    void AddFolder(const std::string& name, bool isPlain = true) {
        services_.modules.folders[kPath].push_back({name, isPlain});
    }

  private:
    template <std::size_t slot>
    static PluginInfo* Get() {
        return blocks_[slot];
    }
    static inline std::array<PluginInfo*, 8> blocks_{};
    static constexpr GetPluginInfoFunction kGetters[] = {&Get<0>, &Get<1>, &Get<2>, &Get<3>,
                                                         &Get<4>, &Get<5>, &Get<6>, &Get<7>};

    TestServices& services_;
    std::size_t used_ = 0;
};

// The names of a walk, in its order.
template <class First, class Next>
std::vector<std::string> NamesOf(First first, Next next) {
    std::vector<std::string> names;
    for (LoadedPlugin* plugin = first(); plugin; plugin = next()) names.push_back(plugin->info.name);
    return names;
}
inline std::vector<std::string> NamesOf(PluginTable& table, i32 type = 0) {
    return NamesOf([&] { return table.FirstPlugin(type); }, [&] { return table.NextPlugin(); });
}
inline std::vector<std::string> ActiveNamesOf(PluginTable& table, i32 type) {
    return NamesOf([&] { return table.FirstActivePlugin(type); }, [&] { return table.NextActivePlugin(); });
}

// A table over that folder, and four plugins to fill it with.
class PluginHostTest : public testing::Test {
  protected:
    LoadedPlugin* Find(const std::string& name) {
        for (LoadedPlugin* plugin = table.FirstPlugin(0); plugin; plugin = table.NextPlugin())
            if (plugin->info.name == name) return plugin;
        return nullptr;
    }
    // Writes each call of the entry point down, as "name what".
    void Record(ScriptedPlugin& plugin, PluginEntryPoint PluginInfo::*entryPoint, const char* what) {
        plugin.On(entryPoint, [this, what](PluginInfo& info) {
            calls.push_back(std::string(info.name) + " " + what);
            return 1;
        });
    }

    test::TestServices system;
    PluginFolder folder{system};
    ScriptedPlugin one, two, three, four;
    std::vector<std::string> calls;
    PluginTable table{system.modules, system.folders};
};

}  // namespace vardel::test

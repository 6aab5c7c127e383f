#include "plugins/PluginTable.h"

#include <atomic>
#include <cstring>
#include <new>

#include "foundation/TcMD5.h"
#include "plugins/PluginCalls.h"

namespace vardel {

namespace {

constexpr const char* kFolderName = "Plugins";
constexpr std::size_t kPaddedText = 300;
constexpr std::size_t kIdText = 2 * kPaddedText;

std::string Padded(const char* text) {
    const std::string cut = text ? std::string(text, strnlen(text, kIdText)) : std::string();
    return cut.size() < kPaddedText ? std::string(kPaddedText - cut.size(), ' ') + cut : cut;
}

// Null where the module has no block, or one of another layout.
PluginInfo* BlockOf(GetPluginInfoFunction getInfo) {
    PluginInfo* block = nullptr;
    try {
        block = getInfo();
    } catch (...) {
        return nullptr;
    }
    if (!block || reinterpret_cast<std::uintptr_t>(block) % alignof(PluginInfo) != 0) return nullptr;
    return block->size == sizeof(PluginInfo) ? block : nullptr;
}

// The host's own fields start empty, whatever the plugin left there.
void TakeOver(PluginInfo& block, ModuleHandle module) {
    block.window = nullptr;
    block.module = module;
    block.data = nullptr;
    block.dataCount = 0;
}

// A plugin may be reading it in a call on another thread.
void WriteLanguage(PluginInfo& block, u32 id) {
    std::atomic_ref(block.language).store(id, std::memory_order_relaxed);
}

bool IsUpOrHere(const std::string& name) {
    return name == "." || name.size() <= 2;
}

}  // namespace

TcString PluginId(const char* name, const char* description) {
    const std::string text = (Padded(name) + Padded(description)).substr(0, kIdText);
    TcMD5 digest;
    digest.setPlainText(text.c_str());
    return digest.getMD5Digest();
}

LoadedPlugin::LoadedPlugin(PluginInfo* block, ModuleHandle itsModule)
    : info(*block), own(block), module(itsModule), id(PluginId(info.name, info.description)) {
    TakeOver(*own, module);
}

bool PluginTable::LoadPlugins() {
    const char separator = folders_.Separator();
    std::string folder = folders_.ProgramPath();
    folder.erase(folder.rfind(separator) + 1);  // a path without a separator goes whole
    LoadPluginFolder((folder + kFolderName + separator).c_str());
    return false;
}

bool PluginTable::LoadPluginFolder(const char* folder) {
    if (!folder || !*folder) return false;
    std::string prefix = folder;
    if (prefix.back() != folders_.Separator()) prefix += folders_.Separator();
    const std::vector<FolderEntry> hits = modules_.List(prefix, modules_.Ending());
    for (const FolderEntry& hit : hits) {
        if (!hit.isPlainFolder) LoadHit(prefix + hit.name);
        // Wanted: folders of other names don't come here at all and are left alone.
        else if (!IsUpOrHere(hit.name))
            LoadPluginFolder((prefix + hit.name).c_str());
    }
    return !hits.empty();
}

void PluginTable::LoadHit(const std::string& path) {
    const ModuleHandle module = modules_.Load(path.c_str());
    if (!module) return;
    void* const found = modules_.Find(module, PLUGIN_EXPORT_NAME);
    if (!found) {
        modules_.Free(module);
        return;
    }
    // Wanted: from here on the module stays loaded, also where it is no plugin of ours; it has run already.
    PluginInfo* const block = BlockOf(reinterpret_cast<GetPluginInfoFunction>(found));
    if (!block) return;
    try {
        Insert(std::make_unique<LoadedPlugin>(block, module));
    } catch (const std::bad_alloc&) {
        // As if it weren't there.
    }
}

void PluginTable::Insert(std::unique_ptr<LoadedPlugin> plugin) {
    LoadedPlugin& loaded = *plugin;
    {
        const std::lock_guard hold(guard_);
        owned_.push_back(std::move(plugin));
        records_.emplace(Key{loaded.info.type, loads_++}, &loaded);
    }
    // It stands in the table by now, but nobody's call reaches it before it has begun its life.
    InitPlugin(loaded);
    loaded.gate.Open();
}

bool PluginTable::UnloadPlugins(std::chrono::milliseconds timeout) {
    Records leaving;
    {
        const std::lock_guard hold(guard_);
        leaving.swap(records_);
        walks_.clear();
    }
    for (const auto& [key, plugin] : leaving) plugin->gate.Close();
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::vector<LoadedPlugin*> empty;
    for (const auto& [key, plugin] : leaving)
        if (plugin->gate.AwaitEmpty(deadline)) empty.push_back(plugin);
    for (LoadedPlugin* plugin : empty) {
        ExitPlugin(*plugin);
        modules_.Free(plugin->module);
    }
    return true;
}

LoadedPlugin* PluginTable::FirstPlugin(i32 type) {
    const std::lock_guard hold(guard_);
    return Begin(walks_[std::this_thread::get_id()].all, type, false);
}

LoadedPlugin* PluginTable::NextPlugin() {
    const std::lock_guard hold(guard_);
    Walk& walk = walks_[std::this_thread::get_id()].all;
    return walk.underWay ? Step(walk, records_.upper_bound(walk.last), false) : nullptr;
}

LoadedPlugin* PluginTable::FirstActivePlugin(i32 type) {
    const std::lock_guard hold(guard_);
    Walk& walk = walks_[std::this_thread::get_id()].active;
    walk.underWay = false;
    return type == 0 ? nullptr : Begin(walk, type, true);
}

LoadedPlugin* PluginTable::NextActivePlugin() {
    const std::lock_guard hold(guard_);
    Walk& walk = walks_[std::this_thread::get_id()].active;
    return walk.underWay ? Step(walk, records_.upper_bound(walk.last), true) : nullptr;
}

LoadedPlugin* PluginTable::Begin(Walk& walk, i32 type, bool onlyActive) {
    walk.type = type;
    walk.underWay = true;
    return Step(walk, type == 0 ? records_.begin() : records_.lower_bound(Key{type, 0}), onlyActive);
}

LoadedPlugin* PluginTable::Step(Walk& walk, Records::iterator from, bool onlyActive) {
    for (; from != records_.end() && (walk.type == 0 || from->first.first == walk.type); ++from) {
        if (onlyActive && !from->second->active) continue;
        walk.last = from->first;
        return from->second;
    }
    walk.underWay = false;
    return nullptr;
}

void PluginTable::SetPluginLanguage(u32 id) {
    std::vector<LoadedPlugin*> all;
    {
        const std::lock_guard hold(guard_);
        for (const auto& [key, plugin] : records_) all.push_back(plugin);
    }
    for (LoadedPlugin* plugin : all)
        if (const GatePass inside{plugin->gate}) WriteLanguage(*plugin->own, id);
}

}  // namespace vardel

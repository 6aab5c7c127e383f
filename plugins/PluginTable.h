// PluginTable: the loaded plugins, by type and in load order. Loads them once at start and unloads them at
// the end.
//
// A member of VardelData. Loading and unloading are the main thread's; walking, calling and the switches are
// any thread's. A LoadedPlugin* stays valid until the table ends, also after unloading: calls are then
// barred. Each thread has two walk positions of its own, one a pair of First and Next; a walk can't be nested
// in another on the same position.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/Shared.h"
#include "foundation/TcString.h"
#include "platform/Folders.h"
#include "platform/Modules.h"
#include "plugins/CallGate.h"
#include "plugins/plugin_interface.h"

namespace vardel {

// How long the end of the program waits for calls that are still inside plugins, all together.
constexpr std::chrono::milliseconds kUnloadTimeout{5000};

struct LoadedPlugin {
    LoadedPlugin(PluginInfo* block, ModuleHandle itsModule);
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    // As it was when the plugin was loaded: name, description, type and entry points are taken from here, so
    // that a plugin can't change them later.
    const PluginInfo info;
    // The plugin's own block, the argument of every call; receives window, data, data count and language.
    PluginInfo* const own;
    const ModuleHandle module;
    Shared<u8> active = 0;       // the user's switch
    Shared<u8> notifyArmed = 1;  // nothing takes it back: every active plugin of its type is told
    const TcString id;           // the same in every run, as long as name and description are
    CallGate gate;
};

// The identity of a plugin: the digest of both texts, each padded to 300 characters with leading blanks, cut
// at 600 together. Null counts as empty; no more than 600 characters of either are read.
TcString PluginId(const char* name, const char* description);

class PluginTable {
  public:
    PluginTable(Modules& modules, Folders& folders) : modules_(modules), folders_(folders) {}
    ~PluginTable() { UnloadPlugins(); }
    PluginTable(const PluginTable&) = delete;
    PluginTable& operator=(const PluginTable&) = delete;

    // Loads what lies in "Plugins" beside the program. Gives false, always.
    bool LoadPlugins();
    // Loads the modules in `folder`, and in folders whose own name ends as a module's does. False for a null
    // or empty text, or when the folder holds nothing of that ending. What is no plugin is passed over in
    // silence.
    bool LoadPluginFolder(const char* folder);
    // Ends all walks, bars calls, waits for those that are inside, then ends and frees plugin by plugin. A
    // module with a call still inside after `timeout` stays loaded, without its Exit. Gives true.
    bool UnloadPlugins(std::chrono::milliseconds timeout = kUnloadTimeout);

    // The first plugin of that type; with type 0 the first of all. Null at the end.
    LoadedPlugin* FirstPlugin(i32 type);
    LoadedPlugin* NextPlugin();
    // The same for plugins that are switched on; nothing with type 0.
    LoadedPlugin* FirstActivePlugin(i32 type);
    LoadedPlugin* NextActivePlugin();

    // Writes the language's id to every plugin's block.
    void SetPluginLanguage(u32 id);

  private:
    // Type, then the running number of the load.
    using Key = std::pair<i32, u32>;
    using Records = std::map<Key, LoadedPlugin*>;

    struct Walk {
        i32 type = 0;
        Key last{};
        bool underWay = false;
    };
    struct Walks {
        Walk all, active;
    };

    void LoadHit(const std::string& path);
    void Insert(std::unique_ptr<LoadedPlugin> plugin);
    // Begins or goes on, under the guard.
    LoadedPlugin* Begin(Walk& walk, i32 type, bool onlyActive);
    LoadedPlugin* Step(Walk& walk, Records::iterator from, bool onlyActive);

    Modules& modules_;
    Folders& folders_;
    std::mutex guard_;
    Records records_;
    std::map<std::thread::id, Walks> walks_;  // forgotten at unloading
    u32 loads_ = 0;
    // Also what is unloaded: a thread may hold its pointer.
    std::vector<std::unique_ptr<LoadedPlugin>> owned_;
};

}  // namespace vardel

#include "plugins/PluginStates.h"

namespace vardel {

namespace {

using Entry = GuardedRecord<PluginEntry>;

void InsertNew(PluginStateTable& states, const LoadedPlugin& plugin) {
    PluginEntry entry{};
    plugin.id.GetLeft(entry.name, sizeof entry.name, sizeof entry.name - 1);
    entry.active = plugin.active;
    entry.present = 1;
    states.Insert(plugin.id, std::make_unique<Entry>(entry));
}

// `visit(plugin, entry)` for every plugin; the entry is null where there is none. The whole walk is one stay,
// so that an entry that is replaced meanwhile isn't freed under it.
template <class Visit>
void ForEachPlugin(PluginTable& plugins, const PluginStateTable& states, Visit visit) {
    const ReadPin pin;
    for (LoadedPlugin* plugin = plugins.FirstPlugin(0); plugin; plugin = plugins.NextPlugin())
        visit(*plugin, states.FindValue(plugin->id));
}

}  // namespace

void MergePluginStates(PluginTable& plugins, PluginStateTable& states) {
    ForEachPlugin(plugins, states, [&](LoadedPlugin& plugin, Entry* entry) {
        if (!entry) return InsertNew(states, plugin);
        entry->Update([&](PluginEntry& record) {
            plugin.active = record.active;
            record.present = 1;
        });
    });
}

void RevertPluginStates(PluginTable& plugins, const PluginStateTable& states) {
    ForEachPlugin(plugins, states, [](LoadedPlugin& plugin, const Entry* entry) {
        if (entry) plugin.active = entry->Read().active;
    });
}

void StorePluginStates(PluginTable& plugins, PluginStateTable& states) {
    ForEachPlugin(plugins, states, [&](LoadedPlugin& plugin, Entry* entry) {
        if (!entry) return InsertNew(states, plugin);
        entry->Update([&](PluginEntry& record) { record.active = plugin.active; });
    });
}

}  // namespace vardel

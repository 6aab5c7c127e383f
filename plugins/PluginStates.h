// Which plugins are switched on, between the loaded plugins and the table of the settings. Main thread.
#pragma once

#include "plugins/PluginTable.h"
#include "settings/VardelSettings.h"

namespace vardel {

// At start: each plugin takes its switch from its entry, which is marked as present. A plugin that is new
// gets an entry and starts switched off. Plugins of one id share one entry.
void MergePluginStates(PluginTable& plugins, PluginStateTable& states);

// When the settings dialog ends without a save: each plugin takes its switch back from its entry.
void RevertPluginStates(PluginTable& plugins, const PluginStateTable& states);

// When it ends with a save: each entry takes its plugin's switch. A plugin without an entry gets one.
void StorePluginStates(PluginTable& plugins, PluginStateTable& states);

}  // namespace vardel

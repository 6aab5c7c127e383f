// The calls into a plugin, one a function, with what its block holds meanwhile.
//
// Every call is skipped once the plugin is being unloaded, and where the plugin has no such entry point. What
// a plugin throws ends here, and the call counts as done. A notification may be given on any thread; the
// others are the main thread's.
#pragma once

#include <string>
#include <vector>

#include "plugins/PluginTable.h"

namespace vardel {

// Once each, by the table. ExitPlugin goes in although the gate is closed.
void InitPlugin(LoadedPlugin& plugin);
void ExitPlugin(LoadedPlugin& plugin);

// The buttons of the plugin page. `window` is the page's handle. False when there was no call.
bool ConfigurePlugin(LoadedPlugin& plugin, void* window);
bool AboutPlugin(LoadedPlugin& plugin, void* window);

// Cut to what the fields hold, always terminated.
PluginHostText HostText(const TcString& ip, const TcString& mac, const TcString& hostName);

// The "Plugins" menu of the host view: types 2 and 99, no call for others. `window` is the view's handle.
bool RunPluginOnHost(LoadedPlugin& plugin, void* window, const PluginHostText& host);

struct PluginColumn {
    std::string title;
    i32 format;  // alignment, as the list control's column format
    i32 width;   // pixels
    i32 column;  // the plugin's own index, for the two calls below
};
// The columns that a plugin of type 99 defines.
std::vector<PluginColumn> DefinePluginColumns(LoadedPlugin& plugin);

// The cell of a host in one of them.
std::string PluginCellText(LoadedPlugin& plugin, i32 column, const PluginHostText& host);

// Negative, zero or positive. `flags` goes into the high 16 bits: 1 ascending, 0 descending.
i32 ComparePluginHosts(LoadedPlugin& plugin, i32 column, u16 flags, const PluginHostText& first,
                       const PluginHostText& second);

// Hands a notification to a plugin of type 3. Its data fields are left as they are afterwards; wanted.
bool NotifyPlugin(LoadedPlugin& plugin, PluginNotifyItem& item);

}  // namespace vardel

// The host view's context menu: which commands there are, how each stands for the host that was clicked, and what the
// submenus "Plugins" and "Applications" offer.
//
// Main thread. The submenus are made anew at each click, and their numbers mean nothing after it.
#pragma once

#include <vector>

#include "resources/MenuIds.h"
#include "views/HostCells.h"

namespace vardel {

enum HostCommand : u32 {
    kSetTrusted = IDM_SET_TRUSTED,
    kSetDistrusted = IDM_SET_DISTRUSTED,
    kSetUnknown = IDM_SET_UNKNOWN,
    kDeleteHosts = IDM_DELETE_HOSTS,
    kFilterTrusted = IDM_SHOW_TRUSTED,
    kFilterDistrusted = IDM_SHOW_DISTRUSTED,
    kFilterUnknown = IDM_SHOW_UNKNOWN,
    kOpenDevicePage = IDM_DEVICE_URL
};
constexpr u32 kFirstPluginCommand = IDM_PLUGIN_FIRST;
constexpr u32 kLastPluginCommand = IDM_PLUGIN_LAST;
constexpr u32 kFirstApplicationCommand = IDM_APPLICATION_FIRST;
constexpr u32 kLastApplicationCommand = IDM_APPLICATION_LAST;

struct HostMenuItem {
    u32 id;
    bool enabled;
    bool checked;
    bool operator==(const HostMenuItem&) const = default;
};

// `clicked` is null when the click hit no row.
std::vector<HostMenuItem> HostMenuItems(const VardelSettings& settings, const HostRecord* clicked);

struct PluginMenuEntry {
    u32 id;
    TcString text;
    LoadedPlugin* plugin;
};
// Plugins for the clicked host, then those with columns; only what is switched on, and what has a number.
std::vector<PluginMenuEntry> OfferPlugins(PluginTable& plugins);

struct ApplicationMenuEntry {
    u32 id;
    TcString text, executable, parameters;
};
std::vector<ApplicationMenuEntry> OfferApplications(const VardelSettings& settings);

// Which of the menus draws and measures an item, by its command.
enum class HostMenuPart { Context, Plugins, Applications, Filter, System };
HostMenuPart HostMenuPartOf(u32 id);

}  // namespace vardel

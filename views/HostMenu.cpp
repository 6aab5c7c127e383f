#include "views/HostMenu.h"

#include "views/HostActions.h"

namespace vardel {

namespace {

struct FilterItem {
    u32 id;
    TrustState trust;
    i32 bit;
};
constexpr FilterItem kFilterItems[] = {{kFilterTrusted, TrustState::Trusted, kShowTrusted},
                                       {kFilterDistrusted, TrustState::Distrusted, kShowDistrusted},
                                       {kFilterUnknown, TrustState::Unknown, kShowUnknown}};

constexpr u32 kRowCommands[] = {kSetTrusted, kSetDistrusted, kSetUnknown, kDeleteHosts};

struct IdRange {
    u32 first, last;
    HostMenuPart part;
};
constexpr IdRange kParts[] = {{kFirstPluginCommand, kLastPluginCommand, HostMenuPart::Plugins},
                              {kFirstApplicationCommand, kLastApplicationCommand, HostMenuPart::Applications},
                              {61440, 65535, HostMenuPart::System},
                              {kFilterTrusted, kFilterUnknown, HostMenuPart::Filter}};

void AddActivePlugins(std::vector<PluginMenuEntry>& offered, PluginTable& plugins, i32 type) {
    for (LoadedPlugin* plugin = plugins.FirstActivePlugin(type); plugin; plugin = plugins.NextActivePlugin()) {
        const u32 id = kFirstPluginCommand + static_cast<u32>(offered.size());
        if (id > kLastPluginCommand) return;
        offered.push_back({id, plugin->info.name ? plugin->info.name : "", plugin});
    }
}

}  // namespace

std::vector<HostMenuItem> HostMenuItems(const VardelSettings& settings, const HostRecord* clicked) {
    std::vector<HostMenuItem> items;
    for (const FilterItem& item : kFilterItems) {
        // Hidden trusted hosts aren't the filter's to show.
        const bool open = item.trust != TrustState::Trusted || !settings.ViewHideSecure;
        items.push_back({item.id, open, open && (settings.ViewFilterOptions & item.bit) != 0});
    }
    for (const u32 id : kRowCommands) items.push_back({id, clicked != nullptr, false});
    items.push_back({kOpenDevicePage, clicked && IsDevicePage(clicked->presentationUrl), false});
    return items;
}

std::vector<PluginMenuEntry> OfferPlugins(PluginTable& plugins) {
    std::vector<PluginMenuEntry> offered;
    AddActivePlugins(offered, plugins, PLUGIN_TYPE_VIEW);
    AddActivePlugins(offered, plugins, PLUGIN_TYPE_COLUMNS);
    return offered;
}

std::vector<ApplicationMenuEntry> OfferApplications(const VardelSettings& settings) {
    std::vector<ApplicationMenuEntry> offered;
    for (const ApplicationEntry& application : settings.applications.Read()) {
        const u32 id = kFirstApplicationCommand + static_cast<u32>(offered.size());
        if (id > kLastApplicationCommand) break;
        offered.push_back(
            {id, FieldText(application.name), FieldText(application.executable), FieldText(application.parameters)});
    }
    return offered;
}

HostMenuPart HostMenuPartOf(u32 id) {
    for (const IdRange& range : kParts)
        if (id >= range.first && id <= range.last) return range.part;
    return HostMenuPart::Context;
}

}  // namespace vardel

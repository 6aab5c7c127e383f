#include "views/HostColumns.h"

#include "plugins/PluginCalls.h"

namespace vardel {

namespace {

constexpr int kTitleSize = 260;
constexpr int kTrustWidth = 25;
// What a text leaves free beside it, and the place of an icon.
constexpr int kTextMargin = 16;
constexpr int kIconPlace = 24;

PluginHostText TextsOf(const HostRecord& host) { return HostText(host.ip, host.mac, host.hostName); }

void AddFixedColumns(std::vector<HostViewColumn>& columns, const VardelData& data, ModuleHandle language) {
    for (int i = 0; i < kHostColumns; ++i) {
        const auto fixed = static_cast<HostColumn>(i);
        if (!IsColumnShown(fixed, data.settings.VisibleColumns)) continue;
        char title[kTitleSize];
        data.services.strings.Load(language, FormOf(fixed).titleId, title, kTitleSize);
        columns.push_back({.title = title, .width = FormOf(fixed).width, .fixed = fixed});
    }
}

// The plugins first, then their columns: a plugin may have messages handled while it is asked, and a walk is one at a
// time.
void AddPluginColumns(std::vector<HostViewColumn>& columns, PluginTable& plugins) {
    std::vector<LoadedPlugin*> asked;
    for (LoadedPlugin* plugin = plugins.FirstActivePlugin(PLUGIN_TYPE_COLUMNS); plugin;
         plugin = plugins.NextActivePlugin())
        asked.push_back(plugin);
    for (LoadedPlugin* plugin : asked)
        for (const PluginColumn& defined : DefinePluginColumns(*plugin))
            columns.push_back({.title = defined.title,
                               .width = defined.width,
                               .format = defined.format,
                               .plugin = plugin,
                               .pluginColumn = defined.column});
}

}  // namespace

std::vector<HostViewColumn> HostViewColumns(VardelData& data, ModuleHandle language, const ColumnWidths& kept,
                                            int dpi) {
    std::vector<HostViewColumn> columns;
    AddFixedColumns(columns, data, language);
    AddPluginColumns(columns, data.plugins);
    for (HostViewColumn& column : columns) column.width = ScaledForDpi(column.width, dpi);
    if (data.settings.SaveColumnWidth)
        for (HostViewColumn& column : columns) column.width = kept.WidthOf(column.title, column.width);
    return columns;
}

std::string HostViewCellText(const HostViewColumn& column, const HostRecord& host, const VardelData& data,
                             ModuleHandle language) {
    if (column.plugin) return PluginCellText(*column.plugin, column.pluginColumn, TextsOf(host));
    return HostCellText(host, column.fixed, data, language).GetContent();
}

int HostViewCellIcon(const HostViewColumn& column, const HostRecord& host) {
    return column.plugin ? kNoIcon : HostCellIcon(host, column.fixed);
}

int CompareInColumn(const HostViewColumn& column, const HostRecord& first, const HostRecord& second, bool ascending) {
    if (column.plugin)
        return ComparePluginHosts(*column.plugin, column.pluginColumn, ascending ? 1 : 0, TextsOf(first),
                                  TextsOf(second));
    const int order = CompareHosts(first, second, column.fixed);
    return ascending ? order : -order;
}

int FittingWidth(const HostViewColumn& column, int widestText, int dpi) {
    if (!column.plugin && column.fixed == HostColumn::Trust) return ScaledForDpi(kTrustWidth, dpi);
    if (widestText <= 0) return kWidthOfHeader;
    const bool hasIcon = !column.plugin && column.fixed == HostColumn::Information;
    return widestText + ScaledForDpi(kTextMargin + (hasIcon ? kIconPlace : 0), dpi);
}

}  // namespace vardel

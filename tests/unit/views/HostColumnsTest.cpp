#include "views/HostColumns.h"

#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/ViewLan.h"

namespace vardel {
namespace {

struct HostColumnsTest : test::ViewLan {
    HostColumnsTest() { ShowAllColumns(); }
    // "TITLE WIDTH" of each column.
    std::vector<std::string> Titles() {
        std::vector<std::string> titles;
        for (const HostViewColumn& column : HostViewColumns(data, nullptr, kept))
            titles.push_back(column.title + " " + std::to_string(column.width));
        return titles;
    }
    // A plugin that defines columns of those titles.
    void Defines(std::vector<std::string> titles) {
        plugin.Named(PLUGIN_TYPE_COLUMNS, "plugin");
        plugin.On(&PluginInfo::Run, [titles](PluginInfo& info) {
            auto& call = *static_cast<PluginColumnCall*>(info.data);
            const auto at = static_cast<std::size_t>(call.column);
            if (call.command == PLUGIN_COLUMN_TEXT) {
                test::Put(call.text, titles[at] + " of " + call.host->ip);
                return 1u;
            }
            test::Put(call.text, titles[at]);
            call.width = 70 + call.column;
            call.format = 1;
            call.more = at + 1 < titles.size();
            return 1u;
        });
        folder.Add("plugin.so", plugin);
        data.plugins.LoadPlugins();
        data.plugins.FirstPlugin(0)->active = 1;
    }
    test::PluginFolder folder{system};
    test::ScriptedPlugin plugin;
    ColumnWidths kept;
};

TEST_F(HostColumnsTest, TheFixedOnesComeWithTitlesAndWidths) {
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100", "MAC - Address 100",
                                                  "Last received packet 80", "Hostname 200",
                                                  "Networkcard vendor 200", "Adv. informations 250"}));
}

TEST_F(HostColumnsTest, HiddenOnesAreNotThere) {
    data.settings.VisibleColumns = 101;
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100", "Hostname 200",
                                                  "Adv. informations 250"}));
}

TEST_F(HostColumnsTest, TitlesComeFromTheViewsLanguage) {
    int module = 0;
    HostViewColumns(data, reinterpret_cast<ModuleHandle>(&module), kept);
    EXPECT_EQ(system.strings.lastModule, reinterpret_cast<ModuleHandle>(&module));
}

TEST_F(HostColumnsTest, KeptWidthsCountOnlyWhileTheSettingSaysSo) {
    kept.Keep("Hostname", 333);
    data.settings.VisibleColumns = 100;
    EXPECT_EQ(Titles().back(), "Hostname 200");
    data.settings.SaveColumnWidth = 1;
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100", "Hostname 333"}));
}

TEST_F(HostColumnsTest, PluginsAddTheirColumnsBehindTheFixedOnes) {
    data.settings.VisibleColumns = 0;
    Defines({"One", "Two"});
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100", "One 70", "Two 71"}));
    const HostViewColumn column = HostViewColumns(data, nullptr, kept).back();
    EXPECT_EQ(column.format, 1);
    EXPECT_EQ(column.pluginColumn, 1);
    EXPECT_EQ(HostViewCellText(column, Knows("10.0.0.5"), data, nullptr), "Two of 10.0.0.5");
    EXPECT_EQ(HostViewCellIcon(column, Knows("10.0.0.6", TrustState::Trusted)), -1);
}

TEST_F(HostColumnsTest, APluginThatIsSwitchedOffHasNoColumns) {
    data.settings.VisibleColumns = 0;
    Defines({"One"});
    data.plugins.FirstPlugin(0)->active = 0;
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100"}));
}

TEST_F(HostColumnsTest, AWidthOfAPluginColumnSurvivesClosingTheView) {
    data.settings.VisibleColumns = 0;
    data.settings.SaveColumnWidth = 1;
    Defines({"One", "Two"});
    kept.Keep("Two", 12);
    EXPECT_EQ(Titles(), (std::vector<std::string>{"  25", "IP - Address 100", "One 70", "Two 12"}));
}

TEST_F(HostColumnsTest, CellsOfFixedColumnsAreTheHosts) {
    HostRecord& host = Knows("10.0.0.5", TrustState::Distrusted);
    EXPECT_EQ(HostViewCellText(Fixed(HostColumn::Ip), host, data, nullptr), "10.0.0.5");
    EXPECT_EQ(HostViewCellIcon(Fixed(HostColumn::Trust), host), 2);
}

TEST_F(HostColumnsTest, DirectionsTurnTheComparison) {
    HostRecord& nine = Knows("10.0.0.9");
    HostRecord& ten = Knows("10.0.0.10");
    EXPECT_LT(CompareInColumn(Fixed(HostColumn::Ip), nine, ten, true), 0);
    EXPECT_GT(CompareInColumn(Fixed(HostColumn::Ip), nine, ten, false), 0);
}

TEST(FittingWidths, FollowTheWidestText) {
    const auto fixed = [](HostColumn column) { return HostViewColumn{.title = "", .width = 0, .fixed = column}; };
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Trust), 99), 25);
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Trust), 0), 25);
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Name), 50), 66);
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Information), 50), 90);
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Name), 0), kWidthOfHeader);
    EXPECT_EQ(FittingWidth(fixed(HostColumn::Information), 0), kWidthOfHeader);
    LoadedPlugin* const plugin = reinterpret_cast<LoadedPlugin*>(8);
    EXPECT_EQ(FittingWidth({.title = "", .width = 0, .plugin = plugin}, 50), 66);
}

}  // namespace
}  // namespace vardel

#include "views/HostRows.h"

#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/ViewLan.h"

namespace vardel {
namespace {

struct HostRowsTest : test::ViewLan {};

TEST_F(HostRowsTest, AFirstRefreshFillsTheViewByGroups) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2", TrustState::Distrusted);
    Knows("10.0.0.3");
    const RowChanges changes = Refresh();
    EXPECT_EQ(Shown(), "10.0.0.1:1 10.0.0.2:2 10.0.0.3:3");
    EXPECT_EQ(changes.firstInserted, 0);
    EXPECT_TRUE(changes.removed.empty());
    EXPECT_EQ(changes.hosts, 3u);
}

TEST_F(HostRowsTest, NothingNewIsNothingToDo) {
    Knows("10.0.0.1");
    Refresh();
    const RowChanges changes = Refresh();
    EXPECT_FALSE(changes.ChangeRows(rows.Count()));
    EXPECT_FALSE(changes.repaint);
    EXPECT_EQ(changes.hosts, 1u);
}

TEST_F(HostRowsTest, NewHostsJoinAtTheEndWithoutARepaint) {
    Knows("10.0.0.9");
    Refresh();
    HostRecord& fresh = Knows("10.0.0.1", TrustState::Trusted);
    fresh.rowDirty = 1;
    const RowChanges changes = Refresh();
    EXPECT_EQ(Shown(), "10.0.0.9:3 10.0.0.1:1");
    EXPECT_EQ(changes.firstInserted, 1);
    EXPECT_FALSE(changes.repaint);
    EXPECT_TRUE(fresh.rowDirty) << "a row that was not there has not been looked at";
}

TEST_F(HostRowsTest, AFrameFromAHostAsksForARepaintOnce) {
    HostRecord& host = Knows("10.0.0.1");
    Refresh();
    host.rowDirty = 1;
    EXPECT_TRUE(Refresh().repaint);
    EXPECT_FALSE(host.rowDirty);
    EXPECT_FALSE(Refresh().repaint);
}

TEST_F(HostRowsTest, TheFilterTakesRowsAwayAndBringsThemBack) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2", TrustState::Distrusted);
    Knows("10.0.0.3");
    Refresh();
    data.settings.ViewFilterOptions = kShowDistrusted;
    RowChanges changes = Refresh();
    EXPECT_EQ(changes.removed, (std::vector<int>{2, 0})) << "from the bottom, so that numbers hold";
    EXPECT_EQ(Shown(), "10.0.0.2:2");
    EXPECT_EQ(changes.hosts, 3u);
    data.settings.ViewFilterOptions = 7;
    changes = Refresh();
    EXPECT_EQ(changes.firstInserted, 1);
    EXPECT_EQ(Shown(), "10.0.0.2:2 10.0.0.1:1 10.0.0.3:3");
}

TEST_F(HostRowsTest, HiddenTrustedHostsStillCount) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2");
    data.settings.ViewHideSecure = 1;
    EXPECT_EQ(Refresh().hosts, 2u);
    EXPECT_EQ(Shown(), "10.0.0.2:3");
}

TEST_F(HostRowsTest, ATrustChangeMadeAnywhereMovesTheRowToItsGroup) {
    Knows("10.0.0.1");
    HostRecord& host = Knows("10.0.0.2");
    Refresh();
    host.trustState = TrustState::Distrusted;
    const RowChanges changes = Refresh();
    ASSERT_EQ(changes.regrouped.size(), 1u);
    EXPECT_EQ(changes.regrouped[0].row, 1);
    EXPECT_EQ(changes.regrouped[0].group, 2);
    EXPECT_EQ(Shown(), "10.0.0.1:3 10.0.0.2:2");
    EXPECT_FALSE(changes.repaint);
}

TEST_F(HostRowsTest, NewGroupsAreToldByTheNumbersAfterRemoval) {
    HostRecord& first = Knows("10.0.0.1", TrustState::Trusted);
    HostRecord& second = Knows("10.0.0.2");
    Refresh();
    data.settings.ViewFilterOptions = kShowDistrusted | kShowUnknown;
    second.trustState = TrustState::Distrusted;
    const RowChanges changes = Refresh();
    EXPECT_EQ(changes.removed, std::vector<int>{0});
    ASSERT_EQ(changes.regrouped.size(), 1u);
    EXPECT_EQ(changes.regrouped[0].row, 0);
    EXPECT_EQ(rows.RowOf(first), -1);
    EXPECT_EQ(Shown(), "10.0.0.2:2");
}

TEST_F(HostRowsTest, AStaleHostGoesGreyAndAFrameBringsItBack) {
    data.settings.GreyedOutOldEntries = 1;
    data.settings.ViewGrayTime = 2;
    HostRecord& host = Knows("10.0.0.1");
    host.lastSeen = now - 120;
    Refresh();
    EXPECT_FALSE(Refresh().repaint);
    EXPECT_FALSE(host.greyedOut);
    ++now;
    EXPECT_TRUE(Refresh().repaint);
    EXPECT_TRUE(host.greyedOut);
    EXPECT_EQ(HostCellIcon(host, HostColumn::Trust), 5);
    EXPECT_FALSE(Refresh().repaint) << "it is grey already";
    host.greyedOut = 0;  // as the frame's handler does
    host.lastSeen = now;
    host.rowDirty = 1;
    EXPECT_TRUE(Refresh().repaint);
    EXPECT_FALSE(Refresh().repaint);
    EXPECT_FALSE(host.greyedOut);
}

TEST_F(HostRowsTest, AHostThatWasNeverSeenIsNotStale) {
    data.settings.GreyedOutOldEntries = 1;
    HostRecord& host = Knows("10.0.0.1");
    Refresh();
    EXPECT_FALSE(Refresh().repaint);
    EXPECT_FALSE(host.greyedOut);
}

TEST_F(HostRowsTest, GreyRowsClearOnceTheSettingIsOff) {
    HostRecord& host = Knows("10.0.0.1");
    host.greyedOut = 1;
    Refresh();
    EXPECT_TRUE(Refresh().repaint);
    EXPECT_FALSE(host.greyedOut);
}

TEST_F(HostRowsTest, AFrameKeepsTheLookAtTheTimeForTheNextRefresh) {
    data.settings.GreyedOutOldEntries = 1;
    data.settings.ViewGrayTime = 1;
    HostRecord& host = Knows("10.0.0.1");
    host.lastSeen = now - 1000;
    Refresh();
    host.rowDirty = 1;
    Refresh();
    EXPECT_FALSE(host.greyedOut);
    Refresh();
    EXPECT_TRUE(host.greyedOut);
}

TEST_F(HostRowsTest, HoldsTheFenceOnlyWhileItWalks) {
    Knows("10.0.0.1");
    Refresh();
    EXPECT_EQ(SystemEvents().Wait(data.fences.Handle(Fence::ArpMap), 0), WaitResult::Signalled);
}

TEST_F(HostRowsTest, ARecordOfNothingIsPassedOver) {
    EXPECT_TRUE(data.arpMap.Insert("10.0.0.1", nullptr));
    EXPECT_EQ(Refresh().hosts, 1u);
    EXPECT_EQ(rows.Count(), 0);
}

TEST_F(HostRowsTest, ClosingForgetsEveryRow) {
    HostRecord& host = Knows("10.0.0.1");
    Refresh();
    rows.Clear();
    EXPECT_EQ(rows.RowOf(host), -1);
    EXPECT_EQ(rows.Count(), 0);
    Refresh();
    EXPECT_EQ(Shown(), "10.0.0.1:3");
}

TEST_F(HostRowsTest, SortingByAddressPutsNineAheadOfTen) {
    for (const char* ip : {"10.0.0.10", "10.0.0.9", "9.255.0.1", "10.0.0.100"}) Knows(ip);
    Refresh();
    EXPECT_EQ(rows.Sort(Fixed(HostColumn::Ip), true), (std::vector<u32>{2, 1, 0, 3})) << "old numbers in new order";
    EXPECT_EQ(Shown(), "9.255.0.1:3 10.0.0.9:3 10.0.0.10:3 10.0.0.100:3");
    EXPECT_EQ(rows.Sort(Fixed(HostColumn::Ip), false), (std::vector<u32>{3, 2, 1, 0}));
    EXPECT_EQ(Shown(), "10.0.0.100:3 10.0.0.10:3 10.0.0.9:3 9.255.0.1:3");
}

TEST_F(HostRowsTest, TheSortIsNotKeptUp) {
    Knows("10.0.0.2");
    Refresh();
    rows.Sort(Fixed(HostColumn::Ip), true);
    Knows("10.0.0.1");
    Refresh();
    EXPECT_EQ(Shown(), "10.0.0.2:3 10.0.0.1:3");
}

TEST_F(HostRowsTest, EachFixedColumnSortsAsItsComparisonSays) {
    for (int i = 0; i < 40; ++i) {
        HostRecord& host = Knows("10.0." + std::to_string(i * 7 % 13) + "." + std::to_string(i * 11 % 17 + i));
        host.trustState = static_cast<TrustState>(i % 3);
        host.mac = ("0" + std::to_string(i * 5 % 7)).c_str();
        host.lastSeenText = std::to_string(i * 3 % 11).c_str();
        host.hostName = std::string(1, static_cast<char>((i % 2 ? 'A' : 'a') + i * 9 % 19)).c_str();
        host.vendor = std::string(1, static_cast<char>((i % 2 ? 'z' : 'Z') - i % 9)).c_str();
        host.wmiOsKnown = i % 4 == 0;
    }
    Refresh();
    for (int column = 0; column < kHostColumns; ++column)
        for (const bool ascending : {true, false}) {
            const HostViewColumn by = Fixed(static_cast<HostColumn>(column));
            rows.Sort(by, ascending);
            for (int row = 1; row < rows.Count(); ++row)
                EXPECT_LE(CompareInColumn(by, *rows.HostAt(row - 1), *rows.HostAt(row), ascending), 0)
                    << column << " " << row;
        }
}

TEST_F(HostRowsTest, EqualRowsKeepTheirOrder) {
    for (const char* ip : {"10.0.0.3", "10.0.0.1", "10.0.0.2"}) Knows(ip);
    Refresh();
    rows.Sort(Fixed(HostColumn::Vendor), true);
    EXPECT_EQ(Shown(), "10.0.0.3:3 10.0.0.1:3 10.0.0.2:3");
    rows.Sort(Fixed(HostColumn::Vendor), false);
    EXPECT_EQ(Shown(), "10.0.0.3:3 10.0.0.1:3 10.0.0.2:3");
}

// Rows sorted by what a plugin answers.
struct PluginSortTest : HostRowsTest {
    using Order = std::function<i32(const PluginColumnCall&)>;
    HostViewColumn ColumnOf(Order answer) {
        plugin.Named(PLUGIN_TYPE_COLUMNS, "plugin");
        plugin.On(&PluginInfo::Run, [answer](PluginInfo& info) {
            auto& call = *static_cast<PluginColumnCall*>(info.data);
            call.order = answer(call);
            return 1;
        });
        folder.Add("plugin.so", plugin);
        data.plugins.LoadPlugins();
        return {.title = "own", .width = 10, .plugin = data.plugins.FirstPlugin(0), .pluginColumn = 4};
    }
    test::PluginFolder folder{system};
    test::ScriptedPlugin plugin;
};

TEST_F(PluginSortTest, ThePluginOrdersItsColumnInTheDirectionItIsTold) {
    for (const char* ip : {"10.0.0.2", "10.0.0.3", "10.0.0.1"}) Knows(ip);
    Refresh();
    std::vector<i32> asked;
    const HostViewColumn column = ColumnOf([&](const PluginColumnCall& call) {
        asked.push_back(call.order);
        const int order = strcmp(call.firstHost->ip, call.secondHost->ip);
        return call.order >> 16 ? order : -order;
    });
    rows.Sort(column, true);
    EXPECT_EQ(Shown(), "10.0.0.1:3 10.0.0.2:3 10.0.0.3:3");
    EXPECT_EQ(asked.at(0), (1 << 16) | 4);
    asked.clear();
    rows.Sort(column, false);
    EXPECT_EQ(Shown(), "10.0.0.3:3 10.0.0.2:3 10.0.0.1:3");
    EXPECT_EQ(asked.at(0), 4);
}

TEST_F(PluginSortTest, AnswersThatContradictEachOtherEndAllTheSame) {
    for (int i = 1; i <= 100; ++i) Knows("10.0.0." + std::to_string(i));
    Refresh();
    u32 state = 1;
    rows.Sort(ColumnOf([&](const PluginColumnCall&) {
                  state = state * 1664525u + 1013904223u;
                  return static_cast<i32>(state >> 30) - 1;
              }),
              true);
    std::vector<bool> met(101);
    for (int row = 0; row < rows.Count(); ++row) {
        const TcString ip(rows.HostAt(row)->ip);
        met[static_cast<std::size_t>(std::atoi(ip.GetContent() + 7))] = true;
    }
    EXPECT_EQ(std::count(met.begin(), met.end(), true), 100);
    rows.Sort(ColumnOf([](const PluginColumnCall&) { return -1; }), true);
    EXPECT_EQ(rows.Count(), 100);
}

TEST_F(PluginSortTest, ASortDuringWhichRowsChangeIsDropped) {
    Knows("10.0.0.2");
    Knows("10.0.0.1");
    Refresh();
    bool joined = false;
    const HostViewColumn column = ColumnOf([&](const PluginColumnCall& call) {
        if (!joined) {
            joined = true;
            Knows("10.0.0.3");
            Refresh();  // as a timer does while the plugin shows a window
        }
        return strcmp(call.firstHost->ip, call.secondHost->ip);
    });
    EXPECT_TRUE(rows.Sort(column, true).empty());
    EXPECT_EQ(Shown(), "10.0.0.2:3 10.0.0.1:3 10.0.0.3:3");
    EXPECT_EQ(rows.Sort(column, true), (std::vector<u32>{1, 0, 2}));
    EXPECT_EQ(Shown(), "10.0.0.1:3 10.0.0.2:3 10.0.0.3:3");
}

}  // namespace
}  // namespace vardel

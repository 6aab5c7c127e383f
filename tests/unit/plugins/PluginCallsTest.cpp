#include "plugins/PluginCalls.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "plugins/PluginNotifyQueue.h"
#include "tests/unit/support/ScriptedPlugins.h"

namespace vardel {
namespace {

using test::PluginFolder;
using test::ScriptedPlugin;

class PluginCallsTest : public testing::Test {
  protected:
    LoadedPlugin& Load(i32 type) {
        scripted.Named(type, "plugin");
        folder.Add("plugin.so", scripted);
        table.LoadPlugins();
        return *table.FirstPlugin(0);
    }
    void ExpectCleared() const {
        EXPECT_EQ(scripted.block.window, nullptr);
        EXPECT_EQ(scripted.block.data, nullptr);
        EXPECT_EQ(scripted.block.dataCount, 0u);
    }
    void OnRun(ScriptedPlugin::Call call) { scripted.On(&PluginInfo::Run, std::move(call)); }
    void OnColumnCall(std::function<u32(PluginColumnCall&)> answer) {
        OnRun([this, answer](PluginInfo& info) {
            EXPECT_EQ(info.dataCount, 1u);
            EXPECT_EQ(info.window, nullptr);
            return answer(*static_cast<PluginColumnCall*>(info.data));
        });
    }

    test::TestServices system;
    PluginFolder folder{system};
    ScriptedPlugin scripted;
    PluginTable table{system.modules, system.folders};
    int windowStandIn = 0;
    void* const window = &windowStandIn;
    const PluginHostText host = HostText("10.0.0.5", "02:00:00:00:00:05", "nas");
    const PluginHostText other = HostText("10.0.0.6", "02:00:00:00:00:06", "printer");
};

TEST(PluginHost, TextsAreZeroFilledCutAndTerminated) {
    const TcString longText(std::string(400, 'x').c_str());
    const PluginHostText host = HostText("10.0.0.5", "", longText);
    EXPECT_STREQ(host.ip, "10.0.0.5");
    for (const char octet : host.mac) EXPECT_EQ(octet, 0);
    EXPECT_EQ(std::string(host.hostName), std::string(299, 'x'));
    for (std::size_t at = 8; at < sizeof host.ip; ++at) EXPECT_EQ(host.ip[at], 0);
    EXPECT_EQ(host.zero, 0u);
}

// The buttons

TEST_F(PluginCallsTest, ConfigureAndAboutSeeTheWindowForTheTimeOfTheCall) {
    std::vector<void*> seen;
    const auto look = [&](PluginInfo& info) {
        EXPECT_EQ(&info, &scripted.block);
        EXPECT_EQ(info.data, nullptr);
        seen.push_back(info.window);
        return 1;
    };
    scripted.On(&PluginInfo::Configure, look);
    scripted.On(&PluginInfo::About, look);
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_ALERT);
    EXPECT_TRUE(ConfigurePlugin(plugin, window));
    ExpectCleared();
    EXPECT_TRUE(AboutPlugin(plugin, window));  // whether it is switched on or not
    ExpectCleared();
    EXPECT_EQ(seen, (std::vector<void*>{window, window}));
}

TEST_F(PluginCallsTest, AMissingEntryPointIsNotCalledOnAnyPath) {
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_COLUMNS);
    EXPECT_FALSE(ConfigurePlugin(plugin, window));
    EXPECT_FALSE(AboutPlugin(plugin, window));
    EXPECT_FALSE(RunPluginOnHost(plugin, window, host));
    EXPECT_TRUE(DefinePluginColumns(plugin).empty());
    EXPECT_EQ(PluginCellText(plugin, 0, host), "");
    EXPECT_EQ(ComparePluginHosts(plugin, 3, 1, host, other), 0);
    EXPECT_NE(table.FirstPlugin(PLUGIN_TYPE_COLUMNS), nullptr);
}

TEST_F(PluginCallsTest, ANotificationPluginWithoutRunIsNotCalled) {
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 3);
    EXPECT_FALSE(NotifyPlugin(plugin, *item));
    ExpectCleared();
}

TEST_F(PluginCallsTest, WhatAButtonThrowsEndsThereAndTheWindowIsCleared) {
    scripted.On(&PluginInfo::Configure, [](PluginInfo&) -> u32 { throw std::runtime_error("configure"); });
    scripted.On(&PluginInfo::About, [](PluginInfo&) -> u32 { throw 1; });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_ALERT);
    EXPECT_TRUE(ConfigurePlugin(plugin, window));
    ExpectCleared();
    EXPECT_TRUE(AboutPlugin(plugin, window));
    ExpectCleared();
}

// The menu

TEST_F(PluginCallsTest, AViewPluginGetsTheTextsOfTheClickedHost) {
    int runs = 0;
    OnRun([&](PluginInfo& info) {
        EXPECT_EQ(info.window, window);
        EXPECT_EQ(info.dataCount, 1u);
        const auto& texts = *static_cast<const PluginHostText*>(info.data);
        EXPECT_STREQ(texts.ip, "10.0.0.5");
        EXPECT_STREQ(texts.mac, "02:00:00:00:00:05");
        EXPECT_STREQ(texts.hostName, "nas");
        return ++runs;
    });
    EXPECT_TRUE(RunPluginOnHost(Load(PLUGIN_TYPE_VIEW), window, host));
    EXPECT_EQ(runs, 1);
    ExpectCleared();
}

TEST_F(PluginCallsTest, AColumnsPluginGetsTheMenuCommand) {
    int runs = 0;
    OnRun([&](PluginInfo& info) {
        EXPECT_EQ(info.window, window);
        const auto& call = *static_cast<const PluginColumnCall*>(info.data);
        EXPECT_EQ(call.command, static_cast<u32>(PLUGIN_COLUMN_MENU));
        EXPECT_STREQ(call.host->ip, "10.0.0.5");
        EXPECT_EQ(call.firstHost, nullptr);
        return ++runs;
    });
    EXPECT_TRUE(RunPluginOnHost(Load(PLUGIN_TYPE_COLUMNS), window, host));
    EXPECT_EQ(runs, 1);
    ExpectCleared();
}

TEST_F(PluginCallsTest, WhatAMenusRunThrowsEndsThere) {
    OnRun([](PluginInfo&) -> u32 { throw std::runtime_error("run"); });
    EXPECT_TRUE(RunPluginOnHost(Load(PLUGIN_TYPE_VIEW), window, host));
    ExpectCleared();
}

class PluginOfAnotherType : public PluginCallsTest, public testing::WithParamInterface<i32> {};

TEST_P(PluginOfAnotherType, IsNeverRun) {
    OnRun([](PluginInfo&) -> u32 {
        ADD_FAILURE() << "was run";
        return 0;
    });
    LoadedPlugin& plugin = Load(GetParam());
    plugin.active = 1;
    EXPECT_FALSE(RunPluginOnHost(plugin, window, host));
    EXPECT_TRUE(DefinePluginColumns(plugin).empty());
    EXPECT_EQ(PluginCellText(plugin, 0, host), "");
    EXPECT_EQ(ComparePluginHosts(plugin, 0, 1, host, other), 0);
    EXPECT_FALSE(NotifyPlugin(plugin, *MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 1)));
}
INSTANTIATE_TEST_SUITE_P(Types, PluginOfAnotherType, testing::Values(PLUGIN_TYPE_ALERT, 0, 4, 98, 100, -1));

// Columns

TEST_F(PluginCallsTest, ColumnsAreDefinedOneByOneUntilNoMoreFollow) {
    std::vector<i32> asked;
    OnColumnCall([&](PluginColumnCall& call) {
        EXPECT_EQ(call.command, static_cast<u32>(PLUGIN_COLUMN_DEFINE));
        asked.push_back(call.column);
        std::snprintf(call.text, sizeof call.text, "Column %d", call.column);
        call.format = call.column;
        call.width = 100 + call.column;
        call.more = call.column < 2;
        return 1;
    });
    const std::vector<PluginColumn> columns = DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS));
    EXPECT_EQ(asked, (std::vector<i32>{0, 1, 2}));
    ASSERT_EQ(columns.size(), 3u);
    for (i32 at = 0; at < 3; ++at) {
        const PluginColumn& column = columns[static_cast<std::size_t>(at)];
        EXPECT_EQ(column.title, "Column " + std::to_string(at));
        EXPECT_EQ(column.format, at);
        EXPECT_EQ(column.width, 100 + at);
        EXPECT_EQ(column.column, at);
    }
    ExpectCleared();
}

TEST_F(PluginCallsTest, AResultOfZeroEndsTheColumns) {
    OnColumnCall([](PluginColumnCall& call) {
        std::strcpy(call.text, "Title");
        call.more = 1;
        return call.column < 1;
    });
    EXPECT_EQ(DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS)).size(), 1u);
}

TEST_F(PluginCallsTest, AnEmptyTitleIsAskedForAgainWithTheSameIndexAndNoLimit) {
    constexpr int kManyCalls = 100'000;
    int calls = 0;
    OnColumnCall([&](PluginColumnCall& call) {
        EXPECT_EQ(call.column, 0);
        if (++calls == kManyCalls) std::strcpy(call.text, "At last");
        return 1;
    });
    const std::vector<PluginColumn> columns = DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS));
    EXPECT_EQ(calls, kManyCalls);
    ASSERT_EQ(columns.size(), 1u);
    EXPECT_EQ(columns[0].title, "At last");
}

TEST_F(PluginCallsTest, TheTextStaysBetweenTheCalls) {
    OnColumnCall([](PluginColumnCall& call) {
        if (call.column == 0) std::strcpy(call.text, "Kept");
        call.more = call.column == 0;
        return 1;
    });
    const std::vector<PluginColumn> columns = DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS));
    ASSERT_EQ(columns.size(), 2u);
    EXPECT_EQ(columns[1].title, "Kept");
}

TEST_F(PluginCallsTest, NinetyNineColumnsAreTheMost) {
    OnColumnCall([](PluginColumnCall& call) {
        std::strcpy(call.text, "Title");
        call.more = 1;
        return 1;
    });
    const std::vector<PluginColumn> columns = DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS));
    ASSERT_EQ(columns.size(), 99u);
    EXPECT_EQ(columns.back().column, 98);
}

TEST_F(PluginCallsTest, AnIndexThatThePluginMovesFarAwayEndsTheColumns) {
    OnColumnCall([](PluginColumnCall& call) {
        std::strcpy(call.text, "Title");
        call.more = 1;
        call.column = 2147483647;
        return 1;
    });
    EXPECT_EQ(DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS)).size(), 1u);
}

TEST_F(PluginCallsTest, ATitleWithoutATerminatorEndsWithItsField) {
    OnColumnCall([](PluginColumnCall& call) {
        std::memset(call.text, 'x', sizeof call.text);
        return 1;
    });
    const std::vector<PluginColumn> columns = DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS));
    ASSERT_EQ(columns.size(), 1u);
    EXPECT_EQ(columns[0].title, std::string(300, 'x'));
}

TEST_F(PluginCallsTest, AnExceptionEndsTheColumns) {
    OnColumnCall([](PluginColumnCall& call) -> u32 {
        if (call.column == 1) throw 1;
        std::strcpy(call.text, "Title");
        call.more = 1;
        return 1;
    });
    EXPECT_EQ(DefinePluginColumns(Load(PLUGIN_TYPE_COLUMNS)).size(), 1u);
    ExpectCleared();
}

TEST_F(PluginCallsTest, ACellIsWhatThePluginWritesForTheRowsHost) {
    OnColumnCall([](PluginColumnCall& call) {
        EXPECT_EQ(call.command, static_cast<u32>(PLUGIN_COLUMN_TEXT));
        EXPECT_EQ(call.text[0], 0);
        std::snprintf(call.text, sizeof call.text, "%d of %.20s", call.column, call.host->hostName);
        return 0;  // counts for nothing here
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_COLUMNS);
    EXPECT_EQ(PluginCellText(plugin, 4, host), "4 of nas");
    EXPECT_EQ(PluginCellText(plugin, 5, other), "5 of printer");
    ExpectCleared();
}

TEST_F(PluginCallsTest, ACellWithoutATerminatorEndsWithItsField) {
    OnColumnCall([](PluginColumnCall& call) {
        std::memset(call.text, 'x', sizeof call.text);
        return 1;
    });
    EXPECT_EQ(PluginCellText(Load(PLUGIN_TYPE_COLUMNS), 0, host), std::string(300, 'x'));
}

TEST_F(PluginCallsTest, AComparisonGivesTheOrderFieldBack) {
    OnColumnCall([](PluginColumnCall& call) {
        EXPECT_EQ(call.command, static_cast<u32>(PLUGIN_COLUMN_COMPARE));
        EXPECT_EQ(call.host, nullptr);
        EXPECT_EQ(call.order & 0xffff, 3);
        const bool ascending = call.order >> 16 == 1;
        const int order = std::strcmp(call.firstHost->ip, call.secondHost->ip);
        call.order = ascending ? order : -order;
        return 0;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_COLUMNS);
    EXPECT_LT(ComparePluginHosts(plugin, 3, 1, host, other), 0);
    EXPECT_GT(ComparePluginHosts(plugin, 3, 0, host, other), 0);
    EXPECT_EQ(ComparePluginHosts(plugin, 3, 1, host, host), 0);
    ExpectCleared();
}

TEST_F(PluginCallsTest, TheOrderFieldHoldsTheFlagsAboveTheIndex) {
    std::vector<i32> orders;
    OnColumnCall([&](PluginColumnCall& call) {
        orders.push_back(call.order);
        return 1;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_COLUMNS);
    ComparePluginHosts(plugin, 2, 1, host, other);
    ComparePluginHosts(plugin, 0x12345, 0x8000, host, other);
    EXPECT_EQ(orders, (std::vector<i32>{0x10002, static_cast<i32>(0x80002345u)}));
}

TEST_F(PluginCallsTest, ACallInsideACallGivesTheOuterOneItsDataBack) {
    LoadedPlugin* loaded = nullptr;
    OnRun([&](PluginInfo& info) -> u32 {
        const auto* call = static_cast<PluginColumnCall*>(info.data);
        if (call->command != PLUGIN_COLUMN_MENU) return 1;
        PluginCellText(*loaded, 0, other);  // its own window lets the list be painted
        EXPECT_EQ(info.data, call);
        EXPECT_EQ(info.dataCount, 1u);
        EXPECT_EQ(info.window, window);
        return 1;
    });
    loaded = &Load(PLUGIN_TYPE_COLUMNS);
    EXPECT_TRUE(RunPluginOnHost(*loaded, window, host));
    ExpectCleared();
}

// Notifications

TEST_F(PluginCallsTest, ANotificationIsLeftInPlaceAfterTheCall) {
    OnRun([](PluginInfo& info) {
        EXPECT_EQ(info.dataCount, 1u);
        EXPECT_EQ(static_cast<PluginNotifyItem*>(info.data)->count, 7u);
        return 1;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 7);
    EXPECT_TRUE(NotifyPlugin(plugin, *item));
    EXPECT_EQ(scripted.block.data, item.get());
    EXPECT_EQ(scripted.block.dataCount, 1u);
    EXPECT_EQ(scripted.block.window, nullptr);
}

TEST_F(PluginCallsTest, WhatANotificationThrowsEndsThere) {
    OnRun([](PluginInfo&) -> u32 { throw std::runtime_error("notify"); });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    EXPECT_TRUE(NotifyPlugin(plugin, *MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 7)));
}

}  // namespace
}  // namespace vardel

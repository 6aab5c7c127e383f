#include <gtest/gtest.h>

#include <thread>

#include "plugins/PluginTable.h"
#include "tests/unit/support/ScriptedPlugins.h"

namespace vardel {
namespace {

using test::ActiveNamesOf;
using test::NamesOf;
using test::ScriptedPlugin;
using Names = std::vector<std::string>;

class PluginWalk : public test::PluginHostTest {
  protected:
    PluginWalk() {
        one.Named(99, "columns");
        two.Named(2, "first view");
        three.Named(3, "notify");
        four.Named(2, "second view");
        folder.Add("a.so", one);
        folder.Add("b.so", two);
        folder.Add("c.so", three);
        folder.Add("d.so", four);
        table.LoadPlugins();
    }
};

TEST_F(PluginWalk, IsOrderedByTypeAndThenByLoad) {
    EXPECT_EQ(NamesOf(table), (Names{"first view", "second view", "notify", "columns"}));
}

TEST_F(PluginWalk, OfATypeMeetsThatTypeOnly) {
    EXPECT_EQ(NamesOf(table, 2), (Names{"first view", "second view"}));
    EXPECT_EQ(NamesOf(table, 99), Names{"columns"});
    EXPECT_EQ(table.FirstPlugin(1), nullptr);
    EXPECT_EQ(table.FirstPlugin(100), nullptr);
}

TEST_F(PluginWalk, StaysAtItsEnd) {
    EXPECT_EQ(NamesOf(table, 2).size(), 2u);
    EXPECT_EQ(table.NextPlugin(), nullptr);
    EXPECT_EQ(table.FirstPlugin(1), nullptr);
    EXPECT_EQ(table.NextPlugin(), nullptr);
}

TEST_F(PluginWalk, NeedsABegin) {
    EXPECT_EQ(table.NextPlugin(), nullptr);
    EXPECT_EQ(table.NextActivePlugin(), nullptr);
}

TEST_F(PluginWalk, ActiveOnesMeetsThoseThatAreSwitchedOn) {
    EXPECT_EQ(table.FirstActivePlugin(2), nullptr);
    Find("second view")->active = 1;
    EXPECT_EQ(ActiveNamesOf(table, 2), Names{"second view"});
    Find("first view")->active = 1;
    EXPECT_EQ(ActiveNamesOf(table, 2), (Names{"first view", "second view"}));
    EXPECT_EQ(ActiveNamesOf(table, 3), Names{});
}

TEST_F(PluginWalk, ActiveOnesOfTypeZeroAreNone) {
    for (const char* name : {"first view", "notify", "columns"}) Find(name)->active = 1;
    EXPECT_EQ(table.FirstActivePlugin(0), nullptr);
    EXPECT_EQ(table.NextActivePlugin(), nullptr);
    // Also in the middle of another walk.
    EXPECT_NE(table.FirstActivePlugin(2), nullptr);
    EXPECT_EQ(table.FirstActivePlugin(0), nullptr);
    EXPECT_EQ(table.NextActivePlugin(), nullptr);
}

TEST_F(PluginWalk, TheTwoPositionsNest) {
    for (const char* name : {"first view", "second view", "notify"}) Find(name)->active = 1;
    Names met;
    for (LoadedPlugin* outer = table.FirstPlugin(2); outer; outer = table.NextPlugin())
        for (LoadedPlugin* inner = table.FirstActivePlugin(2); inner; inner = table.NextActivePlugin())
            met.push_back(std::string(outer->info.name) + "/" + inner->info.name);
    EXPECT_EQ(met, (Names{"first view/first view", "first view/second view", "second view/first view",
                          "second view/second view"}));
}

TEST_F(PluginWalk, OnOnePositionASecondWalkReplacesTheFirst) {
    EXPECT_STREQ(table.FirstPlugin(2)->info.name, "first view");
    EXPECT_STREQ(table.FirstPlugin(99)->info.name, "columns");
    EXPECT_EQ(table.NextPlugin(), nullptr);
}

TEST_F(PluginWalk, EachThreadHasItsOwnPositions) {
    Find("first view")->active = Find("second view")->active = Find("notify")->active = 1;
    ASSERT_STREQ(table.FirstPlugin(2)->info.name, "first view");
    ASSERT_STREQ(table.FirstActivePlugin(2)->info.name, "first view");
    std::thread([&] {
        EXPECT_EQ(table.NextPlugin(), nullptr);
        EXPECT_EQ(NamesOf(table, 99), Names{"columns"});
        EXPECT_EQ(ActiveNamesOf(table, 3), Names{"notify"});
    }).join();
    EXPECT_STREQ(table.NextPlugin()->info.name, "second view");
    EXPECT_STREQ(table.NextActivePlugin()->info.name, "second view");
}

TEST_F(PluginWalk, PluginsOfAnyOtherTypeAreListedToo) {
    ScriptedPlugin odd, negative;
    odd.Named(7, "odd");
    negative.Named(-1, "negative");
    folder.Add("odd.so", odd, "more/");
    folder.Add("negative.so", negative, "more/");
    table.LoadPluginFolder("/v/Plugins/more/");
    EXPECT_EQ(NamesOf(table), (Names{"negative", "first view", "second view", "notify", "odd", "columns"}));
    EXPECT_EQ(NamesOf(table, 7), Names{"odd"});
    table.UnloadPlugins();
}

}  // namespace
}  // namespace vardel

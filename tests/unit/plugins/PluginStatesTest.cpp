#include "plugins/PluginStates.h"

#include <gtest/gtest.h>

#include "tests/unit/support/ScriptedPlugins.h"

namespace vardel {
namespace {

using test::PluginFolder;
using test::ScriptedPlugin;

class PluginStatesTest : public testing::Test {
  protected:
    PluginStatesTest() {
        one.Named(3, "one", "first");
        two.Named(2, "two", "second");
        folder.Add("one.so", one);
        folder.Add("two.so", two);
        table.LoadPlugins();
    }
    void Enter(const TcString& id, u8 active, u8 present = 0) {
        PluginEntry entry{};
        id.GetLeft(entry.name, sizeof entry.name, sizeof entry.name - 1);
        entry.active = active;
        entry.present = present;
        settings.pluginStates.Insert(id, std::make_unique<GuardedRecord<PluginEntry>>(entry));
    }
    PluginEntry Entry(const TcString& id) const {
        const auto* entry = settings.pluginStates.FindValue(id);
        if (!entry) {
            ADD_FAILURE() << "no entry " << id.GetContent();
            return {};
        }
        return entry->Read();
    }
    LoadedPlugin& First(i32 type) { return *table.FirstPlugin(type); }

    test::TestServices system;
    PluginFolder folder{system};
    ScriptedPlugin one, two;
    PluginTable table{system.modules, system.folders};
    VardelSettings settings;
    const TcString idOfOne = PluginId("one", "first");
    const TcString idOfTwo = PluginId("two", "second");
};

TEST_F(PluginStatesTest, AKnownPluginTakesItsSwitchAndIsMarkedPresent) {
    Enter(idOfOne, 1);
    MergePluginStates(table, settings.pluginStates);
    EXPECT_EQ(First(3).active, 1);
    EXPECT_EQ(Entry(idOfOne).active, 1);
    EXPECT_EQ(Entry(idOfOne).present, 1);
}

TEST_F(PluginStatesTest, ANewPluginStandsSwitchedOffAndGetsAnEntry) {
    First(2).active = 0;
    MergePluginStates(table, settings.pluginStates);
    EXPECT_EQ(First(2).active, 0);
    const PluginEntry entry = Entry(idOfTwo);
    EXPECT_EQ(std::string(entry.name), idOfTwo.GetContent());
    EXPECT_EQ(entry.active, 0);
    EXPECT_EQ(entry.present, 1);
    EXPECT_EQ(settings.pluginStates.Count(), 2u);
}

TEST_F(PluginStatesTest, AnEntryWhosePluginIsGoneStaysAndIsNotPresent) {
    Enter(PluginId("gone", ""), 1);
    MergePluginStates(table, settings.pluginStates);
    EXPECT_EQ(Entry(PluginId("gone", "")).active, 1);
    EXPECT_EQ(Entry(PluginId("gone", "")).present, 0);
}

TEST_F(PluginStatesTest, ARenamedFileKeepsItsSwitchAndAChangedDescriptionLosesIt) {
    Enter(idOfOne, 1);
    Enter(idOfTwo, 1);
    PluginTable nextRun{system.modules, system.folders};
    system.modules.folders.clear();
    two.block.description = "second, better";
    PluginFolder renamed(system);
    renamed.Add("renamed.so", one);
    renamed.Add("two.so", two);
    nextRun.LoadPlugins();
    MergePluginStates(nextRun, settings.pluginStates);
    EXPECT_EQ(nextRun.FirstPlugin(3)->active, 1);
    EXPECT_EQ(nextRun.FirstPlugin(2)->active, 0);
}

TEST_F(PluginStatesTest, PluginsOfOneIdShareTheirEntry) {
    ScriptedPlugin twin;
    twin.Named(99, "one", "first");
    folder.Add("twin.so", twin, "more/");
    table.LoadPluginFolder("/v/Plugins/more");
    MergePluginStates(table, settings.pluginStates);
    EXPECT_EQ(settings.pluginStates.Count(), 2u);
    settings.pluginStates.FindValue(idOfOne)->Update([](PluginEntry& entry) { entry.active = 1; });
    MergePluginStates(table, settings.pluginStates);
    EXPECT_EQ(First(3).active, 1);
    EXPECT_EQ(First(99).active, 1);
    table.UnloadPlugins();
}

TEST_F(PluginStatesTest, ADialogThatEndsWithoutASaveTakesTheSwitchesBack) {
    Enter(idOfOne, 1);
    MergePluginStates(table, settings.pluginStates);
    First(3).active = 0;
    First(2).active = 1;
    RevertPluginStates(table, settings.pluginStates);
    EXPECT_EQ(First(3).active, 1);
    EXPECT_EQ(First(2).active, 0);
}

TEST_F(PluginStatesTest, ADialogThatEndsWithASaveStoresThem) {
    MergePluginStates(table, settings.pluginStates);
    First(2).active = 1;
    settings.pluginStates.Erase(idOfOne);
    First(3).active = 1;
    StorePluginStates(table, settings.pluginStates);
    EXPECT_EQ(Entry(idOfTwo).active, 1);
    EXPECT_EQ(Entry(idOfOne).active, 1);
}

}  // namespace
}  // namespace vardel

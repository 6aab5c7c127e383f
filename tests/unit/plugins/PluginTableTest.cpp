#include "plugins/PluginTable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "tests/unit/support/ScriptedPlugins.h"

namespace vardel {
namespace {

using test::NamesOf;
using test::PluginFolder;
using test::ScriptedPlugin;
using Names = std::vector<std::string>;

class PluginTableTest : public test::PluginHostTest {};

// Finding and loading

TEST_F(PluginTableTest, LoadsWhatLiesBesideTheProgramAndGivesFalse) {
    one.Named(1, "one");
    folder.Add("one.so", one);
    EXPECT_FALSE(table.LoadPlugins());
    EXPECT_EQ(system.modules.listed, Names{"/v/Plugins/"});
    EXPECT_EQ(system.modules.loads, Names{"/v/Plugins/one.so"});
    EXPECT_EQ(NamesOf(table), Names{"one"});
}

TEST_F(PluginTableTest, TheFolderIsCutFromTheProgramsPathBehindTheLastSeparator) {
    system.folders.programPath = "C:\\Program Files\\Vardelwatch\\vardelwatch.exe";
    system.folders.separator = '\\';
    EXPECT_FALSE(table.LoadPlugins());
    EXPECT_EQ(system.modules.listed, Names{"C:\\Program Files\\Vardelwatch\\Plugins\\"});
}

TEST_F(PluginTableTest, AnUnknownProgramPathLoadsNothing) {
    system.folders.programPath = "";
    EXPECT_FALSE(table.LoadPlugins());
    EXPECT_TRUE(system.modules.loads.empty());
}

TEST_F(PluginTableTest, TheFolderMayEndInASeparatorOrNot) {
    one.Named(1, "one");
    folder.Add("one.so", one);
    EXPECT_TRUE(table.LoadPluginFolder("/v/Plugins"));
    EXPECT_TRUE(table.LoadPluginFolder("/v/Plugins/"));
    EXPECT_EQ(system.modules.loads, (Names{"/v/Plugins/one.so", "/v/Plugins/one.so"}));
}

TEST_F(PluginTableTest, NoFolderAndNothingInItGiveFalse) {
    EXPECT_FALSE(table.LoadPluginFolder(nullptr));
    EXPECT_FALSE(table.LoadPluginFolder(""));
    EXPECT_TRUE(system.modules.listed.empty());
    EXPECT_FALSE(table.LoadPluginFolder("/v/Plugins/"));
}

TEST_F(PluginTableTest, AHitThatIsNoPluginStillCountsAsAMatch) {
    folder.AddExport("other.so", nullptr);
    EXPECT_TRUE(table.LoadPluginFolder("/v/Plugins/"));
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
}

TEST_F(PluginTableTest, FoldersWhoseNameEndsAsAModulesAreEntered) {
    one.Named(1, "one");
    two.Named(1, "two");
    folder.AddFolder("more.so");
    folder.Add("zwei.so", two);
    folder.Add("one.so", one, "more.so/");
    table.LoadPlugins();
    EXPECT_EQ(system.modules.listed, (Names{"/v/Plugins/", "/v/Plugins/more.so/"}));
    EXPECT_EQ(NamesOf(table), (Names{"one", "two"}));  // in the order of the hits
}

TEST_F(PluginTableTest, FoldersWithOtherNamesAreLeftAlone) {
    folder.AddFolder("more");
    table.LoadPlugins();
    EXPECT_EQ(system.modules.listed, Names{"/v/Plugins/"});
}

TEST_F(PluginTableTest, TheFolderItselfAndShortNamesAreNotEntered) {
    system.modules.ending = "";
    for (const char* name : {".", "..", "x", "so"}) folder.AddFolder(name);
    table.LoadPlugins();
    EXPECT_EQ(system.modules.listed, Names{"/v/Plugins/"});
}

TEST_F(PluginTableTest, AFolderThatIsMoreThanOneIsTriedAsAFile) {
    folder.AddFolder("hidden.so", false);
    table.LoadPlugins();
    EXPECT_EQ(system.modules.loads, Names{"/v/Plugins/hidden.so"});
    EXPECT_EQ(system.modules.listed, Names{"/v/Plugins/"});
}

TEST_F(PluginTableTest, AFileThatDoesNotLoadIsPassedOver) {
    one.Named(1, "one");
    folder.AddExport("broken.so", nullptr);
    system.modules.modules.clear();
    folder.Add("one.so", one);
    table.LoadPlugins();
    EXPECT_EQ(NamesOf(table), Names{"one"});
    EXPECT_TRUE(system.modules.freed.empty());
}

TEST_F(PluginTableTest, ALibraryWithoutTheExportIsFreedAgain) {
    folder.AddExport("library.so", nullptr);
    table.LoadPlugins();
    EXPECT_EQ(system.modules.freed, Names{"/v/Plugins/library.so"});
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
}

TEST_F(PluginTableTest, ABlockOfAnotherSizeStaysLoadedAndIsNotListed) {
    for (const u32 size :
         {0u, static_cast<u32>(sizeof(PluginInfo)) - 1, static_cast<u32>(sizeof(PluginInfo)) + 1}) {
        system.modules.folders.clear();
        ScriptedPlugin wrong;
        wrong.Named(1, "wrong");
        wrong.block.size = size;
        PluginFolder(system).Add("wrong.so", wrong);
        bool begun = false;
        wrong.On(&PluginInfo::Init, [&](PluginInfo&) { return begun = true; });
        table.LoadPlugins();
        EXPECT_EQ(table.FirstPlugin(0), nullptr) << size;
        EXPECT_FALSE(begun);
    }
    table.UnloadPlugins();
    EXPECT_TRUE(system.modules.freed.empty());
}

TEST_F(PluginTableTest, AModuleWithoutABlockStaysLoadedAndIsNotListed) {
    folder.AddExport("null.so", [] { return static_cast<PluginInfo*>(nullptr); });
    folder.AddExport("throws.so", []() -> PluginInfo* { throw std::runtime_error("no block"); });
    table.LoadPlugins();
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
    table.UnloadPlugins();
    EXPECT_TRUE(system.modules.freed.empty());
}

TEST_F(PluginTableTest, ABlockThatNoCompilerPlacesSoIsNotTaken) {
    static char memory[sizeof(PluginInfo) + 1] = {};
    const u32 size = sizeof(PluginInfo);
    std::memcpy(memory + 1 + offsetof(PluginInfo, size), &size, sizeof size);
    folder.AddExport("odd.so", [] {
        const std::size_t shift = reinterpret_cast<std::uintptr_t>(memory) % alignof(PluginInfo) == 0;
        return reinterpret_cast<PluginInfo*>(memory + shift);
    });
    table.LoadPlugins();
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
}

TEST_F(PluginTableTest, ANewPluginIsSwitchedOffAndArmed) {
    one.Named(3, "one");
    folder.Add("one.so", one);
    table.LoadPlugins();
    const LoadedPlugin& plugin = *table.FirstPlugin(0);
    EXPECT_EQ(plugin.active, 0);
    EXPECT_NE(plugin.notifyArmed, 0);
    EXPECT_EQ(plugin.own, &one.block);
    EXPECT_EQ(system.modules.PathOf(plugin.module), "/v/Plugins/one.so");
}

TEST_F(PluginTableTest, TheHostsFieldsAreSetBeforeInit) {
    one.Named(1, "one");
    int rest = 0;
    one.block.window = one.block.data = &rest;
    one.block.dataCount = 7;
    one.block.reserved = 11;
    one.block.reserved2 = &rest;
    one.block.reserved3[259] = 12;
    PluginInfo seen{};
    one.On(&PluginInfo::Init, [&](PluginInfo& info) {
        seen = info;
        return 1;
    });
    folder.Add("one.so", one);
    table.LoadPlugins();
    EXPECT_EQ(seen.module, table.FirstPlugin(0)->module);
    EXPECT_EQ(seen.window, nullptr);
    EXPECT_EQ(seen.data, nullptr);
    EXPECT_EQ(seen.dataCount, 0u);
    // Not touched by the host.
    EXPECT_EQ(seen.reserved, 11u);
    EXPECT_EQ(seen.reserved2, &rest);
    EXPECT_EQ(seen.reserved3[259], 12);
}

TEST_F(PluginTableTest, InitIsCalledOnceWithTheOwnBlockAndThePluginInTheTable) {
    one.Named(1, "one");
    int inits = 0;
    one.On(&PluginInfo::Init, [&](PluginInfo& info) {
        EXPECT_EQ(&info, &one.block);
        EXPECT_EQ(NamesOf(table), Names{"one"});
        return ++inits;
    });
    folder.Add("one.so", one);
    table.LoadPlugins();
    EXPECT_EQ(inits, 1);
}

TEST_F(PluginTableTest, AnInitThatThrowsCountsAsDone) {
    one.Named(1, "one");
    one.On(&PluginInfo::Init, [](PluginInfo&) -> u32 { throw 42; });
    two.Named(1, "two");
    folder.Add("one.so", one);
    folder.Add("two.so", two);
    table.LoadPlugins();
    EXPECT_EQ(NamesOf(table), (Names{"one", "two"}));
}

TEST_F(PluginTableTest, TypeOnePluginsGetInitAndExitOnly) {
    one.Named(PLUGIN_TYPE_ALERT, "alert");
    Record(one, &PluginInfo::Init, "init");
    Record(one, &PluginInfo::Exit, "exit");
    Record(one, &PluginInfo::Run, "run");
    Record(one, &PluginInfo::Configure, "configure");
    Record(one, &PluginInfo::About, "about");
    folder.Add("one.so", one);
    table.LoadPlugins();
    table.FirstPlugin(1)->active = 1;
    table.UnloadPlugins();
    EXPECT_EQ(calls, (Names{"alert init", "alert exit"}));
}

TEST_F(PluginTableTest, TheCopyOfTheBlockIsMadeAtLoad) {
    one.Named(1, "one", "first");
    Record(one, &PluginInfo::Exit, "exit");
    folder.Add("one.so", one);
    table.LoadPlugins();
    one.block.name = "other";
    one.block.type = 99;
    one.block.Exit = nullptr;
    EXPECT_EQ(NamesOf(table), Names{"one"});
    EXPECT_EQ(table.FirstPlugin(0)->info.type, 1);
    EXPECT_EQ(table.FirstPlugin(99), nullptr);
    table.UnloadPlugins();
    EXPECT_EQ(calls, Names{"other exit"});  // the entry point of the copy
}

TEST_F(PluginTableTest, TwoPluginsWithTheSameTextsHaveTheSameId) {
    one.Named(1, "same", "text");
    two.Named(2, "same", "text");
    folder.Add("one.so", one);
    folder.Add("two.so", two);
    table.LoadPlugins();
    const TcString first = table.FirstPlugin(0)->id;
    EXPECT_EQ(first, table.NextPlugin()->id);
    EXPECT_EQ(first, PluginId("same", "text"));
}

// Language

TEST_F(PluginTableTest, TheLanguageReachesEveryBlockActiveOrNot) {
    one.Named(1, "one");
    two.Named(99, "two");
    folder.Add("one.so", one);
    folder.Add("two.so", two);
    table.LoadPlugins();
    table.FirstPlugin(1)->active = 1;
    table.SetPluginLanguage(9);
    EXPECT_EQ(one.block.language, 9u);
    EXPECT_EQ(two.block.language, 9u);
    table.SetPluginLanguage(0);
    EXPECT_EQ(one.block.language, 0u);
}

// The end

TEST_F(PluginTableTest, UnloadingEndsAndFreesInTableOrderActiveOrNot) {
    three.Named(3, "three");
    one.Named(1, "one");
    two.Named(2, "no exit");
    for (ScriptedPlugin* plugin : {&one, &three}) Record(*plugin, &PluginInfo::Exit, "exit");
    folder.Add("a.so", three);
    folder.Add("b.so", one);
    folder.Add("c.so", two);
    table.LoadPlugins();
    Find("three")->active = 1;
    EXPECT_TRUE(table.UnloadPlugins());
    EXPECT_EQ(calls, (Names{"one exit", "three exit"}));
    EXPECT_EQ(system.modules.freed, (Names{"/v/Plugins/b.so", "/v/Plugins/c.so", "/v/Plugins/a.so"}));
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
    EXPECT_TRUE(table.UnloadPlugins());
    EXPECT_EQ(calls.size(), 2u);
}

TEST_F(PluginTableTest, AnExitThatThrowsCountsAsDone) {
    one.Named(1, "one");
    one.On(&PluginInfo::Exit, [](PluginInfo&) -> u32 { throw std::runtime_error("exit"); });
    two.Named(2, "two");
    Record(two, &PluginInfo::Exit, "exit");
    folder.Add("one.so", one);
    folder.Add("two.so", two);
    table.LoadPlugins();
    EXPECT_TRUE(table.UnloadPlugins());
    EXPECT_EQ(calls, Names{"two exit"});
    EXPECT_EQ(system.modules.freed, (Names{"/v/Plugins/one.so", "/v/Plugins/two.so"}));
}

TEST_F(PluginTableTest, UnloadingEndsWalksThatAreUnderWay) {
    one.Named(1, "one");
    two.Named(1, "two");
    folder.Add("one.so", one);
    folder.Add("two.so", two);
    table.LoadPlugins();
    for (LoadedPlugin* plugin = table.FirstPlugin(0); plugin; plugin = table.NextPlugin()) plugin->active = 1;
    ASSERT_NE(table.FirstPlugin(0), nullptr);
    ASSERT_NE(table.FirstActivePlugin(1), nullptr);
    table.UnloadPlugins();
    EXPECT_EQ(table.NextPlugin(), nullptr);
    EXPECT_EQ(table.NextActivePlugin(), nullptr);
}

TEST_F(PluginTableTest, TheEndOfTheTableUnloadsWhatIsLeft) {
    one.Named(1, "one");
    Record(one, &PluginInfo::Exit, "exit");
    folder.Add("one.so", one);
    {
        PluginTable own{system.modules, system.folders};
        own.LoadPlugins();
    }
    EXPECT_EQ(calls, Names{"one exit"});
    EXPECT_EQ(system.modules.freed, Names{"/v/Plugins/one.so"});
}

}  // namespace
}  // namespace vardel

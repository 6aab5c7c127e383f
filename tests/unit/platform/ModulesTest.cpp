#include "platform/Modules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/Folders.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

namespace fs = std::filesystem;
using test::TestFolder;

class ModulesOfTheSystem : public testing::Test {
  protected:
    static std::string WithEnding(const std::string& name) { return name + SystemModules().Ending(); }
    static std::string PlainModule() { return test::TestModule("plain_module"); }
    std::string Copy(const std::string& name) const {
        const std::string path = fs::absolute(folder.Path(name)).string();
        fs::create_directories(fs::path(path).parent_path());
        fs::copy_file(PlainModule(), path);
        return path;
    }
    std::vector<std::string> Names(const char* ending) const {
        std::vector<std::string> names;
        for (const FolderEntry& entry : modules.List(folder.Path(), ending))
            names.push_back(entry.name + (entry.isPlainFolder ? "/" : ""));
        std::ranges::sort(names);
        return names;
    }

    TestFolder folder;
    Modules& modules = SystemModules();
};

using Answer = int (*)();

TEST_F(ModulesOfTheSystem, LoadsFindsAndFrees) {
    const ModuleHandle module = modules.Load(PlainModule().c_str());
    ASSERT_NE(module, nullptr);
    const auto answer = reinterpret_cast<Answer>(modules.Find(module, "PlainAnswer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    modules.Free(module);
}

TEST_F(ModulesOfTheSystem, AFreedModulesFileCanBeRemoved) {
    const std::string path = Copy(WithEnding("gone"));
    const ModuleHandle module = modules.Load(path.c_str());
    ASSERT_NE(module, nullptr);
    modules.Free(module);
    EXPECT_TRUE(fs::remove(path));  // Windows keeps the file of a loaded module
}

TEST_F(ModulesOfTheSystem, AnyEndingLoads) {
    const ModuleHandle module = modules.Load(Copy("deutsch.lang").c_str());
    EXPECT_NE(modules.Find(module, "PlainAnswer"), nullptr);
    modules.Free(module);
}

TEST_F(ModulesOfTheSystem, AnEntryPointThatIsNotThereIsNull) {
    const ModuleHandle module = modules.Load(PlainModule().c_str());
    EXPECT_EQ(modules.Find(module, "GetPluginInfo"), nullptr);
    modules.Free(module);
}

TEST_F(ModulesOfTheSystem, NullIsNoModule) {
    EXPECT_EQ(modules.Load(nullptr), nullptr);
    EXPECT_EQ(modules.Find(nullptr, "PlainAnswer"), nullptr);
    modules.Free(nullptr);
}

TEST_F(ModulesOfTheSystem, OnlyAFullPathIsLoaded) {
    const fs::path before = fs::current_path();
    Copy(WithEnding("local"));
    fs::current_path(folder.Path());
    const ModuleHandle bare = modules.Load(WithEnding("local").c_str());
    const ModuleHandle relative = modules.Load(("./" + WithEnding("local")).c_str());
    const ModuleHandle empty = modules.Load("");
    fs::current_path(before);
    EXPECT_EQ(bare, nullptr);
    EXPECT_EQ(relative, nullptr);
    EXPECT_EQ(empty, nullptr);
}

TEST_F(ModulesOfTheSystem, WhatIsNoModuleDoesNotLoad) {
    folder.Write(WithEnding("text"), "no module at all");
    folder.Write(WithEnding("empty"), "");
    fs::create_directories(folder.Path(WithEnding("folder")));
    for (const char* name : {"text", "empty", "folder", "missing"})
        EXPECT_EQ(modules.Load(fs::absolute(folder.Path(WithEnding(name))).string().c_str()), nullptr)
            << name;
}

TEST_F(ModulesOfTheSystem, ListsWhatEndsAsAskedAndNothingElse) {
    for (const char* name : {"one.dll", "two.dll", "three.lang", "dll", "dll.txt"}) folder.Write(name, "x");
    fs::create_directories(folder.Path("more.dll"));
    fs::create_directories(folder.Path("other"));
    EXPECT_EQ(Names(".dll"), (std::vector<std::string>{"more.dll/", "one.dll", "two.dll"}));
    EXPECT_EQ(Names(".lang"), (std::vector<std::string>{"three.lang"}));
}

TEST_F(ModulesOfTheSystem, TheFolderMayEndInASeparator) {
    folder.Write("one.dll", "x");
    const std::string withSeparator = folder.Path() + SystemFolders().Separator();
    EXPECT_EQ(modules.List(withSeparator, ".dll"), (std::vector<FolderEntry>{{"one.dll", false}}));
}

TEST_F(ModulesOfTheSystem, AMissingFolderListsNothing) {
    EXPECT_TRUE(modules.List(folder.Path("missing"), ".dll").empty());
    EXPECT_TRUE(modules.List("", ".dll").empty());
}

}  // namespace
}  // namespace vardel

// The host on modules as the system loads them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/Folders.h"
#include "plugins/PluginCalls.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

class PluginsOfTheSystem : public testing::Test {
  protected:
    std::string Add(const std::string& module, const std::string& name) const {
        const std::string path = folder.Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::filesystem::copy_file(test::TestModule(module), path);
        return path;
    }
    static bool IsLoaded(const std::string& path) {
        void* module = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        if (module) dlclose(module);
        return module != nullptr;
    }

    test::TestFolder folder;
    PluginTable table{SystemModules(), SystemFolders()};
};

TEST_F(PluginsOfTheSystem, ALibraryWithoutTheExportIsNotKeptLoaded) {
    const std::string path = Add("plain_module", "plain.so");
    EXPECT_TRUE(table.LoadPluginFolder(folder.Path().c_str()));
    EXPECT_FALSE(IsLoaded(path));
}

TEST_F(PluginsOfTheSystem, ABlockOfAnotherSizeIsKeptLoadedAndNotListed) {
    const std::string path = Add("wrong_size_plugin", "wrong.so");
    EXPECT_TRUE(table.LoadPluginFolder(folder.Path().c_str()));
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
    EXPECT_TRUE(IsLoaded(path));
    table.UnloadPlugins();
    EXPECT_TRUE(IsLoaded(path));
}

TEST_F(PluginsOfTheSystem, WhatAModuleThrowsEndsInTheHost) {
    const std::string path = Add("throwing_plugin", "throws.so");
    table.LoadPluginFolder(folder.Path().c_str());
    LoadedPlugin* plugin = table.FirstPlugin(PLUGIN_TYPE_VIEW);
    ASSERT_NE(plugin, nullptr);
    EXPECT_TRUE(IsLoaded(path));
    EXPECT_TRUE(RunPluginOnHost(*plugin, nullptr, HostText("10.0.0.5", "", "")));
    EXPECT_TRUE(ConfigurePlugin(*plugin, nullptr));
    EXPECT_TRUE(AboutPlugin(*plugin, nullptr));
    EXPECT_EQ(plugin->own->data, nullptr);
    table.UnloadPlugins();  // its Exit throws too
    EXPECT_FALSE(IsLoaded(path));
}

TEST_F(PluginsOfTheSystem, FoldersWithTheEndingAreEnteredAndOthersAreNot) {
    Add("throwing_plugin", "one.so/plugin.so");
    Add("throwing_plugin", "other/plugin.so");
    EXPECT_TRUE(table.LoadPluginFolder(folder.Path().c_str()));
    EXPECT_NE(table.FirstPlugin(0), nullptr);
    EXPECT_EQ(table.NextPlugin(), nullptr);
}

TEST_F(PluginsOfTheSystem, TheCallingConventionAndTheBlockAreThoseOfTheHeader) {
    Add("throwing_plugin", "throws.so");
    table.LoadPluginFolder(folder.Path().c_str());
    const LoadedPlugin* plugin = table.FirstPlugin(0);
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(plugin->info.name, "Throwing plugin");
    EXPECT_EQ(plugin->info.size, sizeof(PluginInfo));
    EXPECT_EQ(plugin->own->module, plugin->module);
}

}  // namespace
}  // namespace vardel

// An example plugin as it was built, alone in a folder of the test's, with the settings that the test gives
// it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "platform/Folders.h"
#include "plugins/PluginCalls.h"
#include "plugins/PluginNotifyQueue.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestModules.h"

namespace vardel::test {

class ExamplePluginTest : public testing::Test {
  protected:
    // Null where it could not be loaded, which is a failure of the test.
    LoadedPlugin* Load(const std::string& name, const std::string& settings = "") {
        name_ = name;
        const std::filesystem::path module = ExamplePlugin(name);
        std::filesystem::copy_file(module, folder.Path(module.filename().string()));
        if (!settings.empty()) folder.Write(name + ".ini", settings);
        return LoadAgain();
    }
    // As after the next start of the program.
    LoadedPlugin* LoadAgain() {
        table = std::make_unique<PluginTable>(SystemModules(), SystemFolders());
        table->LoadPluginFolder(std::filesystem::absolute(folder.Path()).string().c_str());
        LoadedPlugin* plugin = table->FirstPlugin(0);
        EXPECT_NE(plugin, nullptr) << name_;
        return plugin;
    }
    void Unload() { table.reset(); }

    TestFolder folder;
    std::unique_ptr<PluginTable> table;

  private:
    std::string name_;
};

}  // namespace vardel::test

// The plugin of the page on how to write one, built by the page's command with the interface header alone.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/Folders.h"
#include "plugins/PluginCalls.h"
#include "plugins/PluginNotifyQueue.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

TEST(PluginSdk, ThePluginOfThePageIsLoadedAndIsTold) {
    const std::filesystem::path module = test::TestModule("page/first");
    PluginTable table(SystemModules(), SystemFolders());
    ASSERT_TRUE(table.LoadPluginFolder(module.parent_path().string().c_str()));
    LoadedPlugin* plugin = table.FirstPlugin(PLUGIN_TYPE_NOTIFY);
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(plugin->info.name, "First plugin");
    EXPECT_EQ(plugin->info.size, sizeof(PluginInfo));
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, 1);
    FillPluginText(PluginRecords<PluginNotifyHost>(*item)[0].ip, "10.0.0.5");
    FillPluginText(PluginRecords<PluginNotifyHost>(*item)[0].mac, "02:00:00:00:00:05");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(NotifyPlugin(*plugin, *item));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("new host 10.0.0.5, card 02:00:00:00:00:05"),
              std::string::npos);
}

}  // namespace
}  // namespace vardel

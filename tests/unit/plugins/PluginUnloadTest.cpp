#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "plugins/PluginCalls.h"
#include "plugins/PluginNotifyQueue.h"
#include "tests/unit/support/Gate.h"
#include "tests/unit/support/ScriptedPlugins.h"

namespace vardel {
namespace {

using test::PluginFolder;
using test::ScriptedPlugin;
using Names = std::vector<std::string>;

// What the end of the program does while calls are under way.
class PluginUnloadTest : public testing::Test {
  protected:
    LoadedPlugin& Load(i32 type) {
        scripted.Named(type, "plugin");
        folder.Add("plugin.so", scripted);
        table.LoadPlugins();
        return *table.FirstPlugin(type);
    }
    void OnRun(ScriptedPlugin::Call call) { scripted.On(&PluginInfo::Run, std::move(call)); }

    test::TestServices system;
    PluginFolder folder{system};
    ScriptedPlugin scripted;
    PluginTable table{system.modules, system.folders};
};

TEST_F(PluginUnloadTest, AfterUnloadingNoCallGoesIn) {
    OnRun([](PluginInfo&) -> u32 {
        ADD_FAILURE() << "was run";
        return 0;
    });
    scripted.On(&PluginInfo::Configure, [](PluginInfo&) -> u32 {
        ADD_FAILURE() << "was configured";
        return 0;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    table.UnloadPlugins();
    EXPECT_FALSE(NotifyPlugin(plugin, *MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 7)));
    EXPECT_FALSE(ConfigurePlugin(plugin, nullptr));
}

TEST_F(PluginUnloadTest, UnloadingWaitsForACallToComeBack) {
    test::Gate gate;
    gate.Arm();
    std::atomic<bool> cameBack{false}, wasBackAtExit{false};
    OnRun([&](PluginInfo&) {
        gate.Pass();
        return 1;
    });
    scripted.On(&PluginInfo::Exit, [&](PluginInfo&) {
        wasBackAtExit = cameBack.load();
        return 1;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    std::thread caller([&] { NotifyPlugin(plugin, *MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 7)); });
    ASSERT_TRUE(gate.AwaitHeld());
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_TRUE(system.modules.freed.empty());
        cameBack = true;
        gate.Open();
    });
    EXPECT_TRUE(table.UnloadPlugins());
    EXPECT_TRUE(wasBackAtExit);
    EXPECT_EQ(system.modules.freed, Names{"/v/Plugins/plugin.so"});
    caller.join();
    opener.join();
}

TEST_F(PluginUnloadTest, AModuleWithACallStillInsideStaysLoadedWithoutItsExit) {
    test::Gate gate;
    gate.Arm();
    int exits = 0;
    ScriptedPlugin idle;
    idle.Named(PLUGIN_TYPE_VIEW, "idle");
    folder.Add("idle.so", idle);
    idle.On(&PluginInfo::Exit, [&](PluginInfo&) { return ++exits; });
    OnRun([&](PluginInfo&) {
        gate.Pass();
        return 1;
    });
    scripted.On(&PluginInfo::Exit, [](PluginInfo&) -> u32 {
        ADD_FAILURE() << "Exit beside a call";
        return 0;
    });
    LoadedPlugin& plugin = Load(PLUGIN_TYPE_NOTIFY);
    std::thread caller([&] { NotifyPlugin(plugin, *MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 7)); });
    ASSERT_TRUE(gate.AwaitHeld());
    EXPECT_TRUE(table.UnloadPlugins(std::chrono::milliseconds(20)));
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(system.modules.freed, Names{"/v/Plugins/idle.so"});
    EXPECT_EQ(table.FirstPlugin(0), nullptr);
    gate.Open();
    caller.join();
    EXPECT_EQ(system.modules.freed, Names{"/v/Plugins/idle.so"});
}

}  // namespace
}  // namespace vardel

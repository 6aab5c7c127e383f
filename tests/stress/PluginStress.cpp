// Plugins that are loaded, walked, called, told and unloaded, all at once, as modules of the system: the
// plugins themselves end the program when a call reaches them outside of their life. Run under
// ThreadSanitizer.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "capture/ThreadParams.h"
#include "capture/VardelData.h"
#include "plugins/PluginCalls.h"
#include "plugins/PluginStates.h"

namespace vardel::test {
namespace {

constexpr int kRounds = 200;
constexpr const char* kModules[] = {"counting_view_plugin.so", "counting_notify_plugin.so",
                                    "counting_columns_plugin.so"};

class PluginStress : public testing::Test {
  protected:
    PluginStress() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vardelwatch-stress-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        for (const char* module : kModules)
            std::filesystem::copy_file(std::filesystem::path(VARDEL_TEST_MODULES) / module,
                                       std::filesystem::path(folder) / module);
        data.fences.CreateAll();
        params.data = &data;
        params.stopRequested = SystemEvents().Create(nullptr, true, false);
    }
    ~PluginStress() override {
        SystemEvents().Close(params.stopRequested);
        std::filesystem::remove_all(folder);
    }

    // As the main thread does at start and end, again and again.
    void LoadAndUnload() {
        for (int round = 0; round < kRounds; ++round) {
            data.plugins.LoadPluginFolder(folder.c_str());
            MergePluginStates(data.plugins, data.settings.pluginStates);
            int met = 0;
            for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin;
                 plugin = data.plugins.NextPlugin(), ++met)
                plugin->active = 1;
            loaded += met;
            data.plugins.SetPluginLanguage(static_cast<u32>(round));
            std::this_thread::sleep_for(std::chrono::milliseconds(round % 4));
            data.plugins.UnloadPlugins();
        }
        done = true;
    }
    // As the tick does; the notifier's passes are asked for more often than once a second.
    void QueueItems() {
        for (u32 count = 1; !done; ++count) {
            if (data.plugins.FirstActivePlugin(PLUGIN_TYPE_NOTIFY)) {
                const FenceTaken taken(data.fences, Fence::Notify);
                queued += data.notifyQueue.Queue(
                    count % 8 ? MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, count)
                              : MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, count % 64 + 1));
            }
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    }
    // The notifier's own function, which ends at its stop byte, anew each time.
    void Notify() {
        while (!done) {
            ThreadParams once;
            once.data = &data;
            std::thread stop([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                once.stop = 1;
                SystemEvents().Set(params.stopRequested);
            });
            once.stopRequested = params.stopRequested;
            NotifyPluginThread(&once);
            stop.join();
            SystemEvents().Reset(params.stopRequested);
        }
    }
    // As the views do.
    void CallFromViews() {
        const PluginHostText host = HostText("10.0.0.5", "02:00:00:00:00:05", "nas");
        while (!done) {
            for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin;
                 plugin = data.plugins.NextPlugin()) {
                calls += RunPluginOnHost(*plugin, this, host);
                calls += DefinePluginColumns(*plugin).empty() ? 0 : 1;
                PluginCellText(*plugin, 0, host);
                ComparePluginHosts(*plugin, 0, 1, host, host);
            }
            std::this_thread::yield();
        }
    }
    void Walk() {
        while (!done) {
            i32 type = 0;
            for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin;
                 plugin = data.plugins.NextPlugin()) {
                if (plugin->info.type < type) ++wrong;
                type = plugin->info.type;
                for (LoadedPlugin* active = data.plugins.FirstActivePlugin(type); active;
                     active = data.plugins.NextActivePlugin())
                    if (active->info.type != type) ++wrong;
            }
        }
    }

    std::string folder;
    VardelData data{SystemServices()};
    ThreadParams params;
    std::atomic<bool> done{false};
    std::atomic<int> loaded{0}, queued{0}, calls{0}, wrong{0};
};

TEST_F(PluginStress, LoadingWalkingCallingNotifyingAndUnloadingAtOnce) {
    std::vector<std::thread> threads;
    threads.emplace_back([this] { LoadAndUnload(); });
    threads.emplace_back([this] { QueueItems(); });
    threads.emplace_back([this] { Notify(); });
    threads.emplace_back([this] { CallFromViews(); });
    threads.emplace_back([this] { Walk(); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(loaded, kRounds * static_cast<int>(std::size(kModules)));
    EXPECT_GT(queued, 0);
    EXPECT_GT(calls, 0);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(data.plugins.FirstPlugin(0), nullptr);
}

}  // namespace
}  // namespace vardel::test

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "capture/ThreadParams.h"
#include "capture/VardelData.h"
#include "plugins/PluginCalls.h"
#include "tests/unit/support/Gate.h"
#include "tests/unit/support/ScriptedEvents.h"
#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel {
namespace {

using test::PluginFolder;
using test::ScriptedPlugin;
using Told = std::vector<std::string>;

// The thread's function in rounds that take no time: each of its sleeps runs the next step, the last one
// stops it.
class NotifyPluginThreadTest : public testing::Test {
  protected:
    NotifyPluginThreadTest() {
        one.Named(PLUGIN_TYPE_NOTIFY, "one");
        two.Named(PLUGIN_TYPE_NOTIFY, "two");
        for (ScriptedPlugin* plugin : {&one, &two}) {
            plugin->On(&PluginInfo::Run, [this](PluginInfo& info) {
                const auto& item = *static_cast<PluginNotifyItem*>(info.data);
                told.push_back(std::string(info.name) + " " + std::to_string(item.count));
                return 0;
            });
        }
        folder.Add("one.so", one);
        folder.Add("two.so", two);
        data.plugins.LoadPlugins();
        for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin; plugin = data.plugins.NextPlugin())
            plugin->active = 1;
        params.data = &data;
        params.stopRequested = events.Create(nullptr, true, false);
        events.onSleep = [this] {
            if (events.sleeps.back() == kFenceTimeoutMs) return;
            if (rounds.empty()) {
                params.stop = 1;
                return;
            }
            const auto round = rounds.front();
            rounds.erase(rounds.begin());
            round();
        };
    }
    void Queue(u32 count) { data.notifyQueue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, count)); }
    LoadedPlugin& Plugin(const char* name) {
        LoadedPlugin* plugin = data.plugins.FirstPlugin(0);
        while (std::string(plugin->info.name) != name) plugin = data.plugins.NextPlugin();
        return *plugin;
    }
    void Run() { NotifyPluginThread(&params); }

    test::TestServices system;
    test::ScriptedEvents events;
    Services services = system.services.With(events);
    PluginFolder folder{system};
    ScriptedPlugin one, two;
    VardelData data{services};
    ThreadParams params;
    std::vector<std::function<void()>> rounds;
    Told told;
};

TEST_F(NotifyPluginThreadTest, EveryPluginGetsAllItemsInOrderPluginByPlugin) {
    for (const u32 count : {7u, 5u, 6u}) Queue(count);
    Run();
    EXPECT_EQ(told, (Told{"one 7", "one 5", "one 6", "two 7", "two 5", "two 6"}));
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

TEST_F(NotifyPluginThreadTest, AnItemReachesAPluginOnce) {
    Queue(1);
    rounds = {[] {}, [this] { Queue(2); }, [] {}};
    Run();
    EXPECT_EQ(told, (Told{"one 1", "two 1", "one 2", "two 2"}));
}

TEST_F(NotifyPluginThreadTest, ItemsThatJoinDuringABatchAreTheNextRounds) {
    Queue(1);
    one.On(&PluginInfo::Run, [this](PluginInfo& info) {
        const u32 count = static_cast<PluginNotifyItem*>(info.data)->count;
        told.push_back("one " + std::to_string(count));
        if (count == 1) Queue(2);
        return 0;
    });
    rounds = {[this] { told.push_back("next round"); }};
    Run();
    EXPECT_EQ(told, (Told{"one 1", "two 1", "next round", "one 2", "two 2"}));
}

TEST_F(NotifyPluginThreadTest, AnItemOfAPluginThatWasSwitchedOffIsFreedUndelivered) {
    Queue(1);
    Plugin("one").active = 0;
    Plugin("two").active = 0;
    Run();
    EXPECT_TRUE(told.empty());
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

TEST_F(NotifyPluginThreadTest, OnlyWhatIsActiveAndArmedIsTold) {
    Queue(1);
    Plugin("one").notifyArmed = 0;
    Run();
    EXPECT_EQ(told, Told{"two 1"});
}

TEST_F(NotifyPluginThreadTest, PluginsOfOtherTypesAreNotTold) {
    ScriptedPlugin view;
    view.Named(PLUGIN_TYPE_VIEW, "view");
    view.On(&PluginInfo::Run, [](PluginInfo&) -> u32 {
        ADD_FAILURE() << "was run";
        return 0;
    });
    folder.Add("view.so", view, "more/");
    data.plugins.LoadPluginFolder("/v/Plugins/more/");
    data.plugins.FirstPlugin(PLUGIN_TYPE_VIEW)->active = 1;
    Queue(1);
    Run();
    EXPECT_EQ(told, (Told{"one 1", "two 1"}));
    data.plugins.UnloadPlugins();
}

TEST_F(NotifyPluginThreadTest, AThrowingPluginKeepsNothingFromTheOthers) {
    one.On(&PluginInfo::Run, [](PluginInfo&) -> u32 { throw 1; });
    Queue(1);
    Queue(2);
    Run();
    EXPECT_EQ(told, (Told{"two 1", "two 2"}));
}

TEST_F(NotifyPluginThreadTest, TheDataFieldsAreLeftAsTheyAre) {
    Queue(1);
    Run();
    EXPECT_NE(one.block.data, nullptr);
    EXPECT_EQ(one.block.dataCount, 1u);
}

TEST_F(NotifyPluginThreadTest, AfterUnloadingTheLastPassFreesWhatIsQueued) {
    data.plugins.UnloadPlugins();
    Queue(1);
    Run();
    EXPECT_TRUE(told.empty());
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

TEST_F(NotifyPluginThreadTest, SleepsASecondOnItsOwnEventAndClosesIt) {
    Run();
    EXPECT_EQ(events.sleeps, std::vector<u32>{1000});
    EXPECT_EQ(events.created.back().name, "DoNothingEventNotify");
    EXPECT_FALSE(events.created.back().manualReset);
    EXPECT_FALSE(events.created.back().signalled);
    EXPECT_EQ(events.open, 1);  // the stop request's
}

TEST_F(NotifyPluginThreadTest, WaitsForTheFenceOnlyWhenSomethingIsQueued) {
    rounds = {[this] { Queue(1); }};
    Run();
    EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, kFenceTimeoutMs, 1000}));
}

TEST_F(NotifyPluginThreadTest, WithoutDataItEnds) {
    params.data = nullptr;
    Run();
    EXPECT_TRUE(events.sleeps.empty());
}

TEST_F(NotifyPluginThreadTest, StoppedBeforeItBeginsItDeliversNothing) {
    Queue(1);
    params.stop = 1;
    Run();
    EXPECT_TRUE(told.empty());
}

TEST_F(NotifyPluginThreadTest, WithoutParamsItTracesAndEnds) {
    const test::TracedLines traced;
    NotifyPluginThread(nullptr);
    EXPECT_EQ(traced.Steps(), Told{"Vardel::NotifyPluginThread: No params - Exit..."});
}

// With the system's own events and threads

class NotifyPluginThreadRunning : public testing::Test {
  protected:
    NotifyPluginThreadRunning() {
        plugin.Named(PLUGIN_TYPE_NOTIFY, "plugin");
        folder.Add("plugin.so", plugin);
        data.fences.CreateAll();
        params.data = &data;
        params.stopRequested = SystemEvents().Create(nullptr, true, false);
    }
    ~NotifyPluginThreadRunning() override { SystemEvents().Close(params.stopRequested); }
    void Load() {
        data.plugins.LoadPlugins();
        data.plugins.FirstPlugin(0)->active = 1;
    }
    bool IsFenceFree() {
        return SystemEvents().Wait(data.fences.Handle(Fence::Notify), 0) == WaitResult::Signalled;
    }

    test::TestServices system;
    PluginFolder folder{system};
    ScriptedPlugin plugin;
    VardelData data{system.services};
    ThreadParams params;
};

TEST_F(NotifyPluginThreadRunning, HoldsTheFenceForTheWholeBatchAndEndsOnTheStopRequest) {
    test::Gate gate;
    gate.Arm();
    plugin.On(&PluginInfo::Run, [&](PluginInfo&) {
        gate.Pass();
        return 0;
    });
    Load();
    data.notifyQueue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 1));
    EXPECT_TRUE(IsFenceFree());
    std::thread thread([&] { NotifyPluginThread(&params); });
    ASSERT_TRUE(gate.AwaitHeld());
    EXPECT_FALSE(IsFenceFree());
    gate.Open();
    const auto begin = std::chrono::steady_clock::now();
    RequestStop(params, SystemEvents());
    thread.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin,
              std::chrono::milliseconds(800));  // not its whole sleep
    EXPECT_TRUE(IsFenceFree());
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

TEST_F(NotifyPluginThreadRunning, AFenceThatIsNeverSetDoesNotHoldUpTheEnd) {
    Load();
    data.fences.Raise(Fence::Notify);
    data.notifyQueue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 1));
    std::thread thread([&] { NotifyPluginThread(&params); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto begin = std::chrono::steady_clock::now();
    RequestStop(params, SystemEvents());
    thread.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));  // of the fence's thirty
}

TEST_F(NotifyPluginThreadRunning, UnloadingWaitsForTheCallAndTheRestOfTheBatchIsNotDelivered) {
    test::Gate gate;
    gate.Arm();
    std::atomic<int> runs{0};
    plugin.On(&PluginInfo::Run, [&](PluginInfo&) {
        ++runs;
        gate.Pass();
        return 0;
    });
    Load();
    data.notifyQueue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 1));
    data.notifyQueue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 2));
    std::thread thread([&] { NotifyPluginThread(&params); });
    ASSERT_TRUE(gate.AwaitHeld());
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        gate.Open();
    });
    data.plugins.UnloadPlugins();
    EXPECT_EQ(system.modules.freed, std::vector<std::string>{"/v/Plugins/plugin.so"});
    RequestStop(params, SystemEvents());
    thread.join();
    opener.join();
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

}  // namespace
}  // namespace vardel

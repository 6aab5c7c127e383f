#include "frame/PluginNotify.h"

#include <gtest/gtest.h>

#include "frame/EngineDeeds.h"
#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

class PluginNotifyTest : public test::TickFixture {
  protected:
    LoadedPlugin& Load(i32 type = PLUGIN_TYPE_NOTIFY) {
        plugin.Named(type, "listener");
        folder.Add("listener.so", plugin);
        data.plugins.LoadPlugins();
        return *data.plugins.FirstPlugin(0);
    }
    void Listens() { Load().active = 1; }
    // The one item that waits.
    const PluginNotifyItem& Item() {
        const auto batch = data.notifyQueue.Batch();
        if (batch.size() != 1) throw std::runtime_error(std::to_string(batch.size()) + " items");
        return *batch[0].item;
    }
    template <class Record>
    const Record& RecordOf(u32 index = 0) {
        return static_cast<const Record*>(Item().records)[index];
    }
    template <std::size_t size>
    static bool IsZero(const char (&field)[size]) {
        return std::all_of(field, field + size, [](char byte) { return byte == 0; });
    }

    test::PluginFolder folder{system};
    test::ScriptedPlugin plugin;
};

// ---- whether anything is queued ----

TEST_F(PluginNotifyTest, WithoutDataItFails) {
    EXPECT_FALSE(QueuePluginNotify(nullptr, PLUGIN_NOTIFY_HOST_COUNT));
}

TEST_F(PluginNotifyTest, WithoutAPluginThatListensNothingIsQueuedAndTheQueueIsNotFenced) {
    EXPECT_TRUE(QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT));
    LoadedPlugin& off = Load();
    EXPECT_TRUE(QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT));
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
    EXPECT_EQ(events.waits + events.resets, 0);
    off.active = 1;
    EXPECT_TRUE(QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT));
    EXPECT_EQ(data.notifyQueue.Count(), 1u);
}

TEST_F(PluginNotifyTest, APluginOfAnotherTypeDoesNotListen) {
    Load(PLUGIN_TYPE_VIEW).active = 1;
    EXPECT_TRUE(QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT));
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

TEST_F(PluginNotifyTest, EmptyListsAndUnknownKindsQueueNothing) {
    Listens();
    for (const u32 kind : {0u, 1u, 2u, 4u, 3u, 5u, 31u, 33u, 0xffffffffu}) EXPECT_TRUE(QueuePluginNotify(&data, kind));
    EXPECT_TRUE(data.notifyQueue.IsEmpty());
}

// ---- the fence ----

TEST_F(PluginNotifyTest, WaitsForTheQueuesFenceAndTakesIt) {
    Listens();
    QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT);
    EXPECT_EQ(events.waits, 1);
    EXPECT_EQ(events.resets, 1);
    EXPECT_EQ(events.sets, 1);
    EXPECT_TRUE(IsFree(Fence::Notify));
}

TEST_F(PluginNotifyTest, AWaitThatTimesOutHoldsNothingBack) {
    Listens();
    events.timesOut = true;
    data.fences.Raise(Fence::Notify);
    EXPECT_TRUE(QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT));
    EXPECT_EQ(events.lastTimeoutMs, 30000u);
    EXPECT_EQ(data.notifyQueue.Count(), 1u);
}

// ---- the items ----

TEST_F(PluginNotifyTest, TheHostCountIsTheTablesSize) {
    Listens();
    Knows("10.0.0.5");
    Knows("10.0.0.6");
    QueuePluginNotify(&data, PLUGIN_NOTIFY_HOST_COUNT);
    EXPECT_EQ(Item().kind, 32u);
    EXPECT_EQ(Item().count, 2u);
    EXPECT_EQ(Item().records, nullptr);
}

TEST_F(PluginNotifyTest, ANewHostsRecord) {
    Listens();
    HostRecord& host = Arrives("10.0.0.5", "desk");
    host.mac = "00:11:22:33:44:55";
    host.trustState = TrustState::Distrusted;
    QueuePluginNotify(&data, PLUGIN_NOTIFY_NEW_HOSTS);
    EXPECT_EQ(Item().kind, 0u);
    EXPECT_EQ(Item().count, 1u);
    const auto& record = RecordOf<PluginNotifyHost>();
    EXPECT_STREQ(record.ip, "10.0.0.5");
    EXPECT_STREQ(record.mac, "00:11:22:33:44:55");
    EXPECT_STREQ(record.hostName, "desk");
    EXPECT_EQ(record.trustState, 2u);
}

TEST_F(PluginNotifyTest, FieldsOfEmptyTextsStayZero) {
    Listens();
    Arrives("10.0.0.5", "");
    QueuePluginNotify(&data, PLUGIN_NOTIFY_NEW_HOSTS);
    EXPECT_TRUE(IsZero(RecordOf<PluginNotifyHost>().mac));
    EXPECT_TRUE(IsZero(RecordOf<PluginNotifyHost>().hostName));
}

TEST_F(PluginNotifyTest, ASpoofedHostsRecordIsThatOfAHost) {
    Listens();
    IsSpoofed("10.0.0.5", "desk");
    QueuePluginNotify(&data, PLUGIN_NOTIFY_SPOOFS);
    EXPECT_EQ(Item().kind, 4u);
    EXPECT_STREQ(RecordOf<PluginNotifyHost>().ip, "10.0.0.5");
}

TEST_F(PluginNotifyTest, ANewSharesRecord) {
    Listens();
    NetShare share;
    share.ip = "10.0.0.5";
    share.hostName = "desk";
    share.name = "music";
    share.type = 2;
    share.remark = "not told";
    data.newShares.Append(&share);
    QueuePluginNotify(&data, PLUGIN_NOTIFY_NEW_SHARES);
    EXPECT_EQ(Item().kind, 1u);
    const auto& record = RecordOf<PluginNotifyShare>();
    EXPECT_STREQ(record.ip, "10.0.0.5");
    EXPECT_STREQ(record.hostName, "desk");
    EXPECT_TRUE(IsZero(record.unused));
    EXPECT_STREQ(record.name, "music");
    EXPECT_EQ(record.type, 2u);
    data.newShares.Clear();
}

TEST_F(PluginNotifyTest, ARemoteAccessRecord) {
    Listens();
    Connects("10.0.0.5", "music", "ann");
    QueuePluginNotify(&data, PLUGIN_NOTIFY_ACCESSES);
    EXPECT_EQ(Item().kind, 2u);
    const auto& record = RecordOf<PluginNotifyAccess>();
    EXPECT_STREQ(record.computer, "10.0.0.5");
    EXPECT_STREQ(record.user, "ann");
    EXPECT_STREQ(record.share, "music");
}

TEST_F(PluginNotifyTest, OnlyWhatWaitsBeforeTheMarkIsPacked) {
    Listens();
    Arrives("10.0.0.5");
    const auto mark = data.newEntries.TakeMark();
    Arrives("10.0.0.6");
    QueuePluginNotify(&data, PLUGIN_NOTIFY_NEW_HOSTS, mark);
    EXPECT_EQ(Item().count, 1u);
}

TEST_F(PluginNotifyTest, RecordsAreCopies) {
    Listens();
    Arrives("10.0.0.5", "desk").hostName = "desk";
    QueuePluginNotify(&data, PLUGIN_NOTIFY_NEW_HOSTS);
    data.newEntries.Clear();
    data.arpMap.FindValue("10.0.0.5")->hostName = "renamed";
    EXPECT_STREQ(RecordOf<PluginNotifyHost>().hostName, "desk");
}

// ---- through the tick ----

class TickWithPluginsTest : public PluginNotifyTest {
  protected:
    TickWithPluginsTest() {
        Listens();
        data.settings.UseToolTips = 1;
        data.settings.Visualization = 0;
        data.settings.NotifyTrusted = 0;
        data.settings.MACSpoofingVisualization = 1;
        data.settings.MACSpoofingVisualizationStyle = 1;
    }
    // Items of that kind, and forgets all.
    std::vector<u32> TakeCounts(u32 kind) {
        std::vector<u32> counts;
        const auto batch = data.notifyQueue.Batch();
        for (const auto& waiting : batch)
            if (waiting.item->kind == kind) counts.push_back(waiting.item->count);
        data.notifyQueue.Free(batch);
        return counts;
    }
    EngineDeeds real{data};
    PeriodicTick ticks{&data, surface, real};
};

TEST_F(TickWithPluginsTest, EveryTrayTickQueuesAHostCount) {
    Knows("10.0.0.5");
    for (int round = 0; round < 3; ++round) ticks.OnTimer(kTrayTimer);
    EXPECT_EQ(TakeCounts(PLUGIN_NOTIFY_HOST_COUNT), (std::vector<u32>{1, 1, 1}));
}

TEST_F(TickWithPluginsTest, HostsThatWaitedForAPopupAreOneItem) {
    surface.host.showing = true;
    for (int i = 0; i < 10; ++i) {
        Arrives("10.0.0." + std::to_string(i));
        ticks.OnTimer(kTrayTimer);
    }
    EXPECT_TRUE(TakeCounts(PLUGIN_NOTIFY_NEW_HOSTS).empty());
    surface.host.showing = false;
    ticks.OnTimer(kTrayTimer);
    EXPECT_EQ(TakeCounts(PLUGIN_NOTIFY_NEW_HOSTS), std::vector<u32>{10});
}

TEST_F(TickWithPluginsTest, TenThousandNewHostsAreOneItemWithAllOfThem) {
    for (int i = 0; i < 10'000; ++i) Arrives("10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250));
    ticks.OnTimer(kTrayTimer);
    EXPECT_EQ(TakeCounts(PLUGIN_NOTIFY_NEW_HOSTS), std::vector<u32>{10'000});
}

TEST_F(TickWithPluginsTest, AnItemThatIsTooLargeIsDroppedAndTheListConsumed) {
    HostRecord& host = Knows("10.0.0.5");
    for (int i = 0; i < 80'000; ++i) data.macSpoofs.Append(&host);
    ticks.OnTimer(kTrayTimer);
    EXPECT_TRUE(TakeCounts(PLUGIN_NOTIFY_SPOOFS).empty());
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

}  // namespace
}  // namespace vardel

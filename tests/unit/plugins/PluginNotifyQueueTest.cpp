#include "plugins/PluginNotifyQueue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vardel {
namespace {

struct KindRow {
    u32 kind;
    std::size_t recordSize;
};
constexpr KindRow kKinds[] = {{0, 904}, {1, 1204}, {2, 900}, {4, 904},
                              {32, 0},  {3, 0},    {33, 0},  {0xffffffff, 0}};

TEST(PluginItem, HasRecordsOfTheKindsSize) {
    for (const KindRow& row : kKinds) EXPECT_EQ(PluginRecordSize(row.kind), row.recordSize) << row.kind;
}

TEST(PluginItem, StartsWithZeroedRecords) {
    for (const KindRow& row : kKinds) {
        if (row.recordSize == 0) continue;
        const PluginItem item = MakePluginItem(row.kind, 3);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->kind, row.kind);
        EXPECT_EQ(item->reserved, 0u);
        EXPECT_EQ(item->count, 3u);
        const auto* bytes = static_cast<const u8*>(item->records);
        EXPECT_TRUE(std::all_of(bytes, bytes + 3 * row.recordSize, [](u8 byte) { return byte == 0; }));
    }
}

TEST(PluginItem, OfTheHostCountHasNoRecords) {
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 70'000'000);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->count, 70'000'000u);
    EXPECT_EQ(item->records, nullptr);
    EXPECT_TRUE(PluginRecords<PluginNotifyHost>(*item).empty());
    EXPECT_NE(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 0), nullptr);
}

TEST(PluginItem, IsNotMadeOfNothingNorOfAnUnknownKind) {
    for (const u32 kind : {0u, 1u, 2u, 4u}) EXPECT_EQ(MakePluginItem(kind, 0), nullptr) << kind;
    for (const u32 kind : {3u, 5u, 8u, 33u, 0xffffffffu}) EXPECT_EQ(MakePluginItem(kind, 1), nullptr) << kind;
}

TEST(PluginItem, AboveSixtyFourMegabytesCountsAsAFailedAllocation) {
    constexpr u32 kMost = 64 * 1024 * 1024 / 904;
    EXPECT_NE(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost), nullptr);
    EXPECT_EQ(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost + 1), nullptr);
    EXPECT_EQ(MakePluginItem(PLUGIN_NOTIFY_SPOOFS, 0xffffffff), nullptr);
}

TEST(PluginItem, RecordsAreFilledInPlace) {
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_SPOOFS, 2);
    const std::span<PluginNotifyHost> records = PluginRecords<PluginNotifyHost>(*item);
    ASSERT_EQ(records.size(), 2u);
    FillPluginText(records[1].ip, "10.0.0.5");
    records[1].trustState = 2;
    const auto* seen = static_cast<const PluginNotifyHost*>(item->records);
    EXPECT_STREQ(seen[1].ip, "10.0.0.5");
    EXPECT_EQ(seen[1].trustState, 2u);
    EXPECT_EQ(seen[0].ip[0], 0);
}

TEST(PluginItem, TextsAreCutToTheirField) {
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_ACCESSES, 1);
    PluginNotifyAccess& record = PluginRecords<PluginNotifyAccess>(*item)[0];
    FillPluginText(record.user, std::string(300, 'u').c_str());
    FillPluginText(record.share, "");
    EXPECT_EQ(std::string(record.user), std::string(299, 'u'));
    EXPECT_EQ(record.share[0], 0);
}

std::vector<u32> CountsOf(const PluginNotifyQueue& queue) {
    std::vector<u32> counts;
    for (const auto& waiting : queue.Batch()) counts.push_back(waiting.item->count);
    return counts;
}

TEST(PluginQueue, GivesWhatWaitsInTheOrderOfQueueing) {
    PluginNotifyQueue queue;
    EXPECT_TRUE(queue.IsEmpty());
    for (const u32 count : {5u, 3u, 9u})
        EXPECT_TRUE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, count)));
    EXPECT_EQ(queue.Count(), 3u);
    EXPECT_EQ(CountsOf(queue), (std::vector<u32>{5, 3, 9}));
    EXPECT_EQ(queue.Batch().front().key, 1);
}

TEST(PluginQueue, WhatJoinsAfterABatchWaitsForTheNext) {
    PluginNotifyQueue queue;
    queue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 1));
    queue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 2));
    const auto batch = queue.Batch();
    queue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 3));
    queue.Free(batch);
    EXPECT_EQ(CountsOf(queue), (std::vector<u32>{3}));
    queue.Queue(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, 4));
    EXPECT_EQ(CountsOf(queue), (std::vector<u32>{3, 4}));
    queue.Free(queue.Batch());
    EXPECT_TRUE(queue.IsEmpty());
}

TEST(PluginQueue, DropsAFailedAllocation) {
    PluginNotifyQueue queue;
    EXPECT_FALSE(queue.Queue(nullptr));
    EXPECT_TRUE(queue.IsEmpty());
}

TEST(PluginQueue, TakesNoMoreThanItsLimitUntilSomethingIsFreed) {
    PluginNotifyQueue queue;
    constexpr u32 kMost = 64 * 1024 * 1024 / 904;  // each almost a quarter of what the queue holds
    for (int each = 0; each < 3; ++each)
        EXPECT_TRUE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost)));
    EXPECT_TRUE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost)));
    EXPECT_FALSE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost)));
    EXPECT_EQ(queue.Count(), 4u);
    queue.Free(queue.Batch());
    EXPECT_TRUE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, kMost)));
}

TEST(PluginQueue, WhatAPluginDoesToAnItemDoesNotUpsetItsAccount) {
    PluginNotifyQueue queue;
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(queue.Queue(MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, 64 * 1024 * 1024 / 904)));
        for (const auto& waiting : queue.Batch()) *waiting.item = {};
        queue.Free(queue.Batch());
    }
}

}  // namespace
}  // namespace vardel

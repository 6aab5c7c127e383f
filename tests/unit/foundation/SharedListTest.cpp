#include "foundation/SharedList.h"

#include <gtest/gtest.h>

#include <vector>

namespace vardel {
namespace {

struct Item {
    int number = 0;
    u32 waiting = 0;
};
struct CountWaiting {
    static u32* Waiting(Item* item) { return &item->waiting; }
};
using Numbers = SharedList<int>;
using Items = SharedList<Item*, CountWaiting>;

std::vector<int> All(const Numbers& list) {
    std::vector<int> all;
    list.ForEach([&](int n) {
        all.push_back(n);
        return true;
    });
    return all;
}

TEST(SharedList, AppendsAtTheBackAndPrependsAtTheFront) {
    Numbers list;
    list.Append(2);
    list.Append(3);
    list.Prepend(1);
    EXPECT_EQ(All(list), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(list.TakeFront(), 1);
    EXPECT_EQ(list.TakeBack(), 3);
    EXPECT_EQ(list.Count(), 1u);
}

TEST(SharedList, PrependedEntriesAreServedInArrivalOrderFromTheBack) {
    Numbers list;
    for (int n = 1; n <= 3; ++n) list.Prepend(n);
    EXPECT_EQ(list.TakeBack(), 1);
    EXPECT_EQ(list.TakeBack(), 2);
    EXPECT_EQ(list.TakeBack(), 3);
    EXPECT_EQ(list.TakeBack(), std::nullopt);
    EXPECT_EQ(list.TakeFront(), std::nullopt);
}

TEST(SharedList, OneMarkServesTheWholeRoundAndLeavesWhatJoined) {
    Numbers list;
    list.Append(1);
    list.Append(2);
    const Numbers::Mark mark = list.TakeMark();
    list.Append(3);
    std::vector<int> seen;
    list.ForEach(mark, [&](int n) {
        seen.push_back(n);
        list.Append(n + 100);
        return true;
    });
    EXPECT_EQ(seen, (std::vector<int>{1, 2}));
    EXPECT_EQ(list.ClearTo(mark), 2u);
    EXPECT_EQ(All(list), (std::vector<int>{3, 101, 102}));
}

TEST(SharedList, ClearingHandsOutEachEntryOnce) {
    Numbers list;
    for (int n = 0; n < 1000; ++n) list.Append(n);
    std::vector<int> taken;
    EXPECT_EQ(list.ClearTo(list.TakeMark(), [&](int n) { taken.push_back(n); }), 1000u);
    EXPECT_EQ(taken.size(), 1000u);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.Clear(), 0u);
}

TEST(SharedList, MarksSurviveTakesFromTheFront) {
    Numbers list;
    for (int n = 0; n < 10; ++n) list.Append(n);
    const Numbers::Mark mark = list.TakeMark();
    for (int n = 0; n < 5; ++n) list.TakeFront();
    list.Append(99);
    EXPECT_EQ(list.ClearTo(mark), 5u);
    EXPECT_EQ(All(list), std::vector<int>{99});
}

TEST(SharedList, WalkIsLongerThanOneBatch) {
    Numbers list;
    for (int n = 0; n < 2000; ++n) list.Append(n);
    EXPECT_EQ(All(list).size(), 2000u);
    int visits = 0;
    list.ForEach([&](int) { return ++visits < 700; });
    EXPECT_EQ(visits, 700);
}

TEST(SharedList, RemovesWhatIsUnwantedAndKeepsTheOrder) {
    Numbers list;
    for (int n = 0; n < 10; ++n) list.Append(n);
    const Numbers::Mark mark = list.TakeMark();
    EXPECT_EQ(list.RemoveIf([](int n) { return n % 2 == 0; }), 5u);
    list.Append(11);
    EXPECT_EQ(All(list), (std::vector<int>{1, 3, 5, 7, 9, 11}));
    EXPECT_EQ(list.ClearTo(mark), 5u);
}

TEST(SharedList, TakesTheSameEntryAgainBelowTheFloodLimit) {
    Items list;
    Item item;
    for (int n = 0; n < 1000; ++n) EXPECT_TRUE(list.Append(&item));
    EXPECT_EQ(list.Count(), 1000u);
    EXPECT_EQ(item.waiting, 1000u);
    list.Clear();
    EXPECT_EQ(item.waiting, 0u);
}

TEST(SharedList, PastTheFloodLimitTakesNoEntryThatIsAlreadyWaiting) {
    Items list;
    Item first, second;
    while (list.Count() < kFloodLimit) ASSERT_TRUE(list.Append(&first));
    EXPECT_FALSE(list.Append(&first));
    EXPECT_FALSE(list.Prepend(&first));
    EXPECT_TRUE(list.Append(&second)) << "an entry that isn't waiting still joins";
    EXPECT_FALSE(list.Append(&second));
    EXPECT_EQ(list.Count(), kFloodLimit + 1);
    list.TakeFront();
    list.TakeFront();
    EXPECT_TRUE(list.Append(&first)) << "below the limit again";
}

}  // namespace
}  // namespace vardel

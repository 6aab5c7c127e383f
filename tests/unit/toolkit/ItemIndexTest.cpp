#include "toolkit/ItemIndex.h"

#include <gtest/gtest.h>

#include <vector>

namespace vardel {
namespace {

TEST(ItemIndex, FindsEachItemsNumber) {
    std::vector<int> items(50000);
    ItemIndex index;
    for (int at = 0; at < 50000; ++at) ASSERT_TRUE(index.Insert(&items[static_cast<std::size_t>(at)], at));
    EXPECT_EQ(index.Count(), 50000);
    for (int at = 0; at < 50000; ++at) ASSERT_EQ(index.Find(&items[static_cast<std::size_t>(at)]), at);
}

TEST(ItemIndex, AnItemThatIsThereKeepsItsNumber) {
    int item = 0;
    ItemIndex index;
    EXPECT_TRUE(index.Insert(&item, 3));
    EXPECT_FALSE(index.Insert(&item, 4));
    EXPECT_EQ(index.Find(&item), 3);
    EXPECT_EQ(index.Count(), 1);
    index.Renumber(&item, 9);
    EXPECT_EQ(index.Find(&item), 9);
}

TEST(ItemIndex, WhatIsNotThereIsNotFound) {
    int item = 0, other = 0;
    ItemIndex index;
    EXPECT_EQ(index.Find(&item), -1);
    EXPECT_EQ(index.Find(nullptr), -1);
    EXPECT_FALSE(index.Insert(nullptr, 1));
    index.Insert(&item, 1);
    EXPECT_EQ(index.Find(&other), -1);
    EXPECT_EQ(index.Find(nullptr), -1);
    index.Clear();
    EXPECT_EQ(index.Find(&item), -1);
    EXPECT_EQ(index.Count(), 0);
}

TEST(ItemIndex, AddressesInEqualStepsSpread) {
    // Records of a pool lie in steps of their size.
    std::vector<char> pool(4096 * 4096);
    ItemIndex index;
    for (int at = 0; at < 4096; ++at)
        ASSERT_TRUE(index.Insert(&pool[static_cast<std::size_t>(at) * 4096], at));
    for (int at = 0; at < 4096; ++at) ASSERT_EQ(index.Find(&pool[static_cast<std::size_t>(at) * 4096]), at);
}

}  // namespace
}  // namespace vardel

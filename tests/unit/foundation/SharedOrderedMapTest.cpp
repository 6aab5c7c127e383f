#include "foundation/SharedOrderedMap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace vardel {
namespace {

using Map = SharedOrderedMap<int>;

TEST(SharedOrderedMap, AppendAssignsKeysFromOneOn) {
    Map map;
    int value = 0;
    EXPECT_EQ(map.Append(&value), 1);
    EXPECT_EQ(map.Append(&value), 2);
    EXPECT_TRUE(map.Erase(2));
    EXPECT_EQ(map.Append(&value), 3) << "a key is never given twice";
}

TEST(SharedOrderedMap, InsertIsUniqueAndWalksInKeyOrder) {
    Map map;
    int a = 1, b = 2;
    EXPECT_TRUE(map.Insert(5, &a));
    EXPECT_FALSE(map.Insert(5, &b));
    EXPECT_TRUE(map.Insert(-3, &b));
    EXPECT_TRUE(map.Insert(2, nullptr));
    std::vector<i32> keys;
    map.ForEach([&](i32 key, int*) { keys.push_back(key); });
    EXPECT_EQ(keys, (std::vector<i32>{-3, 2, 5}));
    ReadPin pin;
    EXPECT_EQ(map.Find(5)->Value(), &a);
    EXPECT_EQ(map.Find(2)->Value(), nullptr);
    EXPECT_EQ(map.Find(3), nullptr);
    EXPECT_EQ(map.After(2)->key, 5);
    EXPECT_EQ(map.After(5), nullptr);
}

TEST(SharedOrderedMap, AgreesWithAnOrdinaryMapOverRandomChanges) {
    Map map;
    std::map<i32, int*> model;
    int values[4] = {};
    std::mt19937 random(2);
    for (int step = 0; step < 40000; ++step) {
        const i32 key = static_cast<i32>(random() % 600) - 300;
        if (random() % 3 == 0) {
            EXPECT_EQ(map.Erase(key), model.erase(key) == 1);
        } else {
            int* value = &values[random() % 4];
            EXPECT_EQ(map.Insert(key, value), model.emplace(key, value).second);
        }
        ASSERT_EQ(map.Count(), model.size());
    }
    std::map<i32, int*> walked;
    map.ForEach([&](i32 key, int* value) { walked.emplace(key, value); });
    EXPECT_EQ(walked, model);
    map.Clear();
    EXPECT_TRUE(map.IsEmpty());
}

TEST(SharedOrderedMap, WalkSurvivesTheErasureOfWhereItStands) {
    Map map;
    int value = 0;
    for (int n = 0; n < 100; ++n) map.Append(&value);
    std::vector<i32> met;
    map.ForEach([&](i32 key, int*) {
        met.push_back(key);
        map.Erase(key);
        if (key % 2 == 1) map.Erase(key + 1);
    });
    for (i32 key = 1; key <= 100; key += 2) EXPECT_EQ(std::count(met.begin(), met.end(), key), 1);
    EXPECT_TRUE(map.IsEmpty());
}

}  // namespace
}  // namespace vardel

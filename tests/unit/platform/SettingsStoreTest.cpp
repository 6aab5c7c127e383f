// What every settings store does: the one in memory and the running system's, which is the registry on
// Windows and a file (in a folder of the test's own) on Linux.
#include "platform/SettingsStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/support/StoresUnderTest.h"

namespace vardel {
namespace {

using test::StoreUnderTest;

class AnyStore : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override { Clean(); }
    void TearDown() override { Clean(); }

    // Deepest first; a key with others below it is not deleted.
    void Clean() {
        for (const char* below : {"\\a\\b", "\\a", "\\A b\\c d", "\\A b", ""})
            store.Delete(Path(below).c_str());
    }
    std::string Path(const std::string& below = "") { return tested.Root() + below; }
    StoreKey Make(const std::string& below = "") {
        const StoreKey key = store.Create(nullptr, Path(below).c_str());
        EXPECT_TRUE(key);
        return key;
    }
    bool Has(const std::string& below) {
        const StoreKey key = store.Open(nullptr, Path(below).c_str());
        if (key) store.Close(key);
        return key != nullptr;
    }
    void Set(StoreKey key, const char* name, ValueType type, const std::string& data) {
        EXPECT_EQ(store.Set(key, name, type, data.data(), static_cast<u32>(data.size())), StoreResult::Ok);
    }
    struct Answer {
        StoreResult result = StoreResult::Failed;
        ValueType type = ValueType::None;
        u32 size = 0;
        std::string data;
    };
    Answer Get(StoreKey key, const char* name, u32 room) {
        Answer answer;
        answer.data.assign(room, '#');
        answer.size = room;
        answer.result = store.Query(key, name, answer.type, answer.data.data(), answer.size);
        return answer;
    }

    StoreUnderTest tested{GetParam()};
    SettingsStore& store = tested.Store();
};

TEST_P(AnyStore, OpenFindsNoKeyThatWasNotMade) {
    EXPECT_FALSE(Has(""));
    EXPECT_FALSE(Has("\\a"));
}

TEST_P(AnyStore, CreateMakesTheKeysAboveAsWell) {
    store.Close(Make("\\a\\b"));
    EXPECT_TRUE(Has("\\a\\b"));
    EXPECT_TRUE(Has("\\a"));
    EXPECT_TRUE(Has(""));
}

TEST_P(AnyStore, CreateOpensAKeyThatIsThereWithItsValues) {
    StoreKey key = Make("\\a");
    Set(key, "n", ValueType::Binary, "xyz");
    store.Close(key);
    key = Make("\\a");
    EXPECT_EQ(Get(key, "n", 3).data, "xyz");
    store.Close(key);
}

TEST_P(AnyStore, KeysAreReachedThroughTheirParents) {
    const StoreKey root = Make();
    const StoreKey below = store.Create(root, "A b\\c d");
    ASSERT_TRUE(below);
    Set(below, "n", ValueType::Binary, "1");
    const StoreKey again = store.Open(root, "A b\\c d");
    ASSERT_TRUE(again);
    EXPECT_EQ(Get(again, "n", 1).data, "1");
    EXPECT_FALSE(store.Open(root, "A b\\nothing"));
    for (const StoreKey key : {root, below, again}) store.Close(key);
    EXPECT_TRUE(Has("\\A b\\c d"));
}

TEST_P(AnyStore, NamesDoNotTellUpperFromLowerCase) {
    const StoreKey key = Make("\\A b");
    Set(key, "ViewFilterOptions", ValueType::Binary, "one");
    Set(key, "VIEWFILTEROPTIONS", ValueType::Binary, "two");
    EXPECT_EQ(Get(key, "viewfilteroptions", 3).data, "two");
    store.Close(key);
    EXPECT_TRUE(Has("\\a B"));
}

TEST_P(AnyStore, ValuesComeBackWithTypeAndLength) {
    const StoreKey key = Make();
    const struct {
        const char* name;
        ValueType type;
        std::string data;
    } values[] = {{"dword", ValueType::Dword, std::string("\1\0\0\x80", 4)},
                  {"qword", ValueType::Qword, std::string("\1\2\3\4\5\6\7\x88", 8)},
                  {"text", ValueType::Text, std::string("text\0", 5)},
                  {"binary", ValueType::Binary, std::string("\0\1\0\xff", 4)},
                  {"none", ValueType::None, "x"},
                  {"empty", ValueType::Binary, ""},
                  {"odd type", static_cast<ValueType>(77), "abc"}};
    for (const auto& value : values) Set(key, value.name, value.type, value.data);
    for (const auto& value : values) {
        const Answer answer = Get(key, value.name, 20);
        EXPECT_EQ(answer.result, StoreResult::Ok) << value.name;
        EXPECT_EQ(answer.type, value.type) << value.name;
        EXPECT_EQ(answer.size, value.data.size()) << value.name;
        EXPECT_EQ(answer.data.substr(0, answer.size), value.data) << value.name;
        EXPECT_EQ(answer.data.substr(answer.size), std::string(20 - answer.size, '#')) << value.name;
    }
    store.Close(key);
}

TEST_P(AnyStore, AValueInTheWayOfAnotherTypeIsReplaced) {
    const StoreKey key = Make();
    Set(key, "n", ValueType::Dword, "abcd");
    Set(key, "n", ValueType::Binary, "longer than before");
    const Answer answer = Get(key, "n", 50);
    EXPECT_EQ(answer.type, ValueType::Binary);
    EXPECT_EQ(answer.size, 18u);
    store.Close(key);
}

TEST_P(AnyStore, AMissingValueIsNotFound) {
    const StoreKey key = Make();
    EXPECT_EQ(Get(key, "nothing", 4).result, StoreResult::NotFound);
    ValueType type;
    u32 size = 0;
    EXPECT_EQ(store.Query(key, "nothing", type, nullptr, size), StoreResult::NotFound);
    store.Close(key);
}

TEST_P(AnyStore, ATooSmallBufferGivesMoreDataWithTypeAndLength) {
    const StoreKey key = Make();
    Set(key, "n", ValueType::Binary, "12345");
    for (const u32 room : {0u, 1u, 4u}) {
        const Answer answer = Get(key, "n", room);
        EXPECT_EQ(answer.result, StoreResult::MoreData) << room;
        EXPECT_EQ(answer.type, ValueType::Binary);
        EXPECT_EQ(answer.size, 5u);
    }
    EXPECT_EQ(Get(key, "n", 5).result, StoreResult::Ok);
    store.Close(key);
}

TEST_P(AnyStore, WithoutABufferTypeAndLengthAreTold) {
    const StoreKey key = Make();
    Set(key, "n", ValueType::Text, std::string("four\0", 5));
    ValueType type = ValueType::None;
    u32 size = 0;
    EXPECT_EQ(store.Query(key, "n", type, nullptr, size), StoreResult::Ok);
    EXPECT_EQ(type, ValueType::Text);
    EXPECT_EQ(size, 5u);
    store.Close(key);
}

TEST_P(AnyStore, AnEmptyValueFitsNoBuffer) {
    const StoreKey key = Make();
    Set(key, "n", ValueType::Binary, "");
    char byte = '#';
    ValueType type;
    u32 size = 0;
    EXPECT_EQ(store.Query(key, "n", type, &byte, size), StoreResult::Ok);
    EXPECT_EQ(size, 0u);
    store.Close(key);
}

TEST_P(AnyStore, DeleteTakesTheKeyWithItsValuesAndLeavesTheOneAbove) {
    StoreKey key = Make("\\a\\b");
    Set(key, "n", ValueType::Binary, "x");
    store.Close(key);
    EXPECT_TRUE(store.Delete(Path("\\A\\B").c_str()));
    EXPECT_FALSE(Has("\\a\\b"));
    EXPECT_TRUE(Has("\\a"));
    key = Make("\\a\\b");
    EXPECT_EQ(Get(key, "n", 1).result, StoreResult::NotFound);
    store.Close(key);
}

TEST_P(AnyStore, DeleteRefusesWhatIsMissingOrHasKeysBelow) {
    EXPECT_FALSE(store.Delete(Path("\\a").c_str()));
    StoreKey key = Make("\\a\\b");
    store.Close(key);
    EXPECT_FALSE(store.Delete(Path("\\a").c_str()));
    EXPECT_TRUE(Has("\\a\\b"));
    EXPECT_FALSE(store.Delete(""));
}

TEST_P(AnyStore, AHandleToADeletedKeyServesNoMore) {
    const StoreKey key = Make("\\a");
    Set(key, "n", ValueType::Binary, "x");
    EXPECT_TRUE(store.Delete(Path("\\a").c_str()));
    EXPECT_NE(Get(key, "n", 1).result, StoreResult::Ok);
    EXPECT_NE(store.Set(key, "n", ValueType::Binary, "x", 1), StoreResult::Ok);
    EXPECT_FALSE(store.Open(key, "b"));
    EXPECT_FALSE(store.Create(key, "b"));
    store.Close(key);
    EXPECT_FALSE(Has("\\a"));
}

TEST_P(AnyStore, ANullKeyIsNone) {
    EXPECT_EQ(Get(nullptr, "n", 1).result, StoreResult::InvalidHandle);
    EXPECT_EQ(store.Set(nullptr, "n", ValueType::Binary, "x", 1), StoreResult::InvalidHandle);
    store.Close(nullptr);
}

TEST_P(AnyStore, AutostartComesAndGoes) {
    const std::string name = tested.AutostartName();
    EXPECT_TRUE(store.RemoveAutostart(name.c_str())) << "nothing to take out is no failure";
    EXPECT_FALSE(tested.HasAutostart());
    EXPECT_TRUE(store.AddAutostart(name.c_str()));
    EXPECT_TRUE(store.AddAutostart(name.c_str()));
    EXPECT_TRUE(tested.HasAutostart());
    EXPECT_TRUE(store.RemoveAutostart(name.c_str()));
    EXPECT_FALSE(tested.HasAutostart());
}

TEST_P(AnyStore, ManyThreadsWorkAtOnce) {
    const StoreKey key = Make();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&, number] {
            const StoreBatch batch(store);
            const std::string name = "n" + std::to_string(number);
            const std::string below = Path("\\a\\b");
            for (int round = 0; round < 50; ++round) {
                Set(key, name.c_str(), ValueType::Binary,
                    std::string(1 + static_cast<std::size_t>(round), 'x'));
                if (const StoreKey other = store.Create(nullptr, below.c_str())) store.Close(other);
                store.Delete(below.c_str());
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int number = 0; number < 4; ++number)
        EXPECT_EQ(Get(key, ("n" + std::to_string(number)).c_str(), 100).size, 50u);
    store.Close(key);
}

INSTANTIATE_TEST_SUITE_P(Stores, AnyStore, ::testing::Values("Memory", "System"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(UserSettingsStore, IsTheSystemsUnlessAnotherIsInstalled) {
    EXPECT_EQ(&UserSettingsStore(), &SystemSettingsStore());
    TreeSettingsStore first, second;
    {
        const ScopedSettingsStore outer(first);
        EXPECT_EQ(&UserSettingsStore(), &first);
        {
            const ScopedSettingsStore inner(second);
            EXPECT_EQ(&UserSettingsStore(), &second);
        }
        EXPECT_EQ(&UserSettingsStore(), &first);
    }
    EXPECT_EQ(&UserSettingsStore(), &SystemSettingsStore());
}

}  // namespace
}  // namespace vardel

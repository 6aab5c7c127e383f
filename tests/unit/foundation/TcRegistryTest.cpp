#include "foundation/TcRegistry.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "tests/unit/support/StoresUnderTest.h"

namespace vardel {
namespace {

static_assert(std::has_virtual_destructor_v<TcRegistry>);

// Over the store in memory and over the running system's.
class Registry : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        key = registry.CreateKey(UserSoftwareTree(), tested.Root().c_str());
        ASSERT_TRUE(key);
    }
    void TearDown() override {
        registry.CloseRegistryKey(key);
        tested.Store().Delete(tested.Root().c_str());
    }
    void Raw(const char* name, ValueType type, const std::string& data) {
        EXPECT_EQ(tested.Store().Set(key, name, type, data.data(), static_cast<u32>(data.size())),
                  StoreResult::Ok);
    }
    // What a buffer of that size, full of rubbish, holds afterwards.
    std::string Text(const char* name, int size) {
        std::string buffer(static_cast<std::size_t>(size) + 1, '#');
        registry.RegQuerySZ(key, name, buffer.data(), size);
        EXPECT_EQ(buffer.back(), '#') << "written behind the buffer";
        return buffer.c_str();
    }
    test::StoreUnderTest tested{GetParam()};
    ScopedSettingsStore installed{tested.Store()};
    TcRegistry registry;
    RegistryHandle key = nullptr;
};

TEST_P(Registry, TheConstantTwoIsTheUserSoftwareTree) {
    EXPECT_EQ(UserSoftwareTree(), reinterpret_cast<RegistryHandle>(2));
    const RegistryHandle again = registry.OpenRegKey(UserSoftwareTree(), tested.Root().c_str());
    EXPECT_TRUE(again);
    registry.CloseRegistryKey(again);
}

TEST_P(Registry, OpenGivesNullForAMissingKeyAndForNoRoot) {
    EXPECT_FALSE(registry.OpenRegKey(UserSoftwareTree(), (tested.Root() + "\\nothing").c_str()));
    EXPECT_FALSE(registry.OpenRegKey(nullptr, tested.Root().c_str()));
    EXPECT_FALSE(registry.CreateKey(nullptr, tested.Root().c_str()));
}

TEST_P(Registry, ClosingNothingOrTheTreeIsHarmless) {
    registry.CloseRegistryKey(nullptr);
    registry.CloseRegistryKey(UserSoftwareTree());
}

TEST_P(Registry, DwordsComeBackWithTheirSign) {
    for (const int value : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        registry.RegSetDword(key, "n", value);
        EXPECT_EQ(registry.RegQueryDword(key, "n"), value);
    }
}

TEST_P(Registry, ADwordThatCannotBeReadIsMinusOne) {
    EXPECT_EQ(registry.RegQueryDword(key, "nothing"), -1);
    EXPECT_EQ(registry.RegQueryDword(nullptr, "nothing"), -1);
    registry.RegSetSZ(key, "text", "123");
    EXPECT_EQ(registry.RegQueryDword(key, "text"), -1);
    Raw("binary", ValueType::Binary, "1234");
    EXPECT_EQ(registry.RegQueryDword(key, "binary"), -1);
    registry.RegSetQword(key, "qword", 5);
    EXPECT_EQ(registry.RegQueryDword(key, "qword"), -1);
    Raw("short", ValueType::Dword, "123");
    EXPECT_EQ(registry.RegQueryDword(key, "short"), -1);
    Raw("long", ValueType::Dword, "12345");
    EXPECT_EQ(registry.RegQueryDword(key, "long"), -1);
}

TEST_P(Registry, QwordsComeBackWithTheirSign) {
    for (const i64 value : {i64{0}, i64{-1}, i64{0x7fffffffffffffff}, i64{1'700'000'000}}) {
        registry.RegSetQword(key, "n", value);
        EXPECT_EQ(registry.RegQueryQword(key, "n"), value);
    }
}

TEST_P(Registry, AQwordThatCannotBeReadIsZero) {
    EXPECT_EQ(registry.RegQueryQword(key, "nothing"), 0);
    registry.RegSetDword(key, "dword", 5);
    EXPECT_EQ(registry.RegQueryQword(key, "dword"), 0);
    Raw("binary", ValueType::Binary, "12345678");
    EXPECT_EQ(registry.RegQueryQword(key, "binary"), 0);
    Raw("short", ValueType::Qword, "1234567");
    EXPECT_EQ(registry.RegQueryQword(key, "short"), 0);
}

TEST_P(Registry, TextsAreCutToTheBufferAndTerminated) {
    registry.RegSetSZ(key, "n", "twelve chars");
    EXPECT_EQ(Text("n", 300), "twelve chars");
    EXPECT_EQ(Text("n", 13), "twelve chars");
    EXPECT_EQ(Text("n", 12), "twelve char");
    EXPECT_EQ(Text("n", 2), "t");
    EXPECT_EQ(Text("n", 1), "");
}

TEST_P(Registry, ATextThatCannotBeReadIsEmpty) {
    EXPECT_EQ(Text("nothing", 10), "");
    registry.RegSetDword(key, "dword", 0x41414141);
    EXPECT_EQ(Text("dword", 10), "");
    Raw("binary", ValueType::Binary, std::string("abc\0", 4));
    EXPECT_EQ(Text("binary", 10), "");
    Raw("many", ValueType::MultiText, std::string("abc\0\0", 5));
    EXPECT_EQ(Text("many", 10), "");
}

TEST_P(Registry, TextsOfOddFormsAreRead) {
    Raw("expanding", ValueType::ExpandText, std::string("%TEMP%\\x\0", 9));
    EXPECT_EQ(Text("expanding", 20), "%TEMP%\\x");
    Raw("two", ValueType::Text, std::string("first\0second\0", 13));
    EXPECT_EQ(Text("two", 20), "first");
    registry.RegSetSZ(key, "empty", "");
    EXPECT_EQ(Text("empty", 20), "");
    Raw("no bytes", ValueType::Text, "");
    EXPECT_EQ(Text("no bytes", 20), "");
}

TEST_P(Registry, ATextMayBeLong) {
    registry.RegSetSZ(key, "n", std::string(100'000, 'x').c_str());
    EXPECT_EQ(Text("n", 300), std::string(299, 'x'));
    EXPECT_EQ(Text("n", 200'000), std::string(100'000, 'x'));
}

TEST_P(Registry, AutostartComesAndGoes) {
    registry.SetRegAutostartU(tested.AutostartName().c_str());
    EXPECT_TRUE(tested.HasAutostart());
    registry.DeleteRegAutostartU(tested.AutostartName().c_str());
    EXPECT_FALSE(tested.HasAutostart());
}

INSTANTIATE_TEST_SUITE_P(Stores, Registry, ::testing::Values("Memory", "System"),
                         [](const auto& store) { return std::string(store.param); });

}  // namespace
}  // namespace vardel

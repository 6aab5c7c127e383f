#include "platform/RegistryTree.h"

#include <gtest/gtest.h>

#include "platform/TreeSettingsStore.h"
#include "tests/unit/support/RegistryDump.h"

namespace vardel {
namespace {

TEST(RegistryTree, KeysAboveOthersExistWithoutBeingMade) {
    RegistryTree tree;
    tree.Make("R\\A\\B");
    EXPECT_TRUE(tree.HasSubkeys("r\\a"));
    EXPECT_TRUE(tree.Find("R\\a"));
    EXPECT_FALSE(tree.Find("R\\A\\B\\C"));
    EXPECT_FALSE(tree.Find("R\\A B"));
    EXPECT_FALSE(tree.HasSubkeys("R\\A\\B"));
}

TEST(RegistryTree, ANameThatOnlyStartsAlikeIsAnotherKey) {
    RegistryTree tree;
    tree.Make("R\\A");
    tree.Make("R\\A!");
    tree.Make("R\\AB");
    EXPECT_FALSE(tree.HasSubkeys("R\\A"));
    EXPECT_TRUE(tree.Erase("R\\A"));
    EXPECT_TRUE(tree.Find("R\\A!"));
    EXPECT_TRUE(tree.Find("R\\AB"));
}

TEST(RegistryTree, EraseTakesAllBelowAndMarksIt) {
    RegistryTree tree;
    const RegistryTree::KeyPointer above = tree.Make("R\\A"), below = tree.Make("R\\A\\B\\C");
    EXPECT_TRUE(tree.Erase("r\\a"));
    EXPECT_TRUE(above->deleted && below->deleted);
    EXPECT_TRUE(tree.IsEmpty());
    EXPECT_FALSE(tree.Erase("R\\A"));
}

TEST(RegistryTree, TheFirstSpellingStays) {
    RegistryTree tree;
    tree.Make("R\\Name")->Set("Value", ValueType::Binary, "1");
    tree.Make("R\\NAME")->Set("VALUE", ValueType::Text, "2");
    EXPECT_EQ(tree.Find("r\\name")->path, "R\\Name");
    EXPECT_EQ(test::Dump(*tree.Find("r\\name")), std::vector<std::string>{"1 Value=2"});
}

TEST(RegistryTree, LettersBeyondAsciiTellCase) {
    RegistryTree tree;
    tree.Make("R\\\xe4");
    EXPECT_FALSE(tree.Find("R\\\xc4"));
}

TEST(RegistryTree, ValuesStandInTheOrderOfTheirMaking) {
    RegistryTree tree;
    const RegistryTree::KeyPointer key = tree.Make("R");
    for (const char* name : {"Host2", "Host10", "Host1"}) key->Set(name, ValueType::Binary, "");
    key->Set("host2", ValueType::Binary, "again");
    EXPECT_TRUE(key->Erase("HOST10"));
    EXPECT_FALSE(key->Erase("HOST10"));
    key->Set("Host10", ValueType::Binary, "");
    EXPECT_EQ(test::Dump(*key), (std::vector<std::string>{"3 Host2=again", "3 Host1=", "3 Host10="}));
}

TEST(RegistryTree, AValidPathHasNoEmptyComponent) {
    for (const char* path : {"R", "R\\A", "R\\A b\\c]"}) EXPECT_TRUE(RegistryTree::IsValidPath(path)) << path;
    for (const char* path : {"", "\\", "\\R", "R\\", "R\\\\A"})
        EXPECT_FALSE(RegistryTree::IsValidPath(path)) << path;
}

// A store over what a registry text told: how a configuration file is used without touching the user's own.
TEST(TreeSettingsStore, ServesATreeThatWasReadFromText) {
    RegistryTree tree;
    tree.Make("HKEY_CURRENT_USER\\Software\\A\\B")->Set("n", ValueType::Dword, std::string("\5\0\0\0", 4));
    TreeSettingsStore store(std::move(tree));
    const StoreKey above = store.Open(nullptr, "a");
    const StoreKey key = store.Open(above, "b");
    ASSERT_TRUE(key);
    ValueType type;
    u32 value = 0, size = sizeof value;
    EXPECT_EQ(store.Query(key, "N", type, &value, size), StoreResult::Ok);
    EXPECT_EQ(value, 5u);
    store.Close(key);
    store.Close(above);
}

TEST(TreeSettingsStore, GivesACopyOfItsTree) {
    TreeSettingsStore store;
    const StoreKey key = store.Create(nullptr, "A");
    store.Set(key, "n", ValueType::Binary, "x", 1);
    RegistryTree copy = store.Tree();
    store.Set(key, "n", ValueType::Binary, "y", 1);
    store.Close(key);
    EXPECT_EQ(test::Dump(copy), (std::vector<std::string>{"[HKEY_CURRENT_USER\\Software\\A]",
                                                          "[HKEY_CURRENT_USER\\Software\\A] 3 n=x"}));
}

}  // namespace
}  // namespace vardel

// Reads what every Windows has, and writes nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/MachineConfig.h"

namespace vardel {
namespace {

class MachineConfigWindows : public testing::Test {
  protected:
    MachineConfig& config = SystemMachineConfig();
};

TEST_F(MachineConfigWindows, AMissingKeyGivesNull) {
    EXPECT_EQ(config.Open(nullptr, "SOFTWARE\\Vardel no such key"), nullptr);
    config.Close(nullptr);
}

TEST_F(MachineConfigWindows, ListsSubkeysUntilTheEnd) {
    const MachineKey software = config.Open(nullptr, "SOFTWARE");
    ASSERT_NE(software, nullptr);
    char name[256];
    u32 count = 0;
    bool microsoft = false;
    while (config.EnumerateSubkey(software, count, name, sizeof name)) {
        microsoft |= std::strcmp(name, "Microsoft") == 0;
        ++count;
    }
    EXPECT_TRUE(microsoft);
    EXPECT_GT(count, 0u);
    config.Close(software);
}

TEST_F(MachineConfigWindows, OpensBelowAParentAndReadsATextValue) {
    const MachineKey software = config.Open(nullptr, "SOFTWARE");
    ASSERT_NE(software, nullptr);
    const MachineKey version = config.Open(software, "Microsoft\\Windows NT\\CurrentVersion");
    ASSERT_NE(version, nullptr);
    char text[128] = "";
    EXPECT_TRUE(config.QueryText(version, "SystemRoot", text, sizeof text));
    EXPECT_NE(std::string(text).find('\\'), std::string::npos) << text;
    char cut[4];
    EXPECT_TRUE(config.QueryText(version, "SystemRoot", cut, sizeof cut));
    EXPECT_EQ(std::string(cut), std::string(text).substr(0, 3));
    EXPECT_FALSE(config.QueryText(version, "Vardel no such value", text, sizeof text));
    config.Close(version);
    config.Close(software);
}

TEST_F(MachineConfigWindows, ASubkeysNameIsCutToTheBuffer) {
    const MachineKey root = config.Open(nullptr, "SOFTWARE\\Microsoft");
    ASSERT_NE(root, nullptr);
    char full[256], cut[3];
    ASSERT_TRUE(config.EnumerateSubkey(root, 0, full, sizeof full));
    ASSERT_TRUE(config.EnumerateSubkey(root, 0, cut, sizeof cut));
    EXPECT_EQ(std::string(cut), std::string(full).substr(0, 2));
    config.Close(root);
}

}  // namespace
}  // namespace vardel

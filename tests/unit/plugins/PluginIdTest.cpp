#include <gtest/gtest.h>

#include "foundation/TcMD5.h"
#include "plugins/PluginTable.h"

namespace vardel {
namespace {

TEST(PluginIdentity, IsTheDigestOfBothTextsPaddedWithLeadingBlanks) {
    TcMD5 digest;
    digest.setPlainText((std::string(296, ' ') + "Name" + std::string(289, ' ') + "Description").c_str());
    EXPECT_STREQ(PluginId("Name", "Description").GetContent(), digest.getMD5Digest());
}

TEST(PluginIdentity, IsLostWithAnyChangeOfEitherText) {
    const TcString id = PluginId("Name", "Description");
    EXPECT_EQ(PluginId("Name", "Description"), id);
    EXPECT_NE(PluginId("Name2", "Description"), id);
    EXPECT_NE(PluginId("Name", "Description."), id);
    EXPECT_NE(PluginId("Description", "Name"), id);
}

TEST(PluginIdentity, CutsAtSixHundredCharacters) {
    const std::string long1(400, 'a'), long2(400, 'b');
    TcMD5 digest;
    digest.setPlainText((long1 + long2).substr(0, 600).c_str());
    EXPECT_STREQ(PluginId(long1.c_str(), long2.c_str()).GetContent(), digest.getMD5Digest());
    EXPECT_EQ(PluginId(std::string(700, 'x').c_str(), "a"), PluginId(std::string(600, 'x').c_str(), "b"));
}

TEST(PluginIdentity, ReadsNoMoreThanItNeeds) {
    const std::vector<char> endless(600, 'x');  // no terminator within
    EXPECT_EQ(PluginId(endless.data(), nullptr), PluginId(std::string(600, 'x').c_str(), ""));
}

TEST(PluginIdentity, NullCountsAsEmpty) {
    EXPECT_EQ(PluginId(nullptr, nullptr), PluginId("", ""));
    EXPECT_EQ(PluginId(nullptr, "d"), PluginId("", "d"));
}

TEST(PluginIdentity, TextsAreNoFormat) {
    EXPECT_NE(PluginId("%s%n", "%d"), PluginId("", ""));
}

}  // namespace
}  // namespace vardel

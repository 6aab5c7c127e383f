// What needs no server; the enumeration of a real one is tested in a network of its own.
#include "platform/ShareEnumeration.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

class ShareEnumerationTest : public testing::TestWithParam<const char*> {};

// Only a dotted address may become part of what is opened.
TEST_P(ShareEnumerationTest, RefusesWhatIsNoServerByItsAddress) {
    u32 handle = 0;
    std::vector<ShareEntry> entries;
    const u32 result = SystemShareEnumeration().Enumerate(GetParam(), handle, entries);
    EXPECT_NE(result, kAllShares);
    EXPECT_NE(result, kMoreShares);
    EXPECT_TRUE(entries.empty());
    EXPECT_EQ(handle, 0u);
}

INSTANTIATE_TEST_SUITE_P(Names, ShareEnumerationTest,
                         testing::Values("", "\\\\", "10.0.0.5", "\\10.0.0.5", "\\\\nas", "\\\\10.0.0", "\\\\10.0.0.5/..",
                                         "\\\\10.0.0.5@nas", "\\\\user:word@10.0.0.5", "\\\\10.0.0.5 ", "\\\\::1"));

}  // namespace
}  // namespace vardel

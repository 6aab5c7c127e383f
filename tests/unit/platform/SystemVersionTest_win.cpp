#include "platform/SystemVersion.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(SystemVersionWindows, TheRunningSystemTellsItsVersion) {
    SystemVersion version;
    ASSERT_TRUE(QuerySystemVersion(version));
    EXPECT_GE(version.major, 5u);
    EXPECT_GT(version.build, 0u);
}

TEST(SystemVersionWindows, TheCommonControlsTellAMajorVersionInTheUpperHalf) {
    EXPECT_GE(QueryControlsVersion() >> 16, 4u);
    EXPECT_LT(QueryControlsVersion() >> 16, 16u);
}

}  // namespace
}  // namespace vardel

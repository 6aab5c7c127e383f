#include "platform/MessageLoop.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(MessageLoopPosix, ThereIsNoneAndTheCallReturnsAtOnce) {
    EXPECT_FALSE(RunSystemMessageLoop());
}

}  // namespace
}  // namespace vardel

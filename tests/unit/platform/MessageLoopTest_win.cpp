#include "platform/MessageLoop.h"

#include <gtest/gtest.h>

#include "platform/WindowsApi.h"

namespace vardel {
namespace {

int timerCalls = 0;

void CALLBACK EndAtThirdCall(HWND, UINT, UINT_PTR, DWORD) {
    if (++timerCalls == 3) PostQuitMessage(0);
}

TEST(MessageLoopWindows, DispatchesUntilTheQuitMessage) {
    timerCalls = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, &EndAtThirdCall);
    ASSERT_NE(timer, 0u);
    EXPECT_TRUE(RunSystemMessageLoop());
    EXPECT_EQ(timerCalls, 3);
    KillTimer(nullptr, timer);
}

}  // namespace
}  // namespace vardel

#include "frame/HiddenWindowFrame.h"

#include <gtest/gtest.h>

#include <thread>

#include "capture/Vardel.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

// The window belongs to this process: another program of the session may have one of the same name.
HWND OwnMainWindow() {
    for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, kMainWindowClass, kMainWindowTitle));) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId()) return window;
    }
    return nullptr;
}

struct HiddenWindowFrameTest : testing::Test {
    HiddenWindowFrameTest() { TheEventMap().SetGuard(nullptr, nullptr); }

    // Runs the frame; a second thread waits for its window and hands it over to `user`.
    template <class User>
    bool RunWith(User&& user) {
        std::thread other([&] {
            for (int tries = 0; tries < 1000; ++tries) {
                if (const HWND window = OwnMainWindow()) return user(window);
                Sleep(10);
            }
        });
        const bool built = frame.CreateApp(app.data, app);
        other.join();
        return built;
    }

    test::TestServices system;
    HiddenWindowFrame frame{nullptr};
    Vardel app{system.services, frame};
};

TEST_F(HiddenWindowFrameTest, TheExitCommandEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
    EXPECT_TRUE(frame.WasBuilt());
}

TEST_F(HiddenWindowFrameTest, ACloseRequestEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_CLOSE, 0, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
}

TEST_F(HiddenWindowFrameTest, TheEndOfTheSessionEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_ENDSESSION, TRUE, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
}

TEST_F(HiddenWindowFrameTest, ASessionThatGoesOnDoesNotEndIt) {
    EXPECT_TRUE(RunWith([](HWND window) {
        SendMessageA(window, WM_ENDSESSION, FALSE, 0);
        SendMessageA(window, WM_COMMAND, kExitCommand + 1, 0);
        EXPECT_TRUE(IsWindow(window));
        PostMessageA(window, WM_COMMAND, kExitCommand, 0);
    }));
}

TEST_F(HiddenWindowFrameTest, IsNeverVisibleAndBearsItsName) {
    EXPECT_TRUE(RunWith([](HWND window) {
        EXPECT_FALSE(IsWindowVisible(window));
        EXPECT_EQ(GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW, WS_EX_TOOLWINDOW);
        PostMessageA(window, WM_COMMAND, kExitCommand, 0);
    }));
}

TEST_F(HiddenWindowFrameTest, ParsesTheNotificationWordsBeforeItsLoop) {
    app.data.settings.SyslogNotificationWords = "panic,oops";
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
    EXPECT_EQ(app.data.notificationWords.Count(), 2u);
}

TEST_F(HiddenWindowFrameTest, CanBeRunAgain) {
    for (int round = 0; round < 2; ++round)
        EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
}

}  // namespace
}  // namespace vardel

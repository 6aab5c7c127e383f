// The desktop program's frame while it runs: its message loop turns in the test's own thread, and a second thread plays
// the user, who sends its windows real messages.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "capture/Vardel.h"
#include "frame/VardelGui.h"
#include "tests/unit/support/GuiObjects_win.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

struct RunningGui : testing::Test {
    RunningGui() { TheEventMap().SetGuard(nullptr, nullptr); }

    // A window of this process: another program of the session may have one of the same name.
    static HWND OwnWindow(const char* className, const char* title) {
        for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, className, title));) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId()) return window;
        }
        return nullptr;
    }
    static HWND OwnMainWindow() { return OwnWindow(kMainWindowClass, kMainWindowTitle); }

    // Waits for what another thread brings about.
    template <class Condition>
    static bool Until(Condition&& condition) {
        constexpr int kTries = 1000;
        for (int tries = 0; tries < kTries; ++tries) {
            if (condition()) return true;
            Sleep(10);
        }
        return false;
    }

    // Runs the frame; a second thread waits for its window and hands it over to `user`.
    template <class User>
    bool RunWith(User&& user) {
        std::thread other([&] {
            HWND window = nullptr;
            if (Until([&] { return (window = OwnMainWindow()) != nullptr; })) user(window);
        });
        const bool built = frame.CreateApp(app.data, app);
        other.join();
        return built;
    }

    // The same once its loop has begun. The program is ended afterwards.
    template <class Deed>
    void While(Deed&& deed) {
        EXPECT_TRUE(RunWith([&](HWND window) {
            SendMessageA(window, WM_NULL, 0, 0);
            EXPECT_TRUE(Until([&] { return frame.Surface().SyslogPopup() != nullptr; }));
            deed(window);
            PostMessageA(window, WM_COMMAND, kExitCommand, 0);
        }));
    }

    // Runs something in the window's own thread: timers, for one, can't be asked for from another.
    static void InItsThread(HWND window, const std::function<void()>& deed) {
        static WNDPROC before = nullptr;
        constexpr UINT kRun = WM_APP + 90;
        const WNDPROC running = [](HWND of, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message != kRun) return CallWindowProcA(before, of, message, wParam, lParam);
            (*reinterpret_cast<const std::function<void()>*>(lParam))();
            return 0;
        };
        before = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(running));
        SendMessageA(window, kRun, 0, reinterpret_cast<LPARAM>(&deed));
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
    }

    // Counts what is left of the system's room in the window's own thread, which must not run short of it meanwhile.
    template <class Round>
    static void ExpectNoObjectsLeftBehindBy(HWND window, int rounds, Round&& round) {
        ExpectNoObjectsLeftBehind(rounds, round, [&] {
            GuiRoom room;
            InItsThread(window, [&] { room = CountGuiRoom(); });
            return room;
        });
    }

    TestServices system;
    VardelGui frame{nullptr};
    Vardel app{system.services, frame};
    const VardelGui& gui = frame;
};

}  // namespace vardel::test

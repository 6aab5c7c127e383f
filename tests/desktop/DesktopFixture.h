// What the tests of windows share: steps that run inside a dialog's own message loop, and a dialog that tells
// what reached it. Nothing here sleeps: each step is a posted message, so it runs when those before it were
// handled.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/desktop/DesktopIds.h"
#include "tests/unit/support/Canvas_win.h"
#include "toolkit/TcDialog.h"

namespace vardel::test {

// Runs closures one by one from whichever message loop is turning. A loop that never ends is broken after a
// while.
class Steps {
  public:
    Steps() {
        WNDCLASSA own{};
        own.lpfnWndProc = &Steps::Proc;
        own.hInstance = GetModuleHandleA(nullptr);
        own.lpszClassName = "Vardel test steps";
        RegisterClassA(&own);
        window_ = CreateWindowA(own.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, own.hInstance,
                                nullptr);
        SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetTimer(window_, kWatchdog, kLongestMs, nullptr);
    }
    ~Steps() {
        EXPECT_TRUE(steps_.empty()) << "the loop ended before all steps had run";
        DestroyWindow(window_);
        MSG message;
        while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
        }
    }
    Steps(const Steps&) = delete;
    Steps& operator=(const Steps&) = delete;

    Steps& Then(std::function<void()> step) {
        steps_.push_back(std::move(step));
        Ask();
        return *this;
    }

  private:
    static constexpr UINT_PTR kWatchdog = 1;
    static constexpr UINT kLongestMs = 30000;

    static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* steps = reinterpret_cast<Steps*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (steps && message == WM_APP) steps->RunNext();
        if (steps && message == WM_TIMER && wParam == kWatchdog) {
            ADD_FAILURE() << "a loop did not end";
            steps->steps_.clear();
            PostQuitMessage(0);
        }
        return DefWindowProcA(window, message, wParam, lParam);
    }

    // The message of the next step is posted behind what the step before it has posted.
    void Ask() {
        if (!asked_ && !steps_.empty()) asked_ = PostMessageA(window_, WM_APP, 0, 0) != FALSE;
    }
    // A step may run a loop of its own, whose steps are added meanwhile.
    void RunNext() {
        asked_ = false;
        if (steps_.empty()) return;
        const auto step = std::move(steps_.front());
        steps_.pop_front();
        step();
        Ask();
    }

    HWND window_ = nullptr;
    bool asked_ = false;
    std::deque<std::function<void()>> steps_;
};

// Tells each virtual operation in `told`, in order; hooks replace what they do.
class ToldDialog : public TcDialog {
  public:
    explicit ToldDialog(int ident = DIALOG_PLAIN) { SetDialogIdent(ident); }

    bool OnInitDialog(LPARAM param) override {
        Tell("init " + std::to_string(param));
        if (onInit) onInit();
        return true;
    }
    bool OnCommand(int id, int notification, HWND) override {
        if (notification == 0) Tell("command " + std::to_string(id));
        return onCommand ? onCommand(id) : false;
    }
    void OnClose() override {
        Tell("close");
        TcDialog::OnClose();
    }
    void OnDestroy() override {
        Tell("destroy");
        if (onDestroy) onDestroy();
    }
    ULONG_PTR OnNotify(int id, LPARAM data) override { return onNotify ? onNotify(id, data) : 0; }
    bool OnMeasureItem(int id, MEASUREITEMSTRUCT* item) override { return onMeasure && onMeasure(id, item); }
    bool OnDrawItem(int id, DRAWITEMSTRUCT* item) override { return onDraw && onDraw(id, item); }
    HBRUSH OnColorStatic(HDC dc, int id, HWND control) override {
        return onColorStatic ? onColorStatic(dc, id, control) : nullptr;
    }
    void OnTimer(int id) override { Tell("timer " + std::to_string(id)); }
    bool OnKeyDown(int key) override {
        Tell("key " + std::to_string(key));
        return onKey && onKey(key);
    }
    bool OnTaskbarButtonCreated(ITaskbarList3* taskbar) override {
        Tell(taskbar ? "taskbar" : "no taskbar");
        return keepTaskbar;
    }

    // Shows the dialog, takes the steps one by one once it stands and ends it with true. Gives the show call's result.
    bool ShowFor(std::vector<std::function<void()>> actions, LPARAM param = 0) {
        Steps steps;
        const auto init = onInit;
        onInit = [&] {
            if (init) init();
            for (auto& action : actions) steps.Then(action);
            steps.Then([this] { ExitDialog(true); });
        };
        const bool result = ShowDialogModal(param);
        onInit = init;
        return result;
    }

    void Tell(const std::string& what) { told.push_back(what); }
    bool WasTold(const std::string& what) const {
        for (const std::string& one : told)
            if (one == what) return true;
        return false;
    }

    std::vector<std::string> told;
    std::function<void()> onInit;
    std::function<void()> onDestroy;
    std::function<bool(int)> onCommand;
    std::function<ULONG_PTR(int, LPARAM)> onNotify;
    std::function<bool(int, MEASUREITEMSTRUCT*)> onMeasure;
    std::function<bool(int, DRAWITEMSTRUCT*)> onDraw;
    std::function<HBRUSH(HDC, int, HWND)> onColorStatic;
    std::function<bool(int)> onKey;
    bool keepTaskbar = false;
};

// A window of the test's own, such as a dialog's parent.
class PlainWindow {
  public:
    PlainWindow()
        : window_(CreateWindowA("STATIC", "Parent", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 300, 200,
                                nullptr, nullptr, GetModuleHandleA(nullptr), nullptr)) {}
    ~PlainWindow() { DestroyWindow(window_); }
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;
    HWND Get() const { return window_; }

  private:
    const HWND window_;
};

}  // namespace vardel::test

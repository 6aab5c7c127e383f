#include "frame/HiddenWindowFrame.h"

#include <algorithm>

#include "capture/Vardel.h"
#include "foundation/TcTrace.h"
#include "frame/EngineDeeds.h"

namespace vardel {

namespace {

constexpr UINT_PTR kPrintTimer = 1;
constexpr UINT kPrintPeriodMs = 200;

}  // namespace

bool HiddenWindowFrame::RegisterMainClass(HINSTANCE instance) {
    WNDCLASSEXA main{};
    main.cbSize = sizeof main;
    main.lpfnWndProc = &HiddenWindowFrame::MainProc;
    main.hInstance = instance;
    main.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    main.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    main.lpszClassName = kMainWindowClass;
    return RegisterClassExA(&main) != 0;
}

bool HiddenWindowFrame::CreateApp(VardelData& data, Vardel& app) {
    data_ = &data;
    const auto instance = reinterpret_cast<HINSTANCE>(data.programInstance.Get());
    if (!RegisterMainClass(instance)) return false;
    const HWND window = CreateWindowExA(WS_EX_TOOLWINDOW, kMainWindowClass, kMainWindowTitle, 0, 0, 0, 0, 0, nullptr,
                                        nullptr, instance, this);
    if (window) {
        built_ = true;
        RunWindow(window, data, app);
        DestroyWindow(window);
    }
    UnregisterClassA(kMainWindowClass, instance);
    return window != nullptr;
}

void HiddenWindowFrame::RunWindow(HWND window, VardelData& data, Vardel& app) {
    ShowWindow(window, SW_HIDE);
    UpdateWindow(window);
    EngineDeeds deeds(data);
    PeriodicTick tick(&data, alerts_, deeds);
    tick_ = &tick;
    report_.PrintNewEvents(data);
    SetTimer(window, kPrintTimer, kPrintPeriodMs, nullptr);
    WindowTimers timers(window);
    ArmTimers(timers, data);
    VARDEL_TRACE("HiddenWindowFrame", "CreateApp", "Start messageloop...");
    app.RunMessageLoop();
    tick_ = nullptr;
}

void HiddenWindowFrame::WindowTimers::Arm(u32 id, u64 periodMs) {
    SetTimer(window_, id, static_cast<UINT>(std::min<u64>(periodMs, USER_TIMER_MAXIMUM)), nullptr);
}

void HiddenWindowFrame::ShowError(const char* title, const char* text) {
    MessageBoxA(nullptr, text, title, MB_OK | MB_ICONSTOP);
}

LRESULT CALLBACK HiddenWindowFrame::MainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    }
    // Messages that come before the frame is known go to the default handler.
    auto* frame = reinterpret_cast<HiddenWindowFrame*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    return frame ? frame->OnMessage(window, message, wParam, lParam)
                 : DefWindowProcA(window, message, wParam, lParam);
}

LRESULT HiddenWindowFrame::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND: OnCommand(LOWORD(wParam)); break;
        case WM_TIMER: OnTimer(wParam); break;
        case WM_CLOSE: OnCommand(kExitCommand); return 0;
        case WM_ENDSESSION:
            KillTimer(window, kArpFlushTimer);
            if (wParam) OnCommand(kExitCommand);
            break;
        default: break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

void HiddenWindowFrame::OnCommand(unsigned command) {
    if (command == kExitCommand) PostQuitMessage(0);
}

void HiddenWindowFrame::OnTimer(UINT_PTR id) {
    if (id == kPrintTimer) report_.PrintNewEvents(*data_);
    else if (tick_) tick_->OnTimer(static_cast<u32>(id));
}

}  // namespace vardel

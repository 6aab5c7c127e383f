#include "frame/VardelGui.h"

#include <algorithm>
#include <new>

#include "capture/Vardel.h"
#include "foundation/TcSystemInfo.h"
#include "foundation/TcTrace.h"
#include "frame/EngineDeeds.h"
#include "frame/TrayNotice.h"
#include "frame/VardelNotifyWnd.h"
#include "resources/IconIds.h"
#include "resources/ResourceIds.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr UINT_PTR kPrintTimer = 1;
constexpr UINT kPrintPeriodMs = 200;

// A popup whose texts are also told as lines.
class ToldPopup : public VardelNotifyWnd {
  public:
    ToldPopup(TcSystemInfo* system, AlertLines& lines)
        : VardelNotifyWnd(nullptr, reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)), system), lines_(lines) {}
    bool Show(const char* text) override {
        const bool shown = VardelNotifyWnd::Show(text);
        lines_.Tell(text);
        return shown;
    }

  private:
    AlertLines& lines_;
};

int ControlsMajor(TcSystemInfo* system) { return system ? system->DetectComCtrlVersion() >> 16 : kNoControlsVersion; }

}  // namespace

void VardelGui::SystemInfoDeleter::operator()(TcSystemInfo* info) const { TcSystemInfo::DestroyObject(info); }

VardelGui::VardelGui(std::FILE* output)
    : report_(output), lines_(output, SystemDesktopNotice()), systemInfo_(TcSystemInfo::CreateObject()) {
    windows_[static_cast<std::size_t>(ProgramWindow::View)] = &view_;
}

VardelGui::~VardelGui() = default;

bool VardelGui::RegisterMainClass(HINSTANCE instance) {
    WNDCLASSEXA main{};
    main.cbSize = sizeof main;
    main.lpfnWndProc = &VardelGui::MainProc;
    main.hInstance = instance;
    main.hIcon = LoadIconA(TcGuiTools::Instance(nullptr), MAKEINTRESOURCEA(IDI_PROGRAM));
    main.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    main.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    main.lpszClassName = kMainWindowClass;
    return RegisterClassExA(&main) != 0;
}

bool VardelGui::CreateApp(VardelData& data, Vardel& app) {
    data_ = &data;
    language_ = data.resourceInstance;
    images_ = data.programInstance;
    view_.SetLanguage(language_);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    const HINSTANCE instance = TcGuiTools::Instance(data.programInstance);
    if (!RegisterMainClass(instance)) return false;
    window_ = CreateWindowExA(WS_EX_TOOLWINDOW, kMainWindowClass, kMainWindowTitle, 0, 0, 0, 0, 0, nullptr, nullptr,
                              instance, this);
    const bool made = window_ != nullptr;
    if (made) {
        built_ = true;
        RunWindow(app);
        DestroyWindow(window_);
        tray_.Remove();
        window_ = nullptr;
    }
    UnregisterClassA(kMainWindowClass, instance);
    return made;
}

void VardelGui::RunWindow(Vardel& app) {
    ShowWindow(window_, SW_HIDE);
    UpdateWindow(window_);
    EngineDeeds deeds(*data_);
    PeriodicTick tick(data_, *this, deeds);
    tick_ = &tick;
    SendMessageA(window_, WM_INITDIALOG, 0, 0);
    tray_.Set(window_, images_, ControlsMajor(app.systemInfo));
    tray_.Add(TrayTip().c_str());
    MakePopups();
    report_.PrintNewEvents(*data_);
    VARDEL_TRACE("VardelGui", "CreateApp", "Start messageloop...");
    app.RunMessageLoop();
    tick_ = nullptr;
}

// Null where there is no memory; the alerts of that popup are then told to nobody.
std::unique_ptr<NotifyPopup> VardelGui::MakePopup() {
    return std::unique_ptr<NotifyPopup>(new (std::nothrow) ToldPopup(systemInfo_.get(), lines_));
}

void VardelGui::MakePopups() {
    hostPopup_ = MakePopup();
    watchPopup_ = MakePopup();
    syslogPopup_ = MakePopup();
    if (watchPopup_) SetUpWatchPopup(*watchPopup_);
    if (syslogPopup_) SetUpSyslogPopup(*syslogPopup_);
}

std::string VardelGui::TrayTip() const {
    constexpr int kTextSize = 256;
    char format[kTextSize];
    data_->services.strings.Load(language_, IDS_TRAY_TOOLTIP, format, kTextSize);
    TcString tip(format);
    tip.Replace("%s", kProductName);
    tip.Replace("%d", std::to_string(data_->arpMap.Count()).c_str());
    return tip.GetContent();
}

void VardelGui::WindowTimers::Arm(u32 id, u64 periodMs) {
    SetTimer(window_, id, static_cast<UINT>(std::min<u64>(periodMs, USER_TIMER_MAXIMUM)), nullptr);
}

void VardelGui::ShowError(const char* title, const char* text) {
    MessageBoxA(nullptr, text, title, MB_OK | MB_ICONSTOP);
}

void VardelGui::ShowTrayNotify(u32 iconId, const char* text, const char* tip) {
    tray_.Notify(iconId, text, tip);
    lines_.ShowTrayNotify(iconId, text, tip);
}

Color VardelGui::MenuHighlight() {
    const COLORREF color = GetSysColor(COLOR_MENUHILIGHT);
    return {GetRValue(color), GetGValue(color), GetBValue(color)};
}

LRESULT CALLBACK VardelGui::MainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* gui =
            static_cast<VardelGui*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
        gui->window_ = window;
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(gui));
    }
    // Messages that come before the frame is known go to the default handler.
    auto* gui = reinterpret_cast<VardelGui*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    return gui ? gui->OnMessage(message, wParam, lParam) : DefWindowProcA(window, message, wParam, lParam);
}

LRESULT VardelGui::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: OnCreate(); break;
        case WM_INITDIALOG: OnInit(); break;
        case WM_DESTROY: menus_.Destroy(); break;
        case WM_COMMAND: OnCommand(LOWORD(wParam)); break;
        case WM_TIMER: OnTimer(wParam); break;
        case WM_CLOSE: OnCommand(kExitCommand); return 0;
        case WM_ENDSESSION: OnEndSession(wParam != 0); break;
        case kTrayMessage: OnTrayMessage(static_cast<UINT>(wParam), static_cast<UINT>(lParam)); return 0;
        case WM_MEASUREITEM:
            if (wParam == 0 && menus_.OnMeasureItem(reinterpret_cast<MEASUREITEMSTRUCT*>(lParam))) return TRUE;
            break;
        case WM_DRAWITEM:
            if (wParam == 0 && menus_.OnDrawItem(reinterpret_cast<DRAWITEMSTRUCT*>(lParam))) return TRUE;
            break;
        case WM_MENUCHAR:
            if (const LRESULT item = TcMenu::OnMenuChar(reinterpret_cast<HMENU>(lParam), LOWORD(wParam))) return item;
            break;
        default:
            if (taskbarCreated_ != 0 && message == taskbarCreated_) tray_.AddAgain(TrayTip().c_str());
            break;
    }
    return DefWindowProcA(window_, message, wParam, lParam);
}

void VardelGui::OnCreate() {
    menus_.Build(*data_, language_, images_);
    taskbarCreated_ = RegisterWindowMessageA("TaskbarCreated");
    VARDEL_TRACE("VardelGui", "MainProc", "WM_CREATE");
}

void VardelGui::OnInit() {
    SetTimer(window_, kPrintTimer, kPrintPeriodMs, nullptr);
    WindowTimers timers(window_);
    ArmTimers(timers, *data_);
}

void VardelGui::OnEndSession(bool ends) {
    KillTimer(window_, kArpFlushTimer);
    if (ends) OnCommand(kExitCommand);
}

void VardelGui::OnTimer(UINT_PTR id) {
    if (id == kPrintTimer) report_.PrintNewEvents(*data_);
    else if (tick_) tick_->OnTimer(static_cast<u32>(id));
}

}  // namespace vardel

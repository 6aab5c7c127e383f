#include "toolkit/TcDialog.h"

#include "toolkit/ControlReflection.h"
#include "toolkit/TcGuiTools.h"
#include "toolkit/TcMenu.h"

#include <commctrl.h>
#include <shobjidl.h>

namespace vardel {

namespace {

// The object whose window the system is making: owner-drawn controls are measured before WM_INITDIALOG.
TcDialog* objectInTheMaking = nullptr;

UINT TaskbarButtonMessage() {
    static const UINT message = RegisterWindowMessageA("TaskbarButtonCreated");
    return message;
}

void RegisterControlClasses() {
    INITCOMMONCONTROLSEX classes{};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES | ICC_PROGRESS_CLASS |
                    ICC_INTERNET_CLASSES | ICC_STANDARD_CLASSES;
    static const bool registered = InitCommonControlsEx(&classes) != FALSE;
    (void)registered;  // a template whose class is missing makes no window, which is told then
}

// Keeps a dialog's parent from taking input. It takes input again before the dialog goes, or else the system
// would give the focus to another program's window.
class DisabledParent {
  public:
    explicit DisabledParent(HWND parent)
        : parent_(parent && IsWindow(parent) && !EnableWindow(parent, FALSE) ? parent : nullptr) {}
    ~DisabledParent() { Release(); }
    DisabledParent(const DisabledParent&) = delete;
    DisabledParent& operator=(const DisabledParent&) = delete;
    void Release() {
        if (parent_ && IsWindow(parent_)) EnableWindow(parent_, TRUE);
        parent_ = nullptr;
    }

  private:
    HWND parent_;
};

BOOL CALLBACK TellColorChange(HWND control, LPARAM) {
    SendMessageA(control, WM_SYSCOLORCHANGE, 0, 0);
    return TRUE;
}

}  // namespace

TcDialog::~TcDialog() {
    // The window should have gone before; the derived part is no more, so nothing must reach it.
    if (!window_) return;
    SetWindowLongPtrA(window_, DWLP_USER, 0);
    DestroyWindow(window_);
    ReleaseTaskbar();
}

void TcDialog::OnClose() {
    ExitDialog(false);
}
void TcDialog::OnDestroy() {}
ULONG_PTR TcDialog::OnNotify(int, LPARAM) {
    return 0;
}
HBRUSH TcDialog::OnColorStatic(HDC, int, HWND) {
    return nullptr;
}
void TcDialog::OnTimer(int) {}
bool TcDialog::OnKeyDown(int) {
    return false;
}
bool TcDialog::OnTaskbarButtonCreated(ITaskbarList3*) {
    return false;
}

bool TcDialog::ShowDialogModal(LPARAM param) {
    return Run(nullptr, param);
}

bool TcDialog::ShowSubDialog(LPARAM param) {
    return Run(parent_ && IsWindow(parent_) ? GetAncestor(parent_, GA_ROOT) : parent_, param);
}

bool TcDialog::Run(HWND owner, LPARAM param) {
    if (running_) return false;
    running_ = true;
    ended_ = initialised_ = result_ = false;
    DisabledParent disabled(owner);
    if (MakeWindow(owner, param)) {
        if (!ended_) {
            ShowWindow(window_, SW_SHOWNORMAL);
            SetForegroundWindow(window_);
            RunLoop();
        }
        disabled.Release();
        if (window_) DestroyWindow(window_);
    }
    running_ = false;
    return result_;
}

HWND TcDialog::MakeWindow(HWND owner, LPARAM param) {
    RegisterControlClasses();
    const char* const name = MAKEINTRESOURCEA(ident_);
    HINSTANCE module = TcGuiTools::Instance(module_);
    if (!FindResourceA(module, name, reinterpret_cast<LPCSTR>(RT_DIALOG)))
        module = TcGuiTools::Instance(nullptr);
    TcDialog* const outer = objectInTheMaking;
    objectInTheMaking = this;
    const HWND window = CreateDialogParamA(module, name, owner, &TcDialog::DialogProc, param);
    objectInTheMaking = outer;
    return window && window == window_ ? window : nullptr;
}

void TcDialog::RunLoop() {
    MSG message;
    while (!ended_) {
        const BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got <= 0) {
            // The end of the program: the loops around this one have to hear of it too.
            if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));
            ended_ = true;
        } else if (!TakesKey(message) && !IsDialogMessageA(window_, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
}

bool TcDialog::TakesKey(const MSG& message) {
    if (message.message != WM_KEYDOWN || !window_) return false;
    if (message.hwnd != window_ && !IsChild(window_, message.hwnd)) return false;
    if (!OnKeyDown(static_cast<int>(message.wParam))) return false;
    if (message.wParam == VK_TAB && window_)
        SendMessageA(window_, WM_NEXTDLGCTL, GetKeyState(VK_SHIFT) < 0, FALSE);
    return true;
}

void TcDialog::ExitDialog(bool result) {
    if (!running_ || ended_) return;
    ended_ = true;
    result_ = result;
    if (window_) PostMessageA(window_, WM_NULL, 0, 0);  // the loop may be waiting for a message
}

INT_PTR CALLBACK TcDialog::DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* dialog = reinterpret_cast<TcDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    if (!dialog && objectInTheMaking) {
        dialog = objectInTheMaking;
        objectInTheMaking = nullptr;
        dialog->window_ = window;
        SetWindowLongPtrA(window, DWLP_USER, reinterpret_cast<LONG_PTR>(dialog));
    }
    return dialog ? dialog->OnMessage(message, wParam, lParam) : FALSE;
}

INT_PTR TcDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            return RouteInit(lParam);
        case WM_COMMAND:
            return RouteCommand(wParam, lParam);
        case WM_CLOSE:
            OnClose();
            return TRUE;
        case WM_DESTROY:
            return RouteDestroy();
        case WM_NCDESTROY:
            return Unbind();
        case WM_NOTIFY:
            return RouteNotify(lParam);
        case WM_MEASUREITEM:
            return OnMeasureItem(static_cast<int>(wParam), reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)) &&
                   Answer(TRUE);
        case WM_DRAWITEM:
            return OnDrawItem(static_cast<int>(wParam), reinterpret_cast<DRAWITEMSTRUCT*>(lParam)) &&
                   Answer(TRUE);
        case WM_MENUCHAR:
            return RouteMenuChar(wParam, lParam);
        case WM_CTLCOLORSTATIC: {
            const auto control = reinterpret_cast<HWND>(lParam);
            return reinterpret_cast<INT_PTR>(
                OnColorStatic(reinterpret_cast<HDC>(wParam), GetDlgCtrlID(control), control));
        }
        case WM_TIMER:
            OnTimer(static_cast<int>(wParam));
            return TRUE;
        case WM_SIZE:
            resizer_.OnSize();
            return FALSE;
        case WM_GETMINMAXINFO:
            return RouteMinMaxInfo(lParam);
        case WM_SYSCOLORCHANGE:
            return RouteColorChange(wParam, lParam);
        default:
            return message != 0 && message == TaskbarButtonMessage() ? RouteTaskbarButton() : FALSE;
    }
}

// The result of a dialog procedure's message goes beside the word that it was handled.
// Most answers are the one before, and reading it costs less than putting it.
INT_PTR TcDialog::Answer(LRESULT result) const {
    if (window_ && GetWindowLongPtrA(window_, DWLP_MSGRESULT) != result)
        SetWindowLongPtrA(window_, DWLP_MSGRESULT, result);
    return TRUE;
}

INT_PTR TcDialog::RouteInit(LPARAM param) {
    resizer_.Begin(window_);
    initialised_ = true;
    return OnInitDialog(param);
}

INT_PTR TcDialog::RouteCommand(WPARAM wParam, LPARAM lParam) {
    const int id = LOWORD(wParam);
    if (OnCommand(id, HIWORD(wParam), reinterpret_cast<HWND>(lParam))) return TRUE;
    if (id != IDCANCEL || HIWORD(wParam) != 0) return FALSE;
    OnClose();
    return TRUE;
}

INT_PTR TcDialog::RouteNotify(LPARAM lParam) {
    const auto* header = reinterpret_cast<NMHDR*>(lParam);
    LRESULT result = 0;
    if (ReflectNotify(header->hwndFrom, lParam, result)) return Answer(result);
    const ULONG_PTR own = OnNotify(static_cast<int>(header->idFrom), lParam);
    return own ? Answer(static_cast<LRESULT>(own)) : FALSE;
}

INT_PTR TcDialog::RouteMenuChar(WPARAM wParam, LPARAM lParam) {
    const LRESULT answer = TcMenu::OnMenuChar(reinterpret_cast<HMENU>(lParam), LOWORD(wParam));
    return answer ? Answer(answer) : FALSE;
}

// Common controls learn of new system colours from their top-level window.
INT_PTR TcDialog::RouteColorChange(WPARAM, LPARAM) {
    EnumChildWindows(window_, &TellColorChange, 0);
    return FALSE;
}

INT_PTR TcDialog::RouteMinMaxInfo(LPARAM lParam) {
    resizer_.OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
    return Answer(0);
}

INT_PTR TcDialog::RouteTaskbarButton() {
    ReleaseTaskbar();
    void* made = nullptr;
    if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3, &made)))
        return FALSE;
    taskbar_ = static_cast<ITaskbarList3*>(made);
    if (FAILED(taskbar_->HrInit()) || !OnTaskbarButtonCreated(taskbar_)) ReleaseTaskbar();
    return TRUE;
}

void TcDialog::ReleaseTaskbar() {
    if (taskbar_) taskbar_->Release();
    taskbar_ = nullptr;
}

INT_PTR TcDialog::RouteDestroy() {
    if (initialised_) OnDestroy();
    return TRUE;
}

INT_PTR TcDialog::Unbind() {
    SetWindowLongPtrA(window_, DWLP_USER, 0);
    window_ = nullptr;
    ended_ = true;  // whoever destroyed the window, there is none to wait for
    resizer_.End();
    ReleaseTaskbar();
    return FALSE;
}

}  // namespace vardel

#include "frame/VardelNotifyWnd.h"

#include <algorithm>

#include "foundation/TcSystemInfo.h"
#include "frame/PopupPainting.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr char kTitle[] = "Vardelwatch - Notfiy Window";
constexpr char kObjectProperty[] = "InfoDlgClassPtr";
constexpr char kFontFace[] = "Arial";
// From there on windows can be layered.
constexpr int kFirstLayeredSystem = 7;
constexpr UINT kTextFormat = DT_EXPANDTABS | DT_VCENTER;

// The window class stands as long as there are objects. Main thread.
int objects = 0;
HINSTANCE classInstance = nullptr;

COLORREF ColorRef(Color color) { return RGB(color.red, color.green, color.blue); }

DesktopMeasures MeasureDesktop() {
    RECT workArea{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    return {ToPixels(workArea), GetSystemMetrics(SM_CXFULLSCREEN), GetSystemMetrics(SM_CXSCREEN),
            GetSystemMetrics(SM_CYSCREEN)};
}

void Draw(HDC dc, const PaintStep& step) {
    const UniquePen pen(CreatePen(PS_SOLID, 1, ColorRef(step.pen)));
    const Selected withPen(dc, pen.Get());
    const PixelRect& area = step.area;
    if (step.kind == PaintStep::Kind::Line) {
        MoveToEx(dc, area.left, area.top, nullptr);
        LineTo(dc, area.right, area.bottom);
        return;
    }
    const UniqueBrush brush(CreateSolidBrush(ColorRef(step.fill)));
    const Selected withBrush(dc, brush.Get());
    Rectangle(dc, area.left, area.top, area.right, area.bottom);
}

UniqueFont MakeFont(HDC dc, const PopupLook& look) {
    constexpr int kPointsPerInch = 72;
    LOGFONTA font{};
    font.lfHeight = -MulDiv(look.fontPoints, GetDeviceCaps(dc, LOGPIXELSY), kPointsPerInch);
    font.lfWeight = look.fontWeight;
    font.lfCharSet = DEFAULT_CHARSET;
    lstrcpynA(font.lfFaceName, kFontFace, LF_FACESIZE);
    return UniqueFont(CreateFontIndirectA(&font));
}

}  // namespace

VardelNotifyWnd::FadeFunction::FadeFunction(TcSystemInfo* systemInfo) {
    if (!systemInfo || systemInfo->DetectOSVersion() < kFirstLayeredSystem) return;
    module_ = GetModuleHandleA("user32.dll");
    if (!module_) {
        module_ = LoadLibraryA("user32.dll");
        moduleLoaded_ = module_ != nullptr;
    }
    if (module_)
        function_ = reinterpret_cast<Function>(
            reinterpret_cast<void*>(GetProcAddress(module_, "SetLayeredWindowAttributes")));
}

VardelNotifyWnd::FadeFunction::~FadeFunction() {
    if (moduleLoaded_) FreeLibrary(module_);
}

void VardelNotifyWnd::FadeFunction::Apply(HWND window, i32 opacity) const {
    if (function_) function_(window, 0, static_cast<BYTE>(opacity), LWA_ALPHA);
}

VardelNotifyWnd::VardelNotifyWnd(ModuleHandle resources, ModuleHandle program, TcSystemInfo* systemInfo)
    : fade_(systemInfo),
      instance_(reinterpret_cast<HINSTANCE>(resources ? resources : program)),
      life_(static_cast<bool>(fade_)) {
    if (objects++ > 0) return;
    classInstance = instance_;
    RegisterNotifyClass(classInstance);
}

// A window that still stands must not outlive the object it calls.
VardelNotifyWnd::~VardelNotifyWnd() {
    while (!windows_.empty()) DestroyWindow(windows_.back());
    if (--objects == 0) UnregisterClassA(kNotifyWindowClass, classInstance);
}

bool VardelNotifyWnd::RegisterNotifyClass(HINSTANCE instance) const {
    WNDCLASSA notify{};
    notify.style = CS_DROPSHADOW;
    notify.lpfnWndProc = &VardelNotifyWnd::WindowProc;
    notify.hInstance = instance;
    notify.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    notify.hbrBackground = CreateSolidBrush(ColorRef(look_.left));  // the class's own from then on
    notify.lpszClassName = kNotifyWindowClass;
    if (RegisterClassA(&notify)) return true;
    DeleteObject(notify.hbrBackground);
    return false;
}

bool VardelNotifyWnd::Show(const char* text) {
    desktop_ = MeasureDesktop();
    life_.Begin();
    text_ = text;
    showing_ = true;
    const HWND window = CreateWindowExA(WS_EX_NOACTIVATE | WS_EX_LAYERED | WS_EX_TOPMOST, kNotifyWindowClass, kTitle,
                                        WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr, classInstance, this);
    // Wanted: it stays marked as showing and takes no further text.
    if (!window) return false;
    window_ = window;
    Place(window);
    SetTimer(window, kFadeInTimer, kFadePeriodMs, nullptr);
    return true;
}

// Hidden, so that nothing is seen before the first step of the fade.
void VardelNotifyWnd::Place(HWND window) const {
    const PopupPoint place = PlacePopup(desktop_.workArea, FindTaskbarEdge(desktop_), look_.atTheEdge, extent_.width,
                                        extent_.height);
    SetWindowPos(window, HWND_TOPMOST, place.x, place.y, extent_.width, extent_.height,
                 SWP_HIDEWINDOW | SWP_NOACTIVATE);
}

LRESULT CALLBACK VardelNotifyWnd::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* creator =
            static_cast<VardelNotifyWnd*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
        SetPropA(window, kObjectProperty, creator);
        creator->windows_.push_back(window);
    }
    auto* object = static_cast<VardelNotifyWnd*>(GetPropA(window, kObjectProperty));
    return object ? object->OnMessage(window, message, wParam, lParam)
                  : DefWindowProcA(window, message, wParam, lParam);
}

LRESULT VardelNotifyWnd::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: OnCreate(window); return 0;
        case WM_TIMER: CarryOut(window, life_.OnTimer(static_cast<u32>(wParam), look_.displayTimeMs)); return 0;
        case WM_CLOSE: CarryOut(window, life_.OnClose()); return 0;
        case WM_LBUTTONUP:
            // One with a time limit doesn't react to the mouse.
            if (look_.StaysUntilClicked()) SendMessageA(window, WM_CLOSE, 0, 0);
            return 0;
        case WM_MOUSEMOVE:
        case WM_NCPAINT: DefWindowProcA(window, message, wParam, lParam); return 1;
        case WM_PAINT: OnPaint(window); return 0;
        case WM_PRINTCLIENT: Paint(reinterpret_cast<HDC>(wParam)); return 0;
        case WM_DESTROY: OnDestroy(); return 0;
        case WM_NCDESTROY: OnNcDestroy(window); break;
        default: break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

void VardelNotifyWnd::OnCreate(HWND window) {
    MeasureText(window);
    SetWindowLongPtrA(window, GWL_STYLE, GetWindowLongPtrA(window, GWL_STYLE) & ~static_cast<LONG_PTR>(WS_CAPTION));
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window, SW_SHOWNOACTIVATE);
}

void VardelNotifyWnd::MeasureText(HWND window) {
    const WindowDc dc(window);
    if (!font_ || look_.fontDirty) font_ = MakeFont(dc.Get(), look_);
    RECT text{};
    const Selected font(dc.Get(), font_.Get());
    DrawTextA(dc.Get(), text_.c_str(), -1, &text, DT_CALCRECT | kTextFormat);
    extent_ = ExtentForText(static_cast<i32>(text.right), static_cast<i32>(text.bottom));
}

void VardelNotifyWnd::OnPaint(HWND window) const {
    PAINTSTRUCT painting;
    const HDC dc = BeginPaint(window, &painting);
    Paint(dc);
    EndPaint(window, &painting);
}

void VardelNotifyWnd::Paint(HDC dc) const {
    for (const PaintStep& step : PaintingOf(look_, extent_.width, extent_.height)) Draw(dc, step);
    if (text_.empty()) return;
    RECT area{extent_.text.left, extent_.text.top, extent_.text.right, extent_.text.bottom};
    const Selected font(dc, font_.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ColorRef(look_.text));
    DrawTextA(dc, text_.c_str(), -1, &area, kTextFormat);
}

void VardelNotifyWnd::CarryOut(HWND window, const PopupStep& step) {
    if (step.showFirst) {
        fade_.Apply(window, 0);
        ShowWindow(window, SW_SHOWNOACTIVATE);
    }
    if (step.opacity) fade_.Apply(window, *step.opacity);
    if (step.kill) KillTimer(window, *step.kill);
    if (step.start) SetTimer(window, step.start->timer, step.start->periodMs, nullptr);
    if (step.destroy) DestroyWindow(window);
}

// The object is ready for the next text.
void VardelNotifyWnd::OnDestroy() {
    window_ = nullptr;
    life_.Begin();
    showing_ = false;
    extent_ = {};
}

void VardelNotifyWnd::OnNcDestroy(HWND window) {
    window_ = nullptr;
    RemovePropA(window, kObjectProperty);
    std::erase(windows_, window);
}

}  // namespace vardel

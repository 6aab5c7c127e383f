#include "toolkit/TcColorBar.h"

#include "toolkit/ColorBarLayout.h"
#include "toolkit/ColorSteps.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr UINT_PTR kBarSubclassId = 0x5462;
constexpr int kBarIconEdge = 16;

void FillStrip(HDC dc, const RECT& place, COLORREF color) {
    SetBkColor(dc, color);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &place, "", 0, nullptr);
}

}  // namespace

TcColorBar::~TcColorBar() {
    Release();
}

void TcColorBar::Release() {
    if (control_) RemoveWindowSubclass(control_, &TcColorBar::ControlProc, kBarSubclassId);
    control_ = nullptr;
}

bool TcColorBar::SetHwnd(HWND control) {
    if (control != control_) Release();
    if (control_) return true;
    if (!control || !IsWindow(control) ||
        !SetWindowSubclass(control, &TcColorBar::ControlProc, kBarSubclassId,
                           reinterpret_cast<DWORD_PTR>(this)))
        return false;
    control_ = control;
    return true;
}

bool TcColorBar::SetStartColor(COLORREF color) {
    start_ = color;
    return true;
}

bool TcColorBar::SetText(const char* text) {
    text_ = text ? text : "";
    return control_ && SetWindowTextA(control_, text_.c_str());
}

bool TcColorBar::SetIcon(int iconResource) {
    icon_.Reset(TcGuiTools::LoadSizedIcon(nullptr, iconResource, kBarIconEdge));
    return static_cast<bool>(icon_);
}

bool TcColorBar::Update() {
    return control_ && InvalidateRect(control_, nullptr, FALSE) && UpdateWindow(control_);
}

LRESULT CALLBACK TcColorBar::ControlProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                         UINT_PTR id, DWORD_PTR self) {
    auto* const bar = reinterpret_cast<TcColorBar*>(self);
    switch (message) {
        case WM_ERASEBKGND:
            return TRUE;  // all of it is painted
        case WM_PAINT: {
            PAINTSTRUCT paint{};
            if (const HDC dc = BeginPaint(control, &paint)) bar->Paint(dc);
            EndPaint(control, &paint);
            return 0;
        }
        case WM_PRINTCLIENT:
            bar->Paint(reinterpret_cast<HDC>(wParam));
            return 0;
        case WM_NCDESTROY:
            RemoveWindowSubclass(control, &TcColorBar::ControlProc, id);
            bar->control_ = nullptr;
            break;
        default:
            break;
    }
    return DefSubclassProc(control, message, wParam, lParam);
}

void TcColorBar::Paint(HDC dc) const {
    const SavedDc saved(dc);
    RECT bar{};
    GetClientRect(control_, &bar);
    const auto font = reinterpret_cast<HFONT>(SendMessageA(control_, WM_GETFONT, 0, 0));
    LOGFONTA look{};
    GetObjectA(font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT), sizeof look, &look);
    look.lfWeight = FW_BOLD;
    const UniqueFont bold(CreateFontIndirectA(&look));
    const Selected selected(dc, bold.Get());
    RECT measured{};
    DrawTextA(dc, text_.c_str(), -1, &measured, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
    const ColorBarParts parts = LayOutColorBar(
        {static_cast<int>(bar.right), static_cast<int>(bar.bottom)}, static_cast<int>(measured.right),
        icon_ ? TcGuiTools::Scaled(kBarIconEdge) : 0, TcGuiTools::Dpi());
    const bool isHighContrast = TcGuiTools::IsHighContrast();
    const COLORREF start = isHighContrast ? GetSysColor(COLOR_HIGHLIGHT) : start_;
    PaintBackground(dc, bar, isHighContrast ? static_cast<int>(bar.right) : parts.gradientStart, start);
    if (icon_)
        DrawIconEx(dc, parts.icon.left, parts.icon.top, icon_.Get(), parts.icon.Width(), parts.icon.Height(),
                   0, nullptr, DI_NORMAL);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, isHighContrast ? GetSysColor(COLOR_HIGHLIGHTTEXT) : TextColorOn(start));
    RECT text = ToRect(parts.text);
    DrawTextA(dc, text_.c_str(), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

// The first colour, then strips of one pixel that fade to the dialog's own.
void TcColorBar::PaintBackground(HDC dc, const RECT& bar, int gradientStart, COLORREF start) const {
    FillStrip(dc, {0, 0, gradientStart, bar.bottom}, start);
    const COLORREF end = GetSysColor(COLOR_3DFACE);
    const int steps = static_cast<int>(bar.right) - gradientStart;
    for (int step = 0; step < steps; ++step)
        FillStrip(dc, {gradientStart + step, 0, gradientStart + step + 1, bar.bottom},
                  GradientColor(start, end, step, steps));
}

}  // namespace vardel

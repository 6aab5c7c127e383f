#include "toolkit/MenuPainter.h"

#include "toolkit/ColorSteps.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr int kColumnShadeOf100 = 8;  // how much of the shadow's colour tints the icon column

bool IsGrey(UINT state) {
    return (state & (ODS_GRAYED | ODS_DISABLED)) != 0;
}
// A greyed item under the cursor keeps its colours and gets a frame.
bool IsLit(UINT state) {
    return (state & ODS_SELECTED) != 0 && !IsGrey(state);
}

COLORREF TextColor(UINT state) {
    if (IsGrey(state)) return GetSysColor(COLOR_GRAYTEXT);
    return GetSysColor(IsLit(state) ? COLOR_HIGHLIGHTTEXT : COLOR_MENUTEXT);
}

void Fill(HDC dc, const RECT& place, COLORREF color) {
    const UniqueBrush brush(CreateSolidBrush(color));
    if (brush) FillRect(dc, &place, brush.Get());
}

}  // namespace

void MenuPainter::TakeFonts() {
    measures_ = MenuMeasuresFor(TcGuiTools::Dpi());
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    LOGFONTA font{};
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0))
        font = metrics.lfMenuFont;
    else
        GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    plain_.Reset(CreateFontIndirectA(&font));
    font.lfWeight = FW_BOLD;
    bold_.Reset(CreateFontIndirectA(&font));
}

PixelSize MenuPainter::Measure(const MenuItemLook& look, bool isDefault) const {
    if (look.isSeparator) return MenuSeparatorSize(measures_);
    const WindowDc screen(nullptr);
    const Selected font(screen.Get(), isDefault ? bold_.Get() : plain_.Get());
    RECT label{};
    DrawTextA(screen.Get(), look.text.label.c_str(), -1, &label, DT_CALCRECT | DT_SINGLELINE);
    RECT keys{};
    if (!look.text.keys.empty())
        DrawTextA(screen.Get(), look.text.keys.c_str(), -1, &keys, DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    return MenuItemSize(measures_, {static_cast<int>(label.right), static_cast<int>(keys.right),
                                    static_cast<int>(label.bottom)});
}

void MenuPainter::Draw(const DRAWITEMSTRUCT& place, MenuItemLook& look, bool isDefault) const {
    const SavedDc saved(place.hDC);
    const MenuItemParts parts = LayOutMenuItem(measures_, ToPixels(place.rcItem));
    SetBkMode(place.hDC, TRANSPARENT);
    DrawBackground(place.hDC, place.rcItem, parts, look.isSeparator ? 0 : place.itemState);
    if (look.isSeparator) {
        DrawSeparator(place.hDC, place.rcItem, parts);
        return;
    }
    DrawPicture(place.hDC, parts, look, place.itemState);
    DrawLabel(place.hDC, parts, look, place.itemState, isDefault);
}

void MenuPainter::DrawBackground(HDC dc, const RECT& item, const MenuItemParts& parts, UINT state) const {
    if (IsLit(state)) {
        FillRect(dc, &item, GetSysColorBrush(COLOR_HIGHLIGHT));
        return;
    }
    FillRect(dc, &item, GetSysColorBrush(COLOR_MENU));
    if (!TcGuiTools::IsHighContrast())
        Fill(dc, ToRect(parts.iconColumn),
             GradientColor(GetSysColor(COLOR_MENU), GetSysColor(COLOR_3DSHADOW), kColumnShadeOf100, 100));
    if (state & ODS_SELECTED) FrameRect(dc, &item, GetSysColorBrush(COLOR_GRAYTEXT));
}

void MenuPainter::DrawSeparator(HDC dc, const RECT& item, const MenuItemParts& parts) const {
    RECT line{parts.text.left, (item.top + item.bottom) / 2, item.right, (item.top + item.bottom) / 2 + 1};
    FillRect(dc, &line, GetSysColorBrush(TcGuiTools::IsHighContrast() ? COLOR_MENUTEXT : COLOR_3DSHADOW));
}

// The icon; a mark around it, or in its place where there is none.
void MenuPainter::DrawPicture(HDC dc, const MenuItemParts& parts, MenuItemLook& look, UINT state) const {
    const RECT box = ToRect(parts.icon);
    const bool isChecked = (state & ODS_CHECKED) != 0;
    if (!look.icon) {
        const MenuGlyph mark = look.isRadio ? MenuGlyph::Bullet : MenuGlyph::Check;
        DrawGlyph(dc, parts.icon, isChecked ? mark : look.glyph, state);
        return;
    }
    if (isChecked) {
        RECT frame = box;
        InflateRect(&frame, TcGuiTools::Scaled(2), TcGuiTools::Scaled(2));
        FrameRect(dc, &frame, GetSysColorBrush(IsLit(state) ? COLOR_HIGHLIGHTTEXT : COLOR_HIGHLIGHT));
    }
    if (IsGrey(state) && !look.greyIcon)
        look.greyIcon.Reset(TcGuiTools::CreateGrayScaleIcon(look.icon.Get(), dc));
    const HICON icon = IsGrey(state) && look.greyIcon ? look.greyIcon.Get() : look.icon.Get();
    DrawIconEx(dc, box.left, box.top, icon, parts.icon.Width(), parts.icon.Height(), 0, nullptr, DI_NORMAL);
}

void MenuPainter::DrawGlyph(HDC dc, const PixelRect& box, MenuGlyph glyph, UINT state) const {
    const COLORREF color = TextColor(state);
    const bool isMark = glyph == MenuGlyph::Check;
    const UniquePen pen(CreatePen(PS_SOLID, TcGuiTools::Scaled(isMark ? 2 : 1), color));
    const UniqueBrush brush(CreateSolidBrush(color));
    const Selected selectedPen(dc, pen.Get());
    const Selected selectedBrush(dc, brush.Get());
    if (glyph == MenuGlyph::Bullet) {
        const int margin = TcGuiTools::Scaled(5);
        Ellipse(dc, box.left + margin, box.top + margin, box.right - margin, box.bottom - margin);
    }
    for (const GlyphStroke& stroke : StrokesOf(glyph)) {
        const PixelRect line = StrokeIn(box, stroke);
        MoveToEx(dc, line.left, line.top, nullptr);
        LineTo(dc, line.right, line.bottom);
        SetPixelV(dc, line.right, line.bottom, color);  // a line leaves its last point out
    }
}

void MenuPainter::DrawLabel(HDC dc, const MenuItemParts& parts, const MenuItemLook& look, UINT state,
                            bool isDefault) const {
    const Selected font(dc, isDefault ? bold_.Get() : plain_.Get());
    SetTextColor(dc, TextColor(state));
    RECT place = ToRect(parts.text);
    const UINT hidden = state & ODS_NOACCEL ? DT_HIDEPREFIX : 0;
    DrawTextA(dc, look.text.label.c_str(), -1, &place,
              DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_NOCLIP | hidden);
    if (!look.text.keys.empty())
        DrawTextA(dc, look.text.keys.c_str(), -1, &place,
                  DT_SINGLELINE | DT_VCENTER | DT_RIGHT | DT_NOPREFIX);
}

}  // namespace vardel

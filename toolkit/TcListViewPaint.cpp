// How TcListView draws its lines.
#include <algorithm>

#include "toolkit/TcGuiTools.h"
#include "toolkit/TcListView.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

namespace {

constexpr int kMostTextBytes = 2048;  // more than any screen shows in a cell
constexpr int kCellMargin = 6;        // as the system's own lists have it
constexpr int kImageMargin = 2;
constexpr int kImageEdgeOfList = 16;

void FillCell(HDC dc, const RECT& place, COLORREF color) {
    SetBkColor(dc, color);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &place, "", 0, nullptr);
}

// In one line: what would break it is shown as a blank.
int OneLine(TcString& text) {
    char* const content = text.GetContent();
    const int length = std::min(text.GetLength(), kMostTextBytes);
    std::replace_if(
        content, content + length, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return length;
}

UINT AlignmentOf(int format) {
    switch (format & LVCFMT_JUSTIFYMASK) {
        case LVCFMT_RIGHT:
            return DT_RIGHT;
        case LVCFMT_CENTER:
            return DT_CENTER;
        default:
            return DT_LEFT;
    }
}

}  // namespace

struct TcListView::Cell {
    int column, format;
    void* item;
    RECT place;
    RowColors colors;
    HIMAGELIST images;
};

bool TcListView::OnDrawItem(DRAWITEMSTRUCT* item) {
    if (!item || item->CtlType != ODT_LISTVIEW || !control_ || item->hwndItem != control_) return false;
    const SavedDc saved(item->hDC);
    const auto font = reinterpret_cast<HFONT>(Send(WM_GETFONT));
    const Selected selected(item->hDC, font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
    const auto line = static_cast<int>(item->itemID);
    const bool isHeading =
        showsHeadings_ && line >= 0 && line < static_cast<int>(lines_.size()) && RowOfLine(line) < 0;
    if (isHeading)
        DrawHeading(*item, HeadingTitle(line));
    else
        DrawCells(*item);
    return true;
}

RowPalette TcListView::Palette(bool isHighContrast) const {
    const auto own = [this, isHighContrast](UINT message, int otherwise) {
        const auto color = static_cast<COLORREF>(Send(message));
        return color == CLR_DEFAULT || color == CLR_NONE || isHighContrast ? GetSysColor(otherwise) : color;
    };
    return {.plain = {own(LVM_GETTEXTCOLOR, COLOR_WINDOWTEXT), own(LVM_GETBKCOLOR, COLOR_WINDOW)},
            .selected = {GetSysColor(COLOR_HIGHLIGHTTEXT), GetSysColor(COLOR_HIGHLIGHT)},
            .resting = {GetSysColor(COLOR_BTNTEXT), GetSysColor(COLOR_BTNFACE)}};
}

// The first column's bounds are those of the whole line.
RECT TcListView::CellPlace(const DRAWITEMSTRUCT& place, int column) const {
    RECT cell = place.rcItem;
    if (column == 0) {
        cell.right = cell.left + ColumnWidth(0);
        return cell;
    }
    RECT bounds{};
    bounds.top = column;
    bounds.left = LVIR_BOUNDS;
    if (!SendRecord(LVM_GETSUBITEMRECT, place.itemID, bounds)) return {};
    cell.left = bounds.left;
    cell.right = bounds.right;
    return cell;
}

void TcListView::DrawCells(const DRAWITEMSTRUCT& place) {
    void* const item = reinterpret_cast<void*>(place.itemData);
    RowState state;
    state.isHighContrast = TcGuiTools::IsHighContrast();
    const RowPalette palette = Palette(state.isHighContrast);
    state.isSelected = (place.itemState & ODS_SELECTED) != 0;
    state.hasFocus = GetFocus() == control_;
    state.showsSelectionAlways = (GetWindowLongPtrA(control_, GWL_STYLE) & LVS_SHOWSELALWAYS) != 0;
    state.ownColor = item ? GetItemTextColor(item) : -1;
    const RowColors colors = ChooseRowColors(state, palette);
    state.isSelected = false;
    const RowColors first = selectsFirstColumn_ ? colors : ChooseRowColors(state, palette);

    FillCell(place.hDC, place.rcItem, colors.background);
    const auto images = reinterpret_cast<HIMAGELIST>(Send(LVM_GETIMAGELIST, LVSIL_SMALL));
    // Whoever gives a cell's content may have messages handled, and the list lets its columns go.
    for (int column = 0; column < static_cast<int>(columns_.size()); ++column) {
        const int format = columns_[static_cast<std::size_t>(column)].format;
        DrawCell(place, {column, format, item, CellPlace(place, column), column == 0 ? first : colors, images});
    }
    const bool showsFocus = (place.itemState & ODS_FOCUS) != 0 && (place.itemState & ODS_NOFOCUSRECT) == 0;
    if (showsFocus && state.hasFocus) {
        SetTextColor(place.hDC, palette.plain.text);
        SetBkColor(place.hDC, palette.plain.background);
        DrawFocusRect(place.hDC, &place.rcItem);
    }
}

void TcListView::DrawCell(const DRAWITEMSTRUCT& place, const Cell& cell) {
    if (cell.place.right <= cell.place.left || !RectVisible(place.hDC, &cell.place)) return;
    FillCell(place.hDC, cell.place, cell.colors.background);
    if (!cell.item) return;
    const SavedDc saved(place.hDC);
    IntersectClipRect(place.hDC, cell.place.left, cell.place.top, cell.place.right, cell.place.bottom);
    RECT text = cell.place;
    const int image = cell.images ? GetItemImage(cell.column, cell.item) : -1;
    if (image >= 0) {
        int width = TcGuiTools::Scaled(kImageEdgeOfList), height = width;
        ImageList_GetIconSize(cell.images, &width, &height);
        const int left = static_cast<int>(text.left) + TcGuiTools::Scaled(kImageMargin);
        ImageList_Draw(cell.images, image, place.hDC, left,
                       static_cast<int>(text.top + text.bottom - height) / 2, ILD_TRANSPARENT);
        text.left = left + width - TcGuiTools::Scaled(kImageMargin);
    }
    TcString content;
    if (!GetItemText(cell.column, cell.item, content) || content.IsEmpty()) return;
    InflateRect(&text, -TcGuiTools::Scaled(kCellMargin), 0);
    SetTextColor(place.hDC, cell.colors.text);
    SetBkMode(place.hDC, TRANSPARENT);
    const int length = OneLine(content);
    DrawTextA(place.hDC, content, length, &text,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX | AlignmentOf(cell.format));
}

void TcListView::DrawHeading(const DRAWITEMSTRUCT& place, const std::string& title) {
    const RowPalette palette = Palette(TcGuiTools::IsHighContrast());
    FillCell(place.hDC, place.rcItem, palette.plain.background);
    LOGFONTA look{};
    GetObjectA(GetCurrentObject(place.hDC, OBJ_FONT), sizeof look, &look);
    look.lfWeight = FW_BOLD;
    const UniqueFont bold(CreateFontIndirectA(&look));
    const Selected font(place.hDC, bold.Get());
    SetTextColor(place.hDC, palette.plain.text);
    SetBkMode(place.hDC, TRANSPARENT);
    RECT text = place.rcItem;
    text.left += TcGuiTools::Scaled(kCellMargin);
    RECT measured = text;
    DrawTextA(place.hDC, title.c_str(), -1, &measured, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
    DrawTextA(place.hDC, title.c_str(), -1, &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    const LONG middle = (place.rcItem.top + place.rcItem.bottom) / 2;
    const RECT rule{measured.right + TcGuiTools::Scaled(kCellMargin), middle, place.rcItem.right, middle + 1};
    if (rule.right > rule.left) FillCell(place.hDC, rule, palette.plain.text);
}

}  // namespace vardel

#include "toolkit/TcListView.h"

#include <algorithm>

#include "platform/StringResources.h"
#include "toolkit/TcGuiTools.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

namespace {

constexpr int kTitleSize = 200;
constexpr int kImageEdge = 16;

// The longest beginning of a text of at most `most` bytes that cuts no two-byte character.
int WholeCharacters(const char* text, int length, int most) {
    if (length <= most) return length;
    int at = 0;
    while (at < most) {
        const int step = IsDBCSLeadByte(static_cast<BYTE>(text[at])) ? 2 : 1;
        if (at + step > most) break;
        at += step;
    }
    return at;
}

int TextHeight(HDC dc, HGDIOBJ font) {
    const Selected selected(dc, font);
    TEXTMETRICA metrics{};
    return GetTextMetricsA(dc, &metrics) ? static_cast<int>(metrics.tmHeight) : 0;
}

}  // namespace

TcListView::~TcListView() {
    UnbindReceiver(control_, &link_);
}

int TcListView::GetItemGroup(void* item) {
    return GroupOfRow(RowOfItem(item));
}

bool TcListView::InitListView(ModuleHandle module, HWND control) {
    module_ = module;
    if (control && control != control_ && !SetHwnd(control)) return false;
    if (!control_) return false;
    PutTitles();
    return true;
}

bool TcListView::SetHwnd(HWND control) {
    if (control == control_) return control != nullptr;
    UnbindReceiver(control_, &link_);
    Forget();
    if (!control || !IsWindow(control) || !BindReceiver(control, &link_)) return false;
    control_ = control;
    // What has the rows painted leaves the header alone, which would take as long as they do.
    constexpr LONG_PTR kStyles = LVS_OWNERDRAWFIXED | WS_CLIPCHILDREN;
    const LONG_PTR style = GetWindowLongPtrA(control, GWL_STYLE);
    if ((style & kStyles) != kStyles) SetWindowLongPtrA(control, GWL_STYLE, style | kStyles);
    return true;
}

void TcListView::Forget() {
    control_ = nullptr;
    sendsDirectly_ = false;
    isReadInside_ = false;
    showsHeadings_ = false;
    columns_.clear();
    groups_.clear();
    rows_.clear();
    lines_.clear();
    linesOfRows_.clear();
    index_.Clear();
}

LRESULT TcListView::Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    if (sendsDirectly_) return CallControl(control_, message, wParam, lParam);
    return control_ ? SendMessageA(control_, message, wParam, lParam) : 0;
}

void TcListView::SetLook(u32 styles) {
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(styles));
    Send(LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(kListTextColor));
}

bool TcListView::OnMeasureItem(MEASUREITEMSTRUCT* item) {
    if (!item || item->CtlType != ODT_LISTVIEW) return false;
    const WindowDc screen(nullptr);
    int height = TextHeight(screen.Get(), GetStockObject(DEFAULT_GUI_FONT));
    if (const auto font = reinterpret_cast<HFONT>(Send(WM_GETFONT))) height = TextHeight(screen.Get(), font);
    item->itemHeight =
        static_cast<UINT>(ListRowHeight(height, TcGuiTools::Scaled(kImageEdge), TcGuiTools::Dpi()));
    return true;
}

// Columns

std::string TcListView::TitleOf(u32 textId) const {
    char title[kTitleSize];
    SystemStringResources().Load(module_, textId, title, sizeof title);
    return title;
}

int TcListView::AddColumn(u32 textId, int width, int format) {
    return PutColumn(textId, TitleOf(textId).c_str(), width, format);
}

int TcListView::AddColumn(const char* title, int width, int format) {
    return PutColumn(0, title ? title : "", width, format);
}

int TcListView::PutColumn(u32 textId, const char* title, int width, int format) {
    std::string text(title);
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
    column.fmt = format;
    column.cx = width;
    column.pszText = text.data();
    column.iSubItem = static_cast<int>(columns_.size());
    const auto at = static_cast<int>(control_ ? SendRecord(LVM_INSERTCOLUMNA, columns_.size(), column) : -1);
    if (at >= 0) columns_.push_back({textId, at == 0 ? LVCFMT_LEFT : format});  // the first is always at the left
    return at;
}

void TcListView::PutTitles() {
    for (std::size_t at = 0; at < columns_.size(); ++at) {
        if (columns_[at].textId == 0) continue;
        std::string title = TitleOf(columns_[at].textId);
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT;
        column.pszText = title.data();
        SendRecord(LVM_SETCOLUMNA, at, column);
    }
}

int TcListView::ColumnCount() const {
    const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
    const LRESULT count = header ? SendMessageA(header, HDM_GETITEMCOUNT, 0, 0) : 0;
    return count > 0 ? static_cast<int>(count) : 0;
}

int TcListView::ColumnWidth(int column) const {
    return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

void TcListView::SetColumnWidth(int column, int width) {
    Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), MAKELPARAM(width, 0));
}

void TcListView::FitColumn(int column, int extra, const TextOf& textOf) {
    int widest = 0;
    {
        const WindowDc dc(control_);
        const Selected font(dc.Get(), GetStockObject(DEFAULT_GUI_FONT));
        TcString text;
        const std::vector<Row> rows = rows_;  // who is asked may have messages handled, and the rows change
        for (const Row& row : rows) {
            SIZE size{};
            if (textOf(row.item, text) && GetTextExtentPoint32A(dc.Get(), text, text.GetLength(), &size))
                widest = std::max(widest, static_cast<int>(size.cx));
        }
    }
    SetColumnWidth(column, widest > 0 ? widest + extra : LVSCW_AUTOSIZE_USEHEADER);
}

// What the control asks and tells

bool TcListView::OnOwnNotify(LPARAM data, LRESULT& result) {
    result = 0;
    switch (reinterpret_cast<NMHDR*>(data)->code) {
        case LVN_GETDISPINFOA:
            return AnswerText(*reinterpret_cast<NMLVDISPINFOA*>(data));
        case LVN_DELETEALLITEMS:
            result = TRUE;  // no notice for each line: it owns nothing
            return true;
        case LVN_ITEMCHANGED: {
            const auto& change = *reinterpret_cast<NMLISTVIEW*>(data);
            if (!showsHeadings_ || changing_ || change.iItem < 0 || RowOfLine(change.iItem) >= 0)
                return false;
            KeepHeadingUnselected(change);
            return true;
        }
        default:
            return false;
    }
}

bool TcListView::AnswerText(NMLVDISPINFOA& asked) {
    LVITEMA& item = asked.item;
    TcString text;
    const int row = RowOfLine(item.iItem);
    const bool isHeading = showsHeadings_ && row < 0;
    void* const record =
        row >= 0 ? rows_[static_cast<std::size_t>(row)].item : reinterpret_cast<void*>(item.lParam);
    if (item.mask & LVIF_IMAGE) item.iImage = isHeading || !record ? -1 : GetItemImage(item.iSubItem, record);
    if (!(item.mask & LVIF_TEXT) || !item.pszText || item.cchTextMax <= 0) return true;
    if (isHeading && item.iSubItem == 0 && item.iItem >= 0 && item.iItem < static_cast<int>(lines_.size()))
        text = HeadingTitle(item.iItem).c_str();
    else if (!isHeading && record && !GetItemText(item.iSubItem, record, text))
        text.Clear();
    const int length = WholeCharacters(text, text.GetLength(), item.cchTextMax - 1);
    std::copy_n(text.GetContent(), length, item.pszText);
    item.pszText[length] = 0;
    return true;
}

// A heading may take the focus on the way of the keyboard, but nothing acts on it.
void TcListView::KeepHeadingUnselected(const NMLISTVIEW& change) {
    if (!(change.uNewState & LVIS_SELECTED)) return;
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED;
    SendRecord(LVM_SETITEMSTATE, static_cast<WPARAM>(change.iItem), item);
}

const std::string& TcListView::HeadingTitle(int line) const {
    return groups_[static_cast<std::size_t>(GroupOfHeading(lines_[static_cast<std::size_t>(line)]))].title;
}

LRESULT TcListView::OnControlMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (showsHeadings_ && message == WM_KEYDOWN) return MoveByKey(wParam, lParam);
    if (showsHeadings_ && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) && IsOnHeading(lParam)) {
        SetFocus(control_);
        return 0;
    }
    if (message == WM_NOTIFY && FitAsAsked(lParam)) return 0;
    OpenCellsAskedFor(message, wParam, lParam);
    constexpr LPARAM kByKey = -1;
    if (message == WM_CONTEXTMENU && lParam == kByKey && showMenu_) return showMenu_(MenuPlace()), 0;
    return CallControl(control_, message, wParam, lParam);
}

// Cells are opened when somebody asks for one; a screen reader may go on to ask the control without a message.
void TcListView::OpenCellsAskedFor(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* asked = reinterpret_cast<const LVITEMA*>(lParam);
    if (message == WM_GETOBJECT) OpenAllCells();
    if ((message == LVM_GETITEMTEXTA || message == LVM_GETITEMTEXTW) && asked)
        OpenCell(static_cast<int>(wParam), asked->iSubItem);
    if ((message == LVM_GETITEMA || message == LVM_GETITEMW) && asked && (asked->mask & LVIF_TEXT))
        OpenCell(asked->iItem, asked->iSubItem);
}

// The header tells its list first.
bool TcListView::FitAsAsked(LPARAM notification) {
    const auto* header = reinterpret_cast<const NMHDR*>(notification);
    const bool isAsked = header->code == HDN_DIVIDERDBLCLICKA || header->code == HDN_DIVIDERDBLCLICKW;
    if (!isAsked || !fit_) return false;
    fit_(reinterpret_cast<const NMHEADERA*>(notification)->iItem);
    return true;
}

// Below the row that has the focus, as far as it can be seen; else the list's corner.
POINT TcListView::MenuPlace() const {
    RECT row{}, client{};
    row.left = LVIR_LABEL;
    GetClientRect(control_, &client);
    const LRESULT line = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    POINT place{client.left, client.top};
    if (line >= 0 && SendRecord(LVM_GETITEMRECT, static_cast<WPARAM>(line), row) && row.bottom > client.top &&
        row.bottom < client.bottom)
        place = {std::max(row.left, client.left), row.bottom - 1};
    ClientToScreen(control_, &place);
    return place;
}

bool TcListView::IsOnHeading(LPARAM point) const {
    LVHITTESTINFO hit{};
    hit.pt = {static_cast<SHORT>(LOWORD(point)), static_cast<SHORT>(HIWORD(point))};
    return SendRecord(LVM_SUBITEMHITTEST, 0, hit) >= 0 && hit.iItem >= 0 && RowOfLine(hit.iItem) < 0;
}

// The keyboard steps over a heading: on in the key's direction, or back from one above the first row.
LRESULT TcListView::MoveByKey(WPARAM key, LPARAM lParam) {
    const LRESULT result = CallControl(control_, WM_KEYDOWN, key, lParam);
    const auto line = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    if (line < 0 || line >= static_cast<int>(lines_.size()) || RowOfLine(line) >= 0) return result;
    const bool isUp = (key == VK_UP || key == VK_PRIOR) && line > 0;
    const bool isMove =
        isUp || key == VK_UP || key == VK_PRIOR || key == VK_DOWN || key == VK_NEXT || key == VK_HOME;
    return isMove ? CallControl(control_, WM_KEYDOWN, isUp ? VK_UP : VK_DOWN, lParam) : result;
}

// Selection

void* TcListView::ItemAtPoint(POINT screen) const {
    LVHITTESTINFO hit{};
    hit.pt = screen;
    if (!control_ || !ScreenToClient(control_, &hit.pt) || SendRecord(LVM_SUBITEMHITTEST, 0, hit) < 0)
        return nullptr;
    return ItemOfRow(RowOfLine(hit.iItem));
}

std::vector<void*> TcListView::SelectedItems() const {
    std::vector<void*> items;
    auto line = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    for (; control_ && line >= 0;
         line = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(line), LVNI_SELECTED)))
        if (void* const item = ItemOfRow(RowOfLine(line))) items.push_back(item);
    return items;
}

void TcListView::SelectAll() {
    LVITEMA item{};
    item.state = item.stateMask = LVIS_SELECTED;
    SendRecord(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), item);
}

void TcListView::RedrawRows() {
    if (!control_) return;
    // What can be seen of them: naming all rows to the control costs time with each.
    InvalidateRect(control_, nullptr, FALSE);
    UpdateWindow(control_);
    SetFocus(control_);
}

void TcListView::ShowLastRow() {
    const LRESULT count = Send(LVM_GETITEMCOUNT);
    if (count > 0) Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(count - 1), FALSE);
}

}  // namespace vardel

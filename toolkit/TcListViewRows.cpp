// TcListView's rows and groups: what stands in the control is brought in line with them.
#include <algorithm>

#include "toolkit/TcGuiTools.h"
#include "toolkit/TcListView.h"

namespace vardel {

namespace {

// Up to so many rows are taken from one group to another one by one; more by one sort.
constexpr int kFewRows = 64;

constexpr UINT kKeptState = LVIS_SELECTED | LVIS_FOCUSED;

}  // namespace

// Nothing is painted, and the control's notices of lines count for nothing, while lines and rows differ.
class TcListView::Change {
  public:
    explicit Change(TcListView& list) : list_(list) {
        list_.changing_ = true;
        list_.Send(WM_SETREDRAW, FALSE);
        list_.sendsDirectly_ = IsReceiverFirst(list_.control_);
    }
    ~Change() {
        list_.sendsDirectly_ = false;
        list_.Send(WM_SETREDRAW, TRUE);
        list_.changing_ = false;
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

  private:
    TcListView& list_;
};

// Groups

bool TcListView::AddGroup(int id, const char* title) {
    if (!control_ || id < 0) return false;
    const Group group{id, title ? title : ""};
    const auto known =
        std::find_if(groups_.begin(), groups_.end(), [id](const Group& one) { return one.id == id; });
    if (known != groups_.end()) {
        *known = group;
        if (showsHeadings_) return InvalidateRect(control_, nullptr, FALSE) != FALSE;
        return PutGroup(group, false);
    }
    if (groups_.empty()) {
        Send(LVM_ENABLEGROUPVIEW, TRUE);
        showsHeadings_ = Send(LVM_ISGROUPVIEWENABLED) == 0;
    }
    if (!showsHeadings_ && !PutGroup(group, true)) return false;
    groups_.push_back(group);
    if (showsHeadings_ && !rows_.empty()) {
        const Change change(*this);
        if (lines_.empty())
            for (int row = 0; row < RowCount(); ++row) lines_.push_back(row);
        SortLines();
    }
    return true;
}

bool TcListView::PutGroup(const Group& group, bool isNew) const {
    std::wstring title = TcGuiTools::WideText(group.title);
    LVGROUP record{};
    record.cbSize = sizeof record;
    record.mask = LVGF_HEADER | LVGF_GROUPID | LVGF_ALIGN;
    record.pszHeader = title.data();
    record.iGroupId = group.id;
    record.uAlign = LVGA_HEADER_LEFT;
    if (isNew) return SendRecord(LVM_INSERTGROUP, static_cast<WPARAM>(-1), record) >= 0;
    return SendRecord(LVM_SETGROUPINFO, static_cast<WPARAM>(group.id), record) >= 0;
}

std::vector<int> TcListView::LinesOf(const std::vector<Row>& rows) const {
    std::vector<int> rowGroups, groups;
    rowGroups.reserve(rows.size());
    for (const Row& row : rows) rowGroups.push_back(row.group);
    for (const Group& group : groups_) groups.push_back(group.id);
    return GroupedLines(rowGroups, groups);
}

// Rows

bool TcListView::InsertLine(int line, int content, UINT state, bool hasSelection) {
    LVITEMA item{};
    item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_STATE;
    item.iItem = line;
    item.state = state;
    item.stateMask = kKeptState;
    item.pszText = LPSTR_TEXTCALLBACKA;
    if (!IsHeadingLine(content)) {
        const Row& row = rows_[static_cast<std::size_t>(content)];
        item.lParam = reinterpret_cast<LPARAM>(row.item);
        if (!groups_.empty() && !showsHeadings_) {
            item.mask |= LVIF_GROUPID;
            item.iGroupId = row.group >= 0 ? row.group : I_GROUPIDNONE;
        }
    }
    const LRESULT at = SendRecord(LVM_INSERTITEMA, 0, item);
    if (at < 0) return false;
    if (hasSelection) PutSelection(at, state);
    if (isReadInside_) OpenCells(static_cast<int>(at));
    return true;
}

// Lets the control ask for a cell's text. Drawing doesn't need it, and for many rows it takes the most time.
void TcListView::OpenCell(int line, int column) const {
    LVITEMA cell{};
    cell.iSubItem = column;
    cell.pszText = LPSTR_TEXTCALLBACKA;
    if (column > 0) SendRecord(LVM_SETITEMTEXTA, static_cast<WPARAM>(line), cell);
}

void TcListView::OpenCells(int line) const {
    for (int column = 1; column < static_cast<int>(columns_.size()); ++column) OpenCell(line, column);
}

void TcListView::OpenAllCells() {
    if (isReadInside_) return;
    isReadInside_ = true;
    const Change change(*this);
    for (int line = 0, count = static_cast<int>(Send(LVM_GETITEMCOUNT)); line < count; ++line) OpenCells(line);
}

// A line that comes in between selected ones must not count as one of them.
void TcListView::PutSelection(LRESULT line, UINT state) {
    LVITEMA item{};
    item.state = state & LVIS_SELECTED;
    item.stateMask = LVIS_SELECTED;
    if (static_cast<UINT>(Send(LVM_GETITEMSTATE, static_cast<WPARAM>(line), LVIS_SELECTED)) != item.state)
        SendRecord(LVM_SETITEMSTATE, static_cast<WPARAM>(line), item);
}

int TcListView::AddRows(std::span<const Row> rows) {
    if (!control_ || rows.empty()) return 0;
    const Change change(*this);
    const int before = RowCount();
    Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(Send(LVM_GETITEMCOUNT)) + rows.size());
    if (showsHeadings_) return AddGrouped(rows);
    for (const Row& row : rows) {
        if (!row.item || index_.Find(row.item) >= 0) continue;
        rows_.push_back(row);
        if (InsertLine(RowCount() - 1, RowCount() - 1, 0, false))
            index_.Insert(row.item, RowCount() - 1);
        else
            rows_.pop_back();
    }
    return RowCount() - before;
}

int TcListView::AddGrouped(std::span<const Row> rows) {
    const int before = RowCount();
    for (const Row& row : rows)
        if (index_.Insert(row.item, RowCount())) rows_.push_back(row);
    std::vector<char> isMissing(rows_.size());
    std::fill(isMissing.begin() + before, isMissing.end(), 1);
    InsertLines(LinesOf(rows_), isMissing, {});
    return RowCount() - before;
}

// Puts the lines of `target` that the control lacks: the missing rows and the headings that are new.
// `states`, by row, may be empty. What the control refuses is left out.
void TcListView::InsertLines(std::vector<int> target, const std::vector<char>& isMissing,
                             const std::vector<UINT>& states) {
    std::vector<char> hasHeading(groups_.size());
    for (const int line : lines_)
        if (IsHeadingLine(line)) hasHeading[static_cast<std::size_t>(GroupOfHeading(line))] = 1;
    std::vector<char> isRefused(rows_.size());
    const bool hasSelection = !states.empty() || Send(LVM_GETSELECTEDCOUNT) > 0;
    std::vector<int> put;
    put.reserve(target.size());
    for (const int content : target) {
        const auto row = static_cast<std::size_t>(content);
        const bool isNew = IsHeadingLine(content)
                               ? !hasHeading[static_cast<std::size_t>(GroupOfHeading(content))]
                               : isMissing[row] != 0;
        const UINT state = IsHeadingLine(content) || states.empty() ? 0 : states[row];
        if (!isNew || InsertLine(static_cast<int>(put.size()), content, state, hasSelection))
            put.push_back(content);
        else if (!IsHeadingLine(content))
            isRefused[row] = 1;
    }
    PutLines(std::move(put));
    if (std::find(isRefused.begin(), isRefused.end(), 1) != isRefused.end()) DropRows(isRefused);
}

void TcListView::RemoveRows(std::span<const int> rows) {
    std::vector<char> isDropped(rows_.size());
    for (const int row : rows)
        if (row >= 0 && row < RowCount()) isDropped[static_cast<std::size_t>(row)] = 1;
    if (std::find(isDropped.begin(), isDropped.end(), 1) == isDropped.end()) return;
    const Change change(*this);
    if (showsHeadings_) {
        std::vector<Row> staying;
        for (std::size_t row = 0; row < rows_.size(); ++row)
            if (!isDropped[row]) staying.push_back(rows_[row]);
        DeleteLines(isDropped, LinesOf(staying));
    } else {
        for (int row = RowCount() - 1; row >= 0; --row)
            if (isDropped[static_cast<std::size_t>(row)]) Send(LVM_DELETEITEM, static_cast<WPARAM>(row));
    }
    DropRows(isDropped);
}

// Takes the lines of the rows away, and the headings that `target` lacks.
void TcListView::DeleteLines(const std::vector<char>& isDropped, const std::vector<int>& target) {
    std::vector<char> keepsHeading(groups_.size());
    for (const int line : target)
        if (IsHeadingLine(line)) keepsHeading[static_cast<std::size_t>(GroupOfHeading(line))] = 1;
    for (std::size_t at = lines_.size(); at-- > 0;) {
        const int content = lines_[at];
        const bool stays = IsHeadingLine(content)
                               ? keepsHeading[static_cast<std::size_t>(GroupOfHeading(content))] != 0
                               : !isDropped[static_cast<std::size_t>(content)];
        if (stays) continue;
        Send(LVM_DELETEITEM, at);
        lines_[at] = RowCount();  // no row's number: the line is gone
    }
    std::erase(lines_, RowCount());
}

// Takes rows out of which no line is left, and numbers the others anew.
void TcListView::DropRows(const std::vector<char>& isDropped) {
    std::vector<int> numbers(rows_.size());
    std::vector<Row> staying;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        numbers[row] = static_cast<int>(staying.size());
        if (!isDropped[row]) staying.push_back(rows_[row]);
    }
    for (int& line : lines_)
        if (!IsHeadingLine(line)) line = numbers[static_cast<std::size_t>(line)];
    rows_ = std::move(staying);
    Renumber();
}

void TcListView::RemoveAllRows() {
    if (!control_) return;
    const Change change(*this);
    Send(LVM_DELETEALLITEMS);
    rows_.clear();
    lines_.clear();
    Renumber();
}

void TcListView::Renumber() {
    index_.Clear();
    for (int row = 0; row < RowCount(); ++row) index_.Insert(rows_[static_cast<std::size_t>(row)].item, row);
    PutLines(std::move(lines_));
}

void TcListView::PutLines(std::vector<int> lines) {
    lines_ = std::move(lines);
    linesOfRows_.assign(showsHeadings_ ? rows_.size() : 0, -1);
    for (std::size_t at = 0; at < lines_.size(); ++at)
        if (!IsHeadingLine(lines_[at]))
            linesOfRows_[static_cast<std::size_t>(lines_[at])] = static_cast<int>(at);
}

void TcListView::SetGroups(std::span<const NewGroup> changes) {
    std::vector<char> isMoved(rows_.size());
    int moved = 0;
    for (const NewGroup& one : changes) {
        if (one.row < 0 || one.row >= RowCount() || GroupOfRow(one.row) == one.group) continue;
        rows_[static_cast<std::size_t>(one.row)].group = one.group;
        char& mark = isMoved[static_cast<std::size_t>(one.row)];
        moved += !mark;
        mark = 1;
    }
    if (moved == 0 || groups_.empty()) return;
    const Change change(*this);
    if (showsHeadings_ && moved > kFewRows) return SortLines();
    LVITEMA item{};
    std::vector<UINT> states(rows_.size());
    for (int row = 0; row < RowCount(); ++row) {
        if (!isMoved[static_cast<std::size_t>(row)]) continue;
        item.mask = LVIF_GROUPID;
        item.iItem = row;
        item.iGroupId = GroupOfRow(row) >= 0 ? GroupOfRow(row) : I_GROUPIDNONE;
        if (showsHeadings_)
            states[static_cast<std::size_t>(row)] =
                static_cast<UINT>(Send(LVM_GETITEMSTATE, static_cast<WPARAM>(LineOfRow(row)), kKeptState));
        else
            SendRecord(LVM_SETITEMA, 0, item);
    }
    if (!showsHeadings_) return;
    std::vector<int> target = LinesOf(rows_);
    DeleteLines(isMoved, target);
    InsertLines(std::move(target), isMoved, states);
}

bool TcListView::SetOrder(std::span<const u32> order) {
    std::vector<char> isTaken(rows_.size());
    std::vector<Row> ordered;
    ordered.reserve(rows_.size());
    for (const u32 row : order) {
        if (row >= rows_.size() || isTaken[row]) return false;
        isTaken[row] = 1;
        ordered.push_back(rows_[row]);
    }
    if (ordered.size() != rows_.size()) return false;
    if (!control_ || rows_.empty()) return true;
    const Change change(*this);
    rows_ = std::move(ordered);
    for (int row = 0; row < RowCount(); ++row)
        index_.Renumber(rows_[static_cast<std::size_t>(row)].item, row);
    SortLines();
    return true;
}

// Brings the lines into the order of the rows, beneath their headings where there are such. The control keeps
// each line's state.
void TcListView::SortLines() {
    if (showsHeadings_) {
        for (std::size_t at = lines_.size(); at-- > 0;)
            if (IsHeadingLine(lines_[at])) Send(LVM_DELETEITEM, at);
        std::vector<int> target = LinesOf(rows_);
        PutLines(target);
        Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(this),
             reinterpret_cast<LPARAM>(&TcListView::CompareLines));
        std::erase_if(lines_, IsHeadingLine);
        InsertLines(std::move(target), std::vector<char>(rows_.size()), {});
        return;
    }
    Send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(this), reinterpret_cast<LPARAM>(&TcListView::CompareLines));
}

int CALLBACK TcListView::CompareLines(LPARAM first, LPARAM second, LPARAM self) {
    const auto& list = *reinterpret_cast<const TcListView*>(self);
    return list.LineOfRow(list.RowOfItem(reinterpret_cast<void*>(first))) -
           list.LineOfRow(list.RowOfItem(reinterpret_cast<void*>(second)));
}

void* TcListView::ItemOfRow(int row) const {
    return row >= 0 && row < RowCount() ? rows_[static_cast<std::size_t>(row)].item : nullptr;
}

int TcListView::GroupOfRow(int row) const {
    return row >= 0 && row < RowCount() ? rows_[static_cast<std::size_t>(row)].group : -1;
}

int TcListView::RowOfLine(int line) const {
    if (!showsHeadings_) return line >= 0 && line < RowCount() ? line : -1;
    if (line < 0 || line >= static_cast<int>(lines_.size())) return -1;
    const int content = lines_[static_cast<std::size_t>(line)];
    return IsHeadingLine(content) ? -1 : content;
}

int TcListView::LineOfRow(int row) const {
    if (row < 0 || row >= RowCount()) return -1;
    return showsHeadings_ ? linesOfRows_[static_cast<std::size_t>(row)] : row;
}

}  // namespace vardel

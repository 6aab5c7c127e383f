#include "views/VardelViewDlg.h"

#include "resources/DialogIds.h"
#include "resources/IconIds.h"
#include "resources/ResourceIds.h"
#include "toolkit/ResizeRules.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr UINT_PTR kRefreshTimer = 10001;
constexpr UINT kRefreshPeriodMs = 1000;
constexpr int kSmallIcon = 16;
constexpr int kLargeIcon = 32;
constexpr int kGroups = 3;
constexpr int kLeastWidth = 360, kLeastHeight = 140;

// In the order of the image list. Those with two forms have the grey one behind them.
struct ImageRow {
    int icon;
    bool withGrey;
};
constexpr ImageRow kImages[] = {{IDI_TRUSTED, true},   {IDI_DISTRUSTED, true},     {IDI_UNKNOWN, true},
                                {IDI_OS_KNOWN, false}, {IDI_ACCESS_DENIED, false}, {IDI_ACCESS_BLOCKED, false},
                                {IDI_NO_ACCOUNT, false}};

struct FollowingControl {
    int id, flags;
};
constexpr int kFills = kFollowsBottomEdge | kFollowsRightEdge | kGrowsWithEdges;
constexpr int kBottomRight = kFollowsBottomEdge | kFollowsRightEdge;
constexpr FollowingControl kFollowers[] = {{IDC_HOST_LIST, kFills},
                                           {IDC_HOST_COUNT_LABEL, kFollowsBottomEdge},
                                           {IDC_HOST_COUNT, kFollowsBottomEdge},
                                           {IDC_HOST_AUTO_REFRESH, kFollowsBottomEdge},
                                           {IDC_HOST_UPDATES_AVAILABLE, kBottomRight},
                                           {IDC_HOST_REFRESH, kBottomRight}};

}  // namespace

VardelViewDlg::VardelViewDlg() : list_(*this) {
    list_.OnDividerDoubleClick([this](int column) { FitColumn(column); });
    list_.OnMenuKey([this](POINT place) {
        const std::vector<HostRecord*> selected = SelectedHosts();
        ShowContextMenu(place, selected.empty() ? nullptr : selected.front());
    });
}

void VardelViewDlg::Open(VardelData& data, ModuleHandle images) {
    data_ = &data;
    if (images_ != images) LetPicturesGo();
    images_ = images;
    place_ = {};
    SetDialogIdent(IDD_HOST_VIEW);
    ShowDialogModal(0);
    ReleaseMenus();
    rows_.Clear();
    StorePlace();
}

void VardelViewDlg::SetLanguage(ModuleHandle language) {
    SetResInstance(language);
    list_.InitListView(language, list_.GetHwnd());
}

const HostViewColumn* VardelViewDlg::ColumnAt(int column) const {
    const auto at = static_cast<std::size_t>(column);
    return data_ && column >= 0 && at < columns_.size() ? &columns_[at] : nullptr;
}

bool VardelViewDlg::OnInitDialog(LPARAM) {
    SetWindowIcons();
    BuildList();
    EnableLayout();
    Refresh();
    SetTimer(GetHwnd(), kRefreshTimer, kRefreshPeriodMs, nullptr);
    BuildMenus();
    RestorePlace();
    SetFocus(list_.GetHwnd());
    return false;
}

// Pictures are made at the first opening and kept for the next.
void VardelViewDlg::LetPicturesGo() {
    imageList_.Reset();
    smallIcon_.Reset();
    largeIcon_.Reset();
}

void VardelViewDlg::SetWindowIcons() {
    if (!smallIcon_) smallIcon_.Reset(TcGuiTools::LoadSizedIcon(images_, IDI_PROGRAM, kSmallIcon));
    if (!largeIcon_) largeIcon_.Reset(TcGuiTools::LoadSizedIcon(images_, IDI_PROGRAM, kLargeIcon));
    SendMessageA(GetHwnd(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_.Get()));
    SendMessageA(GetHwnd(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(largeIcon_.Get()));
}

void VardelViewDlg::BuildList() {
    list_.InitListView(GetResInstance(), GetControl(IDC_HOST_LIST));
    list_.SetLook(kListStylesWithImages);
    list_.SetSelectFirstColumn(false);
    BuildColumns();
    BuildImages();
    for (int group = 1; group <= kGroups; ++group) {
        char title[260];
        data_->services.strings.Load(GetResInstance(), HostGroupTitleId(group), title, sizeof title);
        list_.AddGroup(group, title);
    }
}

// The first fixed column that the control refuses ends the fixed ones; the plugins' follow all the same.
void VardelViewDlg::BuildColumns() {
    columns_.clear();
    bool fixedEnded = false;
    for (const HostViewColumn& column : HostViewColumns(*data_, GetResInstance(), widths_, TcGuiTools::Dpi())) {
        const bool isFixed = column.plugin == nullptr;
        if (isFixed && fixedEnded) continue;
        const int added = isFixed ? list_.AddColumn(FormOf(column.fixed).titleId, column.width, column.format)
                                  : list_.AddColumn(column.title.c_str(), column.width, column.format);
        if (added >= 0) columns_.push_back(column);
        else if (isFixed) fixedEnded = true;
    }
}

// The control borrows the image list: its style says so.
void VardelViewDlg::BuildImages() {
    if (!imageList_) {
        const int edge = TcGuiTools::Scaled(kSmallIcon);
        imageList_.Reset(ImageList_Create(edge, edge, ILC_COLOR32 | ILC_MASK, static_cast<int>(std::size(kImages)), 1));
        for (const ImageRow& image : kImages) {
            const UniqueIcon icon(TcGuiTools::LoadSizedIcon(images_, image.icon, kSmallIcon));
            ImageList_ReplaceIcon(imageList_.Get(), -1, icon.Get());
            if (!image.withGrey) continue;
            const UniqueIcon grey(TcGuiTools::CreateGrayScaleIcon(icon.Get(), nullptr));
            ImageList_ReplaceIcon(imageList_.Get(), -1, grey.Get());
        }
    }
    SendMessageA(list_.GetHwnd(), LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(imageList_.Get()));
}

void VardelViewDlg::EnableLayout() {
    EnableResizing(true);
    for (const FollowingControl& control : kFollowers) AddControlForResize(control.id, control.flags);
    SetMinimumSize(kLeastWidth, kLeastHeight);
}

// The list is told its size in any case: it lays out its header and scroll bars by that.
void VardelViewDlg::RestorePlace() {
    if (data_->settings.SaveViewWindow) {
        const ViewRectangle place = data_->settings.SavedViewWindowDimension.Read();
        if (IsUsableRectangle(place)) SetSizeAndPosition({place.left, place.top, place.right, place.bottom});
    }
    RECT list{};
    GetWindowRect(list_.GetHwnd(), &list);
    MapWindowPoints(nullptr, GetHwnd(), reinterpret_cast<POINT*>(&list), 2);
    SetWindowPos(list_.GetHwnd(), nullptr, list.left, list.top, list.right - list.left, list.bottom - list.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

// A view that went with the program's end has no place to tell.
void VardelViewDlg::StorePlace() {
    const ViewRectangle place{static_cast<i32>(place_.left), static_cast<i32>(place_.top),
                              static_cast<i32>(place_.right), static_cast<i32>(place_.bottom)};
    if (!data_->settings.SaveViewWindow || !IsUsableRectangle(place)) return;
    data_->settings.SavedViewWindowDimension.Write(place);
    data_->settings.WriteSavedViewWindowDimension();
}

void VardelViewDlg::KeepWidths() {
    if (!data_->settings.SaveColumnWidth) return;
    for (std::size_t i = 0; i < columns_.size(); ++i)
        widths_.Keep(columns_[i].title, list_.ColumnWidth(static_cast<int>(i)));
}

void VardelViewDlg::OnClose() {
    KillTimer(GetHwnd(), kRefreshTimer);
    ReleaseMenus();
    list_.RemoveAllRows();
    rows_.Clear();
    KeepWidths();
    if (!GetSizeAndPosition(place_)) place_ = {};
    ExitDialog(false);
}

void VardelViewDlg::OnTimer(int id) {
    if (id == static_cast<int>(kRefreshTimer)) Refresh();
}

void VardelViewDlg::Refresh() {
    const RowChanges changes = rows_.Refresh(*data_, data_->services.clock.Now());
    if (!changes.removed.empty()) list_.RemoveRows(changes.removed);
    if (!changes.regrouped.empty()) {
        std::vector<TcListView::NewGroup> groups;
        for (const RowChanges::NewGroup& change : changes.regrouped) groups.push_back({change.row, change.group});
        list_.SetGroups(groups);
    }
    ShowFresh(changes.firstInserted);
    ShowCount(changes.hosts);
    if (changes.repaint) list_.RedrawRows();
}

// A host whose row the control refuses is left out; the next refresh tries again.
void VardelViewDlg::ShowFresh(int first) {
    std::vector<TcListView::Row> fresh;
    for (int row = first; row < rows_.Count(); ++row) fresh.push_back({rows_.HostAt(row), rows_.GroupAt(row)});
    if (fresh.empty() || list_.AddRows(fresh) == static_cast<int>(fresh.size())) return;
    std::vector<HostRecord*> refused;
    for (const TcListView::Row& row : fresh)
        if (list_.RowOfItem(row.item) < 0) refused.push_back(static_cast<HostRecord*>(row.item));
    rows_.Remove(refused);
}

// Only when it differs, so that nothing flickers and no screen reader speaks once a second.
void VardelViewDlg::ShowCount(u32 hosts) {
    TcString shown;
    GetControlText(IDC_HOST_COUNT, shown);
    const std::string count = std::to_string(hosts);
    if (!(shown == count.c_str())) SetControlText(IDC_HOST_COUNT, count.c_str());
}

// Wanted: the direction turns over with every click, whichever column was clicked before.
void VardelViewDlg::SortBy(int column) {
    const HostViewColumn* clicked = ColumnAt(column);
    if (!clicked) return;
    ascending_ = !ascending_;
    const HostViewColumn by = *clicked;
    const std::vector<u32> order = rows_.Sort(by, ascending_);
    if (!order.empty()) list_.SetOrder(order);
}

void VardelViewDlg::FitColumn(int column) {
    const HostViewColumn* clicked = ColumnAt(column);
    if (!clicked) return;
    const int dpi = TcGuiTools::Dpi();
    if (!clicked->plugin && clicked->fixed == HostColumn::Trust) {
        list_.SetColumnWidth(column, FittingWidth(*clicked, 0, dpi));
        return;
    }
    constexpr int kAnyText = 1;
    const int extra = FittingWidth(*clicked, kAnyText, dpi) - kAnyText;
    list_.FitColumn(column, extra,
                    [&](void* item, TcString& text) { return list_.GetItemText(column, item, text); });
}

std::vector<HostRecord*> VardelViewDlg::SelectedHosts() const {
    std::vector<HostRecord*> hosts;
    for (void* item : list_.SelectedItems()) hosts.push_back(static_cast<HostRecord*>(item));
    return hosts;
}

void VardelViewDlg::ChangeTrust(TrustState state) {
    SetTrust(*data_, SelectedHosts(), state);
    list_.RedrawRows();
}

void VardelViewDlg::DeleteSelected() {
    const std::vector<int> removed = DeleteHosts(*data_, rows_, SelectedHosts());
    list_.RemoveRows(removed);
    list_.RedrawRows();
}

}  // namespace vardel

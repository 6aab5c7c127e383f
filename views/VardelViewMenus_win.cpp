// The host view's menus and commands, and what its list tells it.
#include <algorithm>

#include "plugins/PluginCalls.h"
#include "resources/DialogIds.h"
#include "resources/IconIds.h"
#include "resources/MenuIds.h"
#include "toolkit/TcGuiTools.h"
#include "views/ApplicationLaunch.h"
#include "views/VardelViewDlg.h"

namespace vardel {

namespace {

void Clear(HMENU menu) {
    while (DeleteMenu(menu, 0, MF_BYPOSITION)) {
    }
}

template <class Entries>
void Fill(HMENU menu, const Entries& entries) {
    Clear(menu);
    for (const auto& entry : entries) {
        const TcString text(entry.text);
        AppendMenuA(menu, MF_STRING, entry.id, text.GetContent());
    }
}

// The entry with that number; null for none.
template <class Entries>
auto* Find(const Entries& entries, u32 id) {
    const auto found = std::find_if(entries.begin(), entries.end(), [id](const auto& entry) { return entry.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

}  // namespace

void VardelViewDlg::BuildMenus() {
    const auto name = MAKEINTRESOURCEA(IDM_MENUS);
    menus_ = LoadMenuA(TcGuiTools::Instance(GetResInstance()), name);
    if (!menus_) menus_ = LoadMenuA(TcGuiTools::Instance(nullptr), name);
    popup_ = GetSubMenu(menus_, IDM_VIEW_POPUP);
    plugins_ = GetSubMenu(popup_, IDM_PLUGINS_POSITION);
    applications_ = GetSubMenu(popup_, IDM_APPLICATIONS_POSITION);
    filter_ = GetSubMenu(popup_, IDM_FILTER_POSITION);
    contextMenu_.InitMenu(GetResInstance(), popup_, images_);
    contextMenu_.SetImage(IDM_SET_TRUSTED, IDI_TRUSTED);
    contextMenu_.SetImage(IDM_SET_DISTRUSTED, IDI_DISTRUSTED);
    contextMenu_.SetImage(IDM_SET_UNKNOWN, IDI_UNKNOWN);
    filterMenu_.InitMenu(GetResInstance(), filter_, images_);
    systemMenu_.InitMenu(GetResInstance(), GetSystemMenu(GetHwnd(), FALSE), images_);
}

void VardelViewDlg::ReleaseMenus() {
    for (TcMenu* menu : {&contextMenu_, &pluginMenu_, &applicationMenu_, &filterMenu_, &systemMenu_})
        menu->ReleaseMenu();
    if (menus_) DestroyMenu(menus_);
    menus_ = popup_ = plugins_ = applications_ = filter_ = nullptr;
}

TcMenu& VardelViewDlg::MenuOf(UINT command) {
    switch (HostMenuPartOf(command)) {
        case HostMenuPart::Plugins: return pluginMenu_;
        case HostMenuPart::Applications: return applicationMenu_;
        case HostMenuPart::Filter: return filterMenu_;
        case HostMenuPart::System: return systemMenu_;
        default: return contextMenu_;
    }
}

bool VardelViewDlg::OnMeasureItem(int id, MEASUREITEMSTRUCT* item) {
    return id == 0 ? MenuOf(item->itemID).OnMeasureItem(item) : list_.OnMeasureItem(item);
}

bool VardelViewDlg::OnDrawItem(int id, DRAWITEMSTRUCT* item) {
    return id == 0 ? MenuOf(item->itemID).OnDrawItem(item) : list_.OnDrawItem(item);
}

ULONG_PTR VardelViewDlg::OnNotify(int id, LPARAM data) {
    if (id != IDC_HOST_LIST) return 0;
    switch (reinterpret_cast<const NMHDR*>(data)->code) {
        case LVN_COLUMNCLICK: SortBy(reinterpret_cast<const NMLISTVIEW*>(data)->iSubItem); break;
        case LVN_KEYDOWN: OnListKey(reinterpret_cast<const NMLVKEYDOWN*>(data)->wVKey); break;
        case NM_RCLICK: {
            POINT cursor{};
            GetCursorPos(&cursor);
            const int row = list_.RowOfLine(reinterpret_cast<const NMITEMACTIVATE*>(data)->iItem);
            ShowContextMenu(cursor, static_cast<HostRecord*>(list_.ItemOfRow(row)));
            return TRUE;  // the system need not ask for a menu any more
        }
        default: break;
    }
    return 0;
}

void VardelViewDlg::OnListKey(int key) {
    if (key == 'A' && GetKeyState(VK_CONTROL) < 0) list_.SelectAll();
}

void VardelViewDlg::FillPluginMenu() {
    offeredPlugins_ = OfferPlugins(data_->plugins);
    Fill(plugins_, offeredPlugins_);
    pluginMenu_.InitMenu(GetResInstance(), plugins_, images_);
}

void VardelViewDlg::FillApplicationMenu() {
    offeredApplications_ = OfferApplications(data_->settings);
    Fill(applications_, offeredApplications_);
    applicationMenu_.InitMenu(GetResInstance(), applications_, images_);
}

void VardelViewDlg::MarkMenu(const HostRecord* clicked) {
    for (const HostMenuItem& item : HostMenuItems(data_->settings, clicked)) {
        EnableMenuItem(popup_, item.id, MF_BYCOMMAND | (item.enabled ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(popup_, item.id, MF_BYCOMMAND | (item.checked ? MF_CHECKED : MF_UNCHECKED));
    }
    // A submenu that offers nothing doesn't open.
    const UINT plugins = offeredPlugins_.empty() ? MF_GRAYED : MF_ENABLED;
    const UINT applications = offeredApplications_.empty() ? MF_GRAYED : MF_ENABLED;
    EnableMenuItem(popup_, IDM_PLUGINS_POSITION, MF_BYPOSITION | plugins);
    EnableMenuItem(popup_, IDM_APPLICATIONS_POSITION, MF_BYPOSITION | applications);
}

void VardelViewDlg::ShowContextMenu(POINT place, HostRecord* clicked) {
    if (!popup_) return;
    FillPluginMenu();
    FillApplicationMenu();
    MarkMenu(clicked);
    const BOOL chosen =
        TrackPopupMenu(popup_, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, GetHwnd(), nullptr);
    if (chosen) RunMenuCommand(static_cast<u32>(chosen), clicked);
    offeredPlugins_.clear();
    offeredApplications_.clear();
}

void VardelViewDlg::RunMenuCommand(u32 id, HostRecord* clicked) {
    switch (HostMenuPartOf(id)) {
        case HostMenuPart::Plugins:
            if (const auto* entry = Find(offeredPlugins_, id); entry && clicked)
                RunPluginOnHost(*entry->plugin, GetHwnd(), HostText(clicked->ip, clicked->mac, clicked->hostName));
            break;
        case HostMenuPart::Applications:
            if (const auto* entry = Find(offeredApplications_, id); entry && clicked)
                LaunchForHost(*data_, entry->executable, entry->parameters, *clicked);
            break;
        default: SendMessageA(GetHwnd(), WM_COMMAND, id, 0); break;
    }
}

bool VardelViewDlg::OnCommand(int id, int, HWND) {
    switch (static_cast<u32>(id)) {
        case kSetTrusted: ChangeTrust(TrustState::Trusted); return true;
        case kSetDistrusted: ChangeTrust(TrustState::Distrusted); return true;
        case kSetUnknown: ChangeTrust(TrustState::Unknown); return true;
        case kDeleteHosts: DeleteSelected(); return true;
        case kFilterTrusted: SwitchFilter(data_->settings, kShowTrusted); return true;
        case kFilterDistrusted: SwitchFilter(data_->settings, kShowDistrusted); return true;
        case kFilterUnknown: SwitchFilter(data_->settings, kShowUnknown); return true;
        case kOpenDevicePage: OpenDevicePage(data_->services.shell, SelectedHosts()); return true;
        case IDC_HOST_REFRESH: Refresh(); return true;
        default: return false;
    }
}

}  // namespace vardel

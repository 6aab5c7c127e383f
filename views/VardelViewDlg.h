// VardelViewDlg: the host view, the table of all that is known of the hosts, in three groups.
//
// The frame's own, on the main thread; runs modally while the frame's timers and all workers go on. It decides nothing:
// rows, texts, menus and what the user does to hosts are functions of this folder.
#pragma once

#include <vector>

#include "toolkit/TcDialog.h"
#include "toolkit/TcMenu.h"
#include "toolkit/UniqueHandle.h"
#include "views/HostActions.h"
#include "views/HostMenu.h"
#include "views/VardelViewList.h"

namespace vardel {

class VardelViewDlg : public TcDialog {
  public:
    VardelViewDlg();
    ~VardelViewDlg() override = default;

    // Shows the view until the user closes it. `images`: the program's own module.
    void Open(VardelData& data, ModuleHandle images);
    // The texts of the next opening; those of an open view's headers at once.
    void SetLanguage(ModuleHandle language);
    // The next click on a header sorts in the other direction.
    bool SortsAscending() const { return ascending_; }

    bool OnInitDialog(LPARAM param) override;
    bool OnCommand(int id, int notification, HWND control) override;
    void OnClose() override;
    ULONG_PTR OnNotify(int id, LPARAM data) override;
    bool OnMeasureItem(int id, MEASUREITEMSTRUCT* item) override;
    bool OnDrawItem(int id, DRAWITEMSTRUCT* item) override;
    void OnTimer(int id) override;
    bool OnTaskbarButtonCreated(ITaskbarList3*) override { return false; }

    // For the list. Null for a column that isn't there.
    const HostViewColumn* ColumnAt(int column) const;
    VardelData* Data() const { return data_; }
    VardelViewList& List() { return list_; }

  private:
    void LetPicturesGo();
    void SetWindowIcons();
    void BuildList();
    void BuildColumns();
    void BuildImages();
    void BuildMenus();
    void EnableLayout();
    void RestorePlace();
    void StorePlace();
    void KeepWidths();
    void ReleaseMenus();

    void Refresh();
    void ShowFresh(int first);
    void ShowCount(u32 hosts);
    void SortBy(int column);
    void FitColumn(int column);
    std::vector<HostRecord*> SelectedHosts() const;
    void ChangeTrust(TrustState state);
    void DeleteSelected();

    void OnListKey(int key);
    void ShowContextMenu(POINT place, HostRecord* clicked);
    void FillPluginMenu();
    void FillApplicationMenu();
    void MarkMenu(const HostRecord* clicked);
    void RunMenuCommand(u32 id, HostRecord* clicked);
    TcMenu& MenuOf(UINT command);

    VardelData* data_ = nullptr;
    ModuleHandle images_ = nullptr;
    TcMenu contextMenu_, pluginMenu_, applicationMenu_, systemMenu_, filterMenu_;
    HMENU menus_ = nullptr;  // holds the popups
    HMENU popup_ = nullptr, plugins_ = nullptr, applications_ = nullptr, filter_ = nullptr;
    // While the context menu is open.
    std::vector<PluginMenuEntry> offeredPlugins_;
    std::vector<ApplicationMenuEntry> offeredApplications_;
    std::vector<HostViewColumn> columns_;
    ColumnWidths widths_;
    UniqueImageList imageList_;
    UniqueIcon smallIcon_, largeIcon_;
    HostRows rows_;
    VardelViewList list_;
    RECT place_{};            // at the last closing
    bool ascending_ = false;  // one direction for all columns, as long as the program runs
};

}  // namespace vardel

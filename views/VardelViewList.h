// VardelViewList: the list of the host view. Each row carries its HostRecord; texts, pictures and colours are fetched
// when they are drawn. The view dialog's own; main thread.
#pragma once

#include "toolkit/TcListView.h"
#include "views/HostRows.h"

namespace vardel {

class VardelViewDlg;

class VardelViewList : public TcListView {
  public:
    // Borrows the dialog for its life.
    explicit VardelViewList(VardelViewDlg& dialog) : dialog_(dialog) {}

    bool GetItemText(int column, void* item, TcString& text) override;
    int GetItemImage(int column, void* item) override;
    int GetItemTextColor(void* item) override;

  private:
    VardelViewDlg& dialog_;
};

}  // namespace vardel

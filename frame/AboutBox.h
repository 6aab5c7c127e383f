// AboutBox: the box that tells the product, its version and that of the capture library. The frame's own; main thread.
#pragma once

#include "toolkit/TcDialog.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

class AboutBox : public TcDialog {
  public:
    // Modal; returns when the user closed it.
    void Show(ModuleHandle language, ModuleHandle images, const TcString& captureLibraryVersion);

    bool OnInitDialog(LPARAM param) override;
    bool OnCommand(int id, int notification, HWND control) override;
    bool OnMeasureItem(int, MEASUREITEMSTRUCT*) override { return false; }
    bool OnDrawItem(int, DRAWITEMSTRUCT*) override { return false; }

  private:
    void ShowIcon(int control, UniqueIcon& icon, int resource);

    ModuleHandle images_ = nullptr;
    TcString captureLibraryVersion_;
    UniqueIcon productIcon_, hostIcon_;
};

}  // namespace vardel

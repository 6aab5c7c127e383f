// TrayMenus: the tray menu with its two submenus, drawn by the toolkit. The frame's own; main thread.
//
// Without the menu's resource there is no menu, and all operations do nothing.
#pragma once

#include <span>

#include "frame/LanguageModules.h"
#include "frame/TrayMenu.h"
#include "toolkit/TcMenu.h"

namespace vardel {

class TrayMenus {
  public:
    TrayMenus() = default;
    ~TrayMenus() { Destroy(); }
    TrayMenus(const TrayMenus&) = delete;
    TrayMenus& operator=(const TrayMenus&) = delete;

    // Loads the menu in that language, an older one goes. Numbers the languages anew.
    void Build(VardelData& data, ModuleHandle language, ModuleHandle images);
    void Destroy();

    void Apply(std::span<const TrayItemState> states);
    // Shows the menu at the cursor and gives the chosen command, 0 for none.
    u32 Track(HWND owner);

    bool OnMeasureItem(MEASUREITEMSTRUCT* item) { return MenuOf(item->itemID).OnMeasureItem(item); }
    bool OnDrawItem(DRAWITEMSTRUCT* item) { return MenuOf(item->itemID).OnDrawItem(item); }

    // Null without the resource.
    HMENU Popup() const { return tray_; }

  private:
    TcMenu& MenuOf(UINT command);
    void BuildLanguages(VardelData& data, ModuleHandle language, ModuleHandle images, HMENU submenu);
    void SetImages();

    HMENU resource_ = nullptr;  // holds the popups
    HMENU tray_ = nullptr;
    TcMenu trayItems_, languageItems_, informationItems_;
};

}  // namespace vardel

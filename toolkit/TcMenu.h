// TcMenu: one menu, popup or system menu, drawn by the toolkit: an icon column, labels, the default item in
// bold.
//
// InitMenu takes the items of one menu handle over as they are then, not those of its submenus, each of which
// has an object of its own. Call it again when items were added. The menu's owner forwards its measure and
// draw requests; an object passes requests for another object's items on, so that a wrong choice among
// several does no harm. The menu handle stays the caller's; the object gives the items back when it goes, if
// the menu is still there then. Main thread.
#pragma once

#include <memory>
#include <vector>

#include "platform/StringResources.h"
#include "platform/WindowsApi.h"
#include "toolkit/MenuPainter.h"

namespace vardel {

class TcMenu {
  public:
    TcMenu();
    ~TcMenu();
    TcMenu(const TcMenu&) = delete;
    TcMenu& operator=(const TcMenu&) = delete;

    // `languageModule` is where the menu is from, `imageModule` where SetImage takes its icons; null stands
    // for the program. False, and nothing taken over, for a handle that is no menu.
    bool InitMenu(ModuleHandle languageModule, HMENU menu, ModuleHandle imageModule);
    // Gives the items back to the system's drawing.
    void ReleaseMenu();

    // A 16 x 16 icon beside the item; false when the menu has no such item, or there is no such icon.
    bool SetImage(int commandId, int iconResource);
    // Of the icon a copy is kept.
    bool SetImage(int commandId, HICON icon);

    // False for an item of no TcMenu.
    bool OnMeasureItem(MEASUREITEMSTRUCT* item);
    bool OnDrawItem(DRAWITEMSTRUCT* item);

    // The answer to WM_MENUCHAR: the item of a taken over menu that the key stands for; 0 for none.
    static LRESULT OnMenuChar(HMENU menu, UINT character);

  private:
    struct Item;

    static Item* FindItem(ULONG_PTR data);
    bool TakeItem(int position);
    bool PutImage(int commandId, UniqueIcon icon);
    bool IsDefault(const Item& item) const;

    HMENU menu_ = nullptr;
    ModuleHandle languageModule_ = nullptr;
    ModuleHandle imageModule_ = nullptr;
    MenuPainter painter_;
    std::vector<std::unique_ptr<Item>> items_;
};

}  // namespace vardel

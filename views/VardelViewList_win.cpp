#include "views/VardelViewDlg.h"

#include "toolkit/ColorSteps.h"

namespace vardel {

bool VardelViewList::GetItemText(int column, void* item, TcString& text) {
    const HostViewColumn* shown = dialog_.ColumnAt(column);
    if (!shown || !item) return false;
    text = HostViewCellText(*shown, *static_cast<HostRecord*>(item), *dialog_.Data(), dialog_.GetResInstance()).c_str();
    return true;
}

int VardelViewList::GetItemImage(int column, void* item) {
    constexpr int kNoImage = -1;
    const HostViewColumn* shown = dialog_.ColumnAt(column);
    return shown && item ? HostViewCellIcon(*shown, *static_cast<HostRecord*>(item)) : kNoImage;
}

int VardelViewList::GetItemTextColor(void* item) {
    constexpr int kListsOwn = -1;
    if (!item || !dialog_.Data()) return kListsOwn;
    const RowColor color = HostRowColor(*static_cast<HostRecord*>(item), dialog_.Data()->settings.ViewOfflineRed != 0);
    if (color == kDefaultRowColor) return kListsOwn;
    return static_cast<int>(MakeColor(color.red, color.green, color.blue));
}

}  // namespace vardel

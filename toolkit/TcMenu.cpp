#include "toolkit/TcMenu.h"

#include <oleacc.h>

#include <string>
#include <unordered_set>

#include "toolkit/TcGuiTools.h"

namespace vardel {

// The record behind an item. It opens with the block in which screen readers look for an owner-drawn item's
// text.
struct TcMenu::Item {
    MSAAMENUINFO spoken{};
    std::wstring spokenText;
    TcMenu* owner = nullptr;
    UINT id = 0;
    UINT type = 0;  // as it was before
    ULONG_PTR data = 0;
    MenuItemLook look;
};

namespace {

// The addresses of all records, since a draw request's data may be somebody else's number.
std::unordered_set<ULONG_PTR>& LiveItems() {
    static std::unordered_set<ULONG_PTR> items;
    return items;
}

// A popup's command id is its handle, which says nothing.
bool ReadItem(HMENU menu, int position, MENUITEMINFOA& info, UINT mask) {
    info = {};
    info.cbSize = sizeof info;
    info.fMask = mask;
    return GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info) != FALSE;
}

std::string ReadText(HMENU menu, int position) {
    MENUITEMINFOA info;
    if (!ReadItem(menu, position, info, MIIM_STRING) || info.cch == 0) return {};
    std::string text(info.cch + 1, '\0');
    info.dwTypeData = text.data();
    info.cch = static_cast<UINT>(text.size());
    if (!GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info)) return {};
    text.resize(info.cch);
    return text;
}

// The key that a character stands for, whatever its case.
unsigned char Folded(unsigned character) {
    char text[2] = {static_cast<char>(character), 0};
    CharLowerA(text);
    return static_cast<unsigned char>(text[0]);
}

}  // namespace

TcMenu::TcMenu() = default;

TcMenu::~TcMenu() {
    ReleaseMenu();
}

TcMenu::Item* TcMenu::FindItem(ULONG_PTR data) {
    return data && LiveItems().contains(data) ? reinterpret_cast<Item*>(data) : nullptr;
}

bool TcMenu::InitMenu(ModuleHandle languageModule, HMENU menu, ModuleHandle imageModule) {
    ReleaseMenu();
    if (!menu || !IsMenu(menu)) return false;
    menu_ = menu;
    languageModule_ = languageModule;
    imageModule_ = imageModule;
    painter_.TakeFonts();
    bool taken = true;
    for (int position = 0, count = GetMenuItemCount(menu); position < count; ++position)
        taken = TakeItem(position) && taken;
    return taken;
}

bool TcMenu::TakeItem(int position) {
    MENUITEMINFOA info;
    if (!ReadItem(menu_, position, info, MIIM_FTYPE | MIIM_ID | MIIM_DATA | MIIM_SUBMENU)) return false;
    auto item = std::make_unique<Item>();
    const Item* const other = FindItem(info.dwItemData);
    item->owner = this;
    item->id = info.hSubMenu ? 0 : info.wID;
    item->type = info.fType & ~static_cast<UINT>(MFT_OWNERDRAW);
    item->data = other ? other->data : info.dwItemData;
    item->look.text = other ? other->look.text : SplitMenuText(ReadText(menu_, position));
    item->look.isSeparator = (info.fType & MFT_SEPARATOR) != 0;
    item->look.isRadio = (info.fType & MFT_RADIOCHECK) != 0;
    item->look.glyph = GlyphOfCommand(item->id);
    item->spokenText = TcGuiTools::WideText(SpokenLabel(item->look.text.label));
    item->spoken = {MSAA_MENU_SIG, static_cast<DWORD>(item->spokenText.size()), item->spokenText.data()};

    info.fMask = MIIM_FTYPE | MIIM_DATA;
    info.fType = item->type | MFT_OWNERDRAW;
    info.dwItemData = reinterpret_cast<ULONG_PTR>(item.get());
    if (!SetMenuItemInfoA(menu_, static_cast<UINT>(position), TRUE, &info)) return false;
    LiveItems().insert(info.dwItemData);
    items_.push_back(std::move(item));
    return true;
}

void TcMenu::ReleaseMenu() {
    MENUITEMINFOA info;
    const int count = menu_ && IsMenu(menu_) ? GetMenuItemCount(menu_) : 0;
    for (int position = 0; position < count; ++position) {
        if (!ReadItem(menu_, position, info, MIIM_DATA)) continue;
        const Item* const item = FindItem(info.dwItemData);
        if (!item || item->owner != this) continue;  // the handle may be another menu's by now
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        info.fType = item->type;
        info.dwItemData = item->data;
        SetMenuItemInfoA(menu_, static_cast<UINT>(position), TRUE, &info);
    }
    for (const auto& item : items_) LiveItems().erase(reinterpret_cast<ULONG_PTR>(item.get()));
    items_.clear();
    menu_ = nullptr;
}

bool TcMenu::SetImage(int commandId, int iconResource) {
    const int edge = MenuMeasuresFor(kPlainDpi).iconEdge;
    return PutImage(commandId, UniqueIcon(TcGuiTools::LoadSizedIcon(imageModule_, iconResource, edge)));
}

bool TcMenu::SetImage(int commandId, HICON icon) {
    return PutImage(commandId, UniqueIcon(icon ? CopyIcon(icon) : nullptr));
}

bool TcMenu::PutImage(int commandId, UniqueIcon icon) {
    if (!icon || commandId <= 0) return false;
    for (const auto& item : items_) {
        if (item->look.isSeparator || item->id != static_cast<UINT>(commandId)) continue;
        item->look.icon = std::move(icon);
        item->look.greyIcon.Reset();
        return true;
    }
    return false;
}

bool TcMenu::IsDefault(const Item& item) const {
    MENUITEMINFOA info;
    for (int position = 0, count = GetMenuItemCount(menu_); position < count; ++position)
        if (ReadItem(menu_, position, info, MIIM_DATA | MIIM_STATE) &&
            info.dwItemData == reinterpret_cast<ULONG_PTR>(&item))
            return (info.fState & MFS_DEFAULT) != 0;
    return false;
}

bool TcMenu::OnMeasureItem(MEASUREITEMSTRUCT* item) {
    if (!item || item->CtlType != ODT_MENU) return false;
    Item* const found = FindItem(item->itemData);
    if (!found) return false;
    const TcMenu& owner = *found->owner;
    const PixelSize size = owner.painter_.Measure(found->look, owner.IsDefault(*found));
    item->itemWidth = static_cast<UINT>(size.width);
    item->itemHeight = static_cast<UINT>(size.height);
    return true;
}

bool TcMenu::OnDrawItem(DRAWITEMSTRUCT* item) {
    if (!item || item->CtlType != ODT_MENU) return false;
    Item* const found = FindItem(item->itemData);
    if (!found) return false;
    const TcMenu& owner = *found->owner;
    owner.painter_.Draw(*item, found->look, owner.IsDefault(*found));
    return true;
}

LRESULT TcMenu::OnMenuChar(HMENU menu, UINT character) {
    const int count = menu && IsMenu(menu) ? GetMenuItemCount(menu) : 0;
    int lit = -1, first = -1, behindLit = -1, hits = 0;
    bool isGrey = false;
    for (int position = 0; position < count; ++position) {
        MENUITEMINFOA info;
        if (!ReadItem(menu, position, info, MIIM_DATA | MIIM_STATE)) continue;
        if (info.fState & MFS_HILITE) lit = position;
        const Item* const item = FindItem(info.dwItemData);
        const unsigned char key = item ? MnemonicOf(item->look.text.label) : 0;
        if (!key || Folded(key) != Folded(character)) continue;
        ++hits;
        if (first < 0) first = position;
        if (lit >= 0 && position > lit && behindLit < 0) behindLit = position;
        isGrey = (info.fState & MFS_GRAYED) != 0;
    }
    if (hits == 0) return 0;
    const int chosen = behindLit >= 0 ? behindLit : first;
    return MAKELRESULT(chosen, hits > 1 || isGrey ? MNC_SELECT : MNC_EXECUTE);
}

}  // namespace vardel

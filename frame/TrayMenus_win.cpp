#include "frame/TrayMenus.h"

#include <vector>

#include "resources/MenuIds.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr int kMenuIconEdge = 16;

// A language module that lacks the menu leaves the program's own.
HMENU LoadMenus(ModuleHandle language) {
    const auto name = MAKEINTRESOURCEA(IDM_MENUS);
    if (const HMENU menu = LoadMenuA(TcGuiTools::Instance(language), name)) return menu;
    return LoadMenuA(TcGuiTools::Instance(nullptr), name);
}

void InsertLanguage(HMENU submenu, u32 position, const LanguageMenuEntry& entry) {
    TcString name(entry.language->name);
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_ID | MIIM_STRING | MIIM_STATE;
    item.wID = entry.language->menuId;
    item.fState = entry.isCurrent ? MFS_DEFAULT : 0u;
    item.dwTypeData = name.GetContent();
    InsertMenuItemA(submenu, position, TRUE, &item);
}

}  // namespace

void TrayMenus::Build(VardelData& data, ModuleHandle language, ModuleHandle images) {
    Destroy();
    resource_ = LoadMenus(language);
    tray_ = GetSubMenu(resource_, IDM_TRAY_POPUP);
    if (!tray_) return;
    const HMENU languages = GetSubMenu(tray_, IDM_LANGUAGE_POSITION);
    const HMENU informations = GetSubMenu(tray_, IDM_INFORMATIONS_POSITION);
    BuildLanguages(data, language, images, languages);
    SetMenuDefaultItem(tray_, kViewCommand, FALSE);
    informationItems_.InitMenu(language, informations, images);
    trayItems_.InitMenu(language, tray_, images);
    SetImages();
}

void TrayMenus::BuildLanguages(VardelData& data, ModuleHandle language, ModuleHandle images, HMENU submenu) {
    const std::vector<LanguageMenuEntry> offered = OfferLanguages(data, language);
    if (offered.empty()) {
        DeleteMenu(tray_, IDM_LANGUAGE_POSITION, MF_BYPOSITION);
        return;
    }
    while (DeleteMenu(submenu, 0, MF_BYPOSITION)) {
    }
    for (u32 position = 0; position < offered.size(); ++position) InsertLanguage(submenu, position, offered[position]);
    languageItems_.InitMenu(language, submenu, images);
    // Wanted: the number goes on only with an icon that is there, so one that is missing moves those behind it up.
    u32 command = kFirstLanguageCommand;
    for (const LanguageMenuEntry& entry : offered) {
        const UniqueIcon icon(
            TcGuiTools::LoadSizedIcon(entry.language->module, static_cast<int>(entry.language->iconId), kMenuIconEdge));
        if (icon) languageItems_.SetImage(static_cast<int>(command++), icon.Get());
    }
}

void TrayMenus::SetImages() {
    for (const TrayImage& image : TrayImages())
        MenuOf(image.command).SetImage(static_cast<int>(image.command), static_cast<int>(image.icon));
}

void TrayMenus::Destroy() {
    for (TcMenu* menu : {&trayItems_, &languageItems_, &informationItems_}) menu->ReleaseMenu();
    if (resource_) DestroyMenu(resource_);
    resource_ = tray_ = nullptr;
}

TcMenu& TrayMenus::MenuOf(UINT command) {
    switch (TrayMenuPartOf(command)) {
        case TrayMenuPart::Language: return languageItems_;
        case TrayMenuPart::Informations: return informationItems_;
        default: return trayItems_;
    }
}

void TrayMenus::Apply(std::span<const TrayItemState> states) {
    for (const TrayItemState& state : states) {
        if (state.enabled)
            EnableMenuItem(tray_, state.command, MF_BYCOMMAND | (*state.enabled ? MF_ENABLED : MF_GRAYED));
        if (state.checked)
            CheckMenuItem(tray_, state.command, MF_BYCOMMAND | (*state.checked ? MF_CHECKED : MF_UNCHECKED));
    }
}

u32 TrayMenus::Track(HWND owner) {
    if (!tray_) return 0;
    POINT cursor{};
    GetCursorPos(&cursor);
    // Without the foreground the menu wouldn't close when the user clicks elsewhere.
    SetForegroundWindow(owner);
    SetMenuDefaultItem(tray_, kViewCommand, FALSE);
    const BOOL chosen = TrackPopupMenu(tray_, TPM_RETURNCMD, cursor.x, cursor.y, 0, owner, nullptr);
    PostMessageA(owner, WM_NULL, 0, 0);  // lets the menu close for good
    return static_cast<u32>(chosen);
}

}  // namespace vardel

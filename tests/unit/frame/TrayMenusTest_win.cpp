// The real menus of the tray, in each of the languages that lie beside the program.
#include "frame/TrayMenus.h"

#include <gtest/gtest.h>

#include <oleacc.h>

#include <memory>
#include <set>
#include <string>

#include "platform/Modules.h"
#include "resources/IconIds.h"
#include "tests/unit/support/Canvas_win.h"
#include "tests/unit/support/GuiObjects_win.h"
#include "tests/unit/support/TestModules.h"
#include "tests/unit/support/TestServices.h"
#include "toolkit/MenuMetrics.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {
namespace {

struct TrayMenusTest : testing::Test {
    ~TrayMenusTest() override {
        menus.Destroy();
        for (const ModuleHandle module : loaded) SystemModules().Free(module);
    }
    ModuleHandle Module(const char* name) {
        loaded.push_back(SystemModules().Load(test::LanguageModule(name).c_str()));
        EXPECT_NE(loaded.back(), nullptr) << name;
        return loaded.back();
    }
    LanguageEntry& AddLanguage(const char* name, ModuleHandle module, u32 iconId) {
        auto entry = std::make_unique<LanguageEntry>();
        LanguageEntry& added = *entry;
        added.name = name;
        added.module = module;
        added.iconId = iconId;
        data.languages.Insert(name, std::move(entry));
        return added;
    }
    void AddThreeLanguages() {
        AddLanguage("English", Program(), IDI_FLAG);
        AddLanguage("Deutsch", Module("german"), IDI_FLAG);
        AddLanguage("Fran\xe7" "ais", Module("french"), IDI_FLAG);
    }
    static ModuleHandle Program() { return reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)); }
    void Build(ModuleHandle language = Program()) { menus.Build(data, language, Program()); }

    HMENU Tray() const { return menus.Popup(); }
    HMENU Languages() const { return GetSubMenu(Tray(), 11); }
    static MENUITEMINFOA InfoOf(HMENU menu, UINT item, bool byPosition) {
        MENUITEMINFOA info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_DATA | MIIM_STATE;
        EXPECT_TRUE(GetMenuItemInfoA(menu, item, byPosition, &info)) << item;
        return info;
    }
    // The toolkit draws the item, so its text is where a screen reader looks for it.
    static std::wstring TextOf(const MENUITEMINFOA& info) {
        const auto* spoken = reinterpret_cast<const MSAAMENUINFO*>(info.dwItemData);
        if (!(info.fType & MFT_OWNERDRAW) || !spoken) return L"not drawn by the toolkit";
        return std::wstring(spoken->pszWText, spoken->cchWText);
    }
    std::wstring CommandText(UINT command) const { return TextOf(InfoOf(Tray(), command, false)); }
    std::wstring TextAt(HMENU menu, UINT position) const { return TextOf(InfoOf(menu, position, true)); }

    // True when something else than the column's own colour stands in the item's icon column.
    bool HasPicture(const MENUITEMINFOA& info) {
        MEASUREITEMSTRUCT size{};
        size.CtlType = ODT_MENU;
        size.itemID = info.wID;
        size.itemData = info.dwItemData;
        EXPECT_TRUE(menus.OnMeasureItem(&size));
        const test::Canvas canvas(static_cast<int>(size.itemWidth), static_cast<int>(size.itemHeight));
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_MENU;
        item.itemID = info.wID;
        item.itemAction = ODA_DRAWENTIRE;
        item.hDC = canvas.Dc();
        item.rcItem = {0, 0, static_cast<LONG>(size.itemWidth), static_cast<LONG>(size.itemHeight)};
        item.itemData = info.dwItemData;
        EXPECT_TRUE(menus.OnDrawItem(&item));
        std::set<COLORREF> colors;
        const int column = MenuMeasuresFor(TcGuiTools::Dpi()).iconColumn;
        for (int y = 0; y < static_cast<int>(size.itemHeight); ++y)
            for (int x = 0; x < column; ++x) colors.insert(canvas.At(x, y));
        return colors.size() > 1;
    }

    test::TestServices system;
    VardelData data{system.services};
    TrayMenus menus;
    std::vector<ModuleHandle> loaded;
};

TEST_F(TrayMenusTest, HasItsCommandsWithTheirTexts) {
    AddThreeLanguages();
    Build();
    const std::pair<UINT, const wchar_t*> commands[] = {
        {40001, L"Start"},    {40002, L"Stop"},   {40015, L"Silent Mode"}, {40006, L"View"},
        {40021, L"Resources"}, {40027, L"Eventlog"}, {40029, L"SysLog"},    {40003, L"Settings"},
        {40033, L"Check for new version..."}, {40005, L"About..."}, {40011, L"Help (Online)"}, {40004, L"Exit"}};
    for (const auto& [command, text] : commands) EXPECT_EQ(CommandText(command), text) << command;
    EXPECT_EQ(TextAt(Tray(), 11), L"Language");
    EXPECT_EQ(TextAt(Tray(), 12), L"Informations");
}

TEST_F(TrayMenusTest, EachCommandHasItsPictureAndSilentModeNone) {
    AddThreeLanguages();
    Build();
    for (const TrayImage& image : TrayImages())
        EXPECT_TRUE(HasPicture(InfoOf(Tray(), image.command, false))) << image.command;
    EXPECT_FALSE(HasPicture(InfoOf(Tray(), kSilentCommand, false)));
}

TEST_F(TrayMenusTest, TheViewIsTheDefault) {
    Build();
    EXPECT_EQ(GetMenuDefaultItem(Tray(), FALSE, 0), static_cast<UINT>(kViewCommand));
}

TEST_F(TrayMenusTest, WithoutAChoiceOfLanguagesTheInformationsMoveUp) {
    AddLanguage("English", Program(), IDI_FLAG);
    Build();
    EXPECT_EQ(TextAt(Tray(), 11), L"Informations");
    EXPECT_EQ(GetMenuItemID(GetSubMenu(Tray(), 11), 0), static_cast<UINT>(kUpdateCommand));
    EXPECT_EQ(CommandText(kAboutCommand), L"About...");
    EXPECT_TRUE(HasPicture(InfoOf(Tray(), kAboutCommand, false)));
}

TEST_F(TrayMenusTest, LanguagesTakeThePlaceOfTheDummyInTheTablesOrder) {
    AddThreeLanguages();
    const ModuleHandle german = data.languages.FindValue("Deutsch")->module;
    Build(german);
    ASSERT_EQ(GetMenuItemCount(Languages()), 3);
    UINT position = 0;
    for (const LanguageMenuEntry& entry : OfferLanguages(data, german)) {
        EXPECT_EQ(GetMenuItemID(Languages(), static_cast<int>(position)), 22000 + position);
        EXPECT_EQ(TextAt(Languages(), position), TcGuiTools::WideText(entry.language->name.GetContent()));
        EXPECT_TRUE(HasPicture(InfoOf(Languages(), position, true)));
        ++position;
    }
    EXPECT_EQ(GetMenuDefaultItem(Languages(), FALSE, 0), data.languages.FindValue("Deutsch")->menuId.Get());
}

TEST_F(TrayMenusTest, AFlagThatIsMissingMovesThoseBehindItUp) {
    AddThreeLanguages();
    const auto order = OfferLanguages(data, nullptr);
    ASSERT_EQ(order.size(), 3u);
    for (const LanguageMenuEntry& missing : order) {
        for (const LanguageMenuEntry& entry : order)
            data.languages.FindValue(entry.language->name)->iconId =
                entry.language == missing.language ? 9999 : IDI_FLAG;
        Build();
        EXPECT_TRUE(HasPicture(InfoOf(Languages(), 0, true)));
        EXPECT_TRUE(HasPicture(InfoOf(Languages(), 1, true)));
        EXPECT_FALSE(HasPicture(InfoOf(Languages(), 2, true))) << "wanted, whichever it was that had none";
    }
}

TEST_F(TrayMenusTest, SpeaksTheLanguageItIsBuiltIn) {
    Build(Module("german"));
    EXPECT_EQ(CommandText(kSilentCommand), L"Stiller Modus");
    Build(Module("french"));
    EXPECT_EQ(CommandText(kSilentCommand), L"Mode silencieux");
    Build();
    EXPECT_EQ(CommandText(kSilentCommand), L"Silent Mode");
}

TEST_F(TrayMenusTest, ALanguageWithoutTheMenuLeavesTheProgramsOwn) {
    Build(reinterpret_cast<ModuleHandle>(GetModuleHandleA("kernel32.dll")));
    EXPECT_EQ(CommandText(kSilentCommand), L"Silent Mode");
}

TEST_F(TrayMenusTest, ShowsWhatIsGreyAndMarked) {
    Build();
    menus.Apply(std::vector<TrayItemState>{{kStartCommand, false, std::nullopt}, {kSilentCommand, std::nullopt, true}});
    EXPECT_TRUE(InfoOf(Tray(), kStartCommand, false).fState & MFS_GRAYED);
    EXPECT_TRUE(InfoOf(Tray(), kSilentCommand, false).fState & MFS_CHECKED);
    EXPECT_FALSE(InfoOf(Tray(), kStopCommand, false).fState & MFS_GRAYED) << "as it stands";
    menus.Apply(std::vector<TrayItemState>{{kStartCommand, true, std::nullopt}, {kSilentCommand, std::nullopt, false}});
    EXPECT_FALSE(InfoOf(Tray(), kStartCommand, false).fState & MFS_GRAYED);
    EXPECT_FALSE(InfoOf(Tray(), kSilentCommand, false).fState & MFS_CHECKED);
}

TEST_F(TrayMenusTest, WithoutAMenuThereIsNothingToShow) {
    EXPECT_EQ(Tray(), nullptr);
    menus.Apply(std::vector<TrayItemState>{{kStartCommand, true, true}});
    EXPECT_EQ(menus.Track(nullptr), 0u);
}

TEST_F(TrayMenusTest, KeysStandForTheirItems) {
    AddThreeLanguages();
    Build();
    EXPECT_EQ(TcMenu::OnMenuChar(Tray(), 'x'), 0);
    EXPECT_EQ(LOWORD(TcMenu::OnMenuChar(Tray(), 'L')), 11);
    EXPECT_EQ(HIWORD(TcMenu::OnMenuChar(Tray(), 'e')), MNC_EXECUTE);
    EXPECT_EQ(LOWORD(TcMenu::OnMenuChar(GetSubMenu(Tray(), 12), 'a')), 1);
}

TEST_F(TrayMenusTest, NamesOfAnyCodePageDoNoHarm) {
    std::string all;
    for (int byte = 0x80; byte < 0x100; ++byte) all += static_cast<char>(byte);
    AddLanguage(all.c_str(), Program(), IDI_FLAG);
    AddLanguage("\x83\x81\x83", Program(), IDI_FLAG);  // ends in half a character, where there are such
    Build();
    ASSERT_EQ(GetMenuItemCount(Languages()), 2);
    for (UINT position = 0; position < 2; ++position) {
        const auto order = OfferLanguages(data, nullptr);
        EXPECT_EQ(TextAt(Languages(), position),
                  TcGuiTools::WideText(order[position].language->name.GetContent()));
        EXPECT_TRUE(HasPicture(InfoOf(Languages(), position, true)));
    }
}

TEST_F(TrayMenusTest, MenusThatAreBuiltAgainLeaveNothingBehind) {
    AddThreeLanguages();
    const ModuleHandle german = data.languages.FindValue("Deutsch")->module;
    test::ExpectNoObjectsLeftBehind(50, [&] {
        Build(german);
        EXPECT_TRUE(HasPicture(InfoOf(Tray(), kStartCommand, false)));
        Build();
    });
}

}  // namespace
}  // namespace vardel

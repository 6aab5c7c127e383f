#include "tests/desktop/DesktopFixture.h"
#include "tests/unit/support/GuiObjects_win.h"
#include "toolkit/TcGuiTools.h"
#include "toolkit/TcMenu.h"
#include "toolkit/UniqueHandle.h"

#include <oleacc.h>

namespace vardel::test {
namespace {

// The popup of the test's menu resource.
struct MenuTest : testing::Test {
    MenuTest()
        : resource(LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(MENU_POPUP))),
          popup(GetSubMenu(resource, 0)) {}
    ~MenuTest() override {
        menu.ReleaseMenu();
        DestroyMenu(resource);
    }

    static MENUITEMINFOA Info(HMENU of, int position) {
        MENUITEMINFOA info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_DATA | MIIM_STATE | MIIM_SUBMENU;
        EXPECT_TRUE(GetMenuItemInfoA(of, static_cast<UINT>(position), TRUE, &info));
        return info;
    }
    static std::string Text(HMENU of, int position) {
        char text[100] = "";
        GetMenuStringA(of, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
        return text;
    }
    MEASUREITEMSTRUCT Measure(int position) {
        MEASUREITEMSTRUCT item{};
        item.CtlType = ODT_MENU;
        item.itemData = Info(popup, position).dwItemData;
        EXPECT_TRUE(menu.OnMeasureItem(&item));
        return item;
    }
    // Draws an item of the popup into a picture of its own size.
    std::unique_ptr<Canvas> Draw(int position, UINT state) {
        const MEASUREITEMSTRUCT size = Measure(position);
        auto canvas =
            std::make_unique<Canvas>(static_cast<int>(size.itemWidth), static_cast<int>(size.itemHeight));
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_MENU;
        item.itemAction = ODA_DRAWENTIRE;
        item.itemState = state;
        item.hDC = canvas->Dc();
        item.rcItem = {0, 0, static_cast<LONG>(size.itemWidth), static_cast<LONG>(size.itemHeight)};
        item.itemData = Info(popup, position).dwItemData;
        EXPECT_TRUE(menu.OnDrawItem(&item));
        return canvas;
    }

    static constexpr int kView = 0, kSeparator = 1, kStart = 2, kStop = 3, kSilent = 4, kLanguage = 5,
                         kExit = 6;
    const HMENU resource;
    const HMENU popup;
    TcMenu menu;
};

TEST_F(MenuTest, TakesAllItemsOfItsMenuOverAndNoneOfItsSubmenus) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    for (int position = 0; position < GetMenuItemCount(popup); ++position)
        EXPECT_TRUE(Info(popup, position).fType & MFT_OWNERDRAW) << position;
    EXPECT_FALSE(Info(GetSubMenu(popup, kLanguage), 0).fType & MFT_OWNERDRAW);
    EXPECT_EQ(GetMenuItemID(popup, kStart), static_cast<UINT>(COMMAND_START));
    EXPECT_TRUE(Info(popup, kSeparator).fType & MFT_SEPARATOR);
}

TEST_F(MenuTest, GivesTheItemsBack) {
    const std::string before = Text(popup, kView);
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    menu.ReleaseMenu();
    for (int position = 0; position < GetMenuItemCount(popup); ++position) {
        EXPECT_FALSE(Info(popup, position).fType & MFT_OWNERDRAW);
        EXPECT_EQ(Info(popup, position).dwItemData, 0u);
    }
    EXPECT_EQ(Text(popup, kView), before);
}

TEST_F(MenuTest, AHandleThatIsNoMenuIsRefused) {
    EXPECT_FALSE(menu.InitMenu(nullptr, nullptr, nullptr));
    const HMENU gone = CreatePopupMenu();
    DestroyMenu(gone);
    EXPECT_FALSE(menu.InitMenu(nullptr, gone, nullptr));
    EXPECT_FALSE(menu.SetImage(COMMAND_START, ICON_RED));
}

TEST_F(MenuTest, AMenuThatIsDestroyedFirstDoesNoHarm) {
    TcMenu other;
    const HMENU gone = CreatePopupMenu();
    AppendMenuA(gone, MF_STRING, 5, "Five");
    ASSERT_TRUE(other.InitMenu(nullptr, gone, nullptr));
    const ULONG_PTR data = Info(gone, 0).dwItemData;
    DestroyMenu(gone);
    other.ReleaseMenu();
    MEASUREITEMSTRUCT item{};
    item.CtlType = ODT_MENU;
    item.itemData = data;
    EXPECT_FALSE(other.OnMeasureItem(&item)) << "its records are no more";
}

TEST_F(MenuTest, ItemsThatWereAddedAreTakenByAnotherCall) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    AppendMenuA(popup, MF_STRING, 20000, "A plugin of some length");
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const int last = GetMenuItemCount(popup) - 1;
    EXPECT_TRUE(Info(popup, last).fType & MFT_OWNERDRAW);
    EXPECT_GT(Measure(last).itemWidth, Measure(kExit).itemWidth);
    EXPECT_GT(Measure(kView).itemWidth, Measure(kExit).itemWidth) << "the others keep their texts";
}

TEST_F(MenuTest, AnotherObjectMayTakeAMenuOver) {
    TcMenu first;
    ASSERT_TRUE(first.InitMenu(nullptr, popup, nullptr));
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const MEASUREITEMSTRUCT size = Measure(kView);
    first.ReleaseMenu();
    EXPECT_TRUE(Info(popup, kView).fType & MFT_OWNERDRAW) << "the items are the second one's";
    EXPECT_EQ(Measure(kView).itemWidth, size.itemWidth);
    menu.ReleaseMenu();
    EXPECT_FALSE(Info(popup, kView).fType & MFT_OWNERDRAW);
    EXPECT_EQ(Info(popup, kView).dwItemData, 0u);
}

TEST_F(MenuTest, TheDefaultItemIsBold) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const UINT plain = Measure(kView).itemWidth;
    const auto drawnPlain = Draw(kView, 0);
    ASSERT_TRUE(SetMenuDefaultItem(popup, COMMAND_VIEW, FALSE));
    EXPECT_GT(Measure(kView).itemWidth, plain);
    const auto drawnBold = Draw(kView, ODS_DEFAULT);
    EXPECT_GT(drawnBold->Darkness(), drawnPlain->Darkness());
}

TEST_F(MenuTest, AnItemIsAsHighAsItsIconAndASeparatorIsLow) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    EXPECT_GE(Measure(kStart).itemHeight, static_cast<UINT>(TcGuiTools::Scaled(16)));
    EXPECT_LT(Measure(kSeparator).itemHeight, Measure(kStart).itemHeight);
}

TEST_F(MenuTest, AnIconStandsBesideItsItem) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const auto without = Draw(kStart, 0);
    EXPECT_TRUE(menu.SetImage(COMMAND_START, ICON_GREEN));
    const auto with = Draw(kStart, 0);
    const COLORREF green = RGB(0x2a, 0x9d, 0x3a);
    EXPECT_EQ(without->Count(green), 0);
    EXPECT_GT(with->Count(green), 80);
    EXPECT_EQ(with->Count(green, {TcGuiTools::Scaled(24), 0, 400, 40}), 0) << "outside the icon column";
}

TEST_F(MenuTest, AnIconMayBeGivenAsAHandleThatStaysTheCallers) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    {
        const UniqueIcon red(TcGuiTools::LoadSizedIcon(nullptr, ICON_RED, 16));
        EXPECT_TRUE(menu.SetImage(COMMAND_START, red.Get()));
    }
    EXPECT_GT(Draw(kStart, 0)->Count(RGB(0xc0, 0x30, 0x28)), 80);
}

TEST_F(MenuTest, AnIconWithoutAnItemOrWithoutAPictureIsRefused) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    EXPECT_FALSE(menu.SetImage(COMMAND_FIRST_LANGUAGE, ICON_RED)) << "an item of the submenu";
    EXPECT_FALSE(menu.SetImage(COMMAND_START, 4000));
    EXPECT_FALSE(menu.SetImage(COMMAND_START, static_cast<HICON>(nullptr)));
}

TEST_F(MenuTest, AGreyedItemHasGreyTextAndAGreyIcon) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    ASSERT_TRUE(menu.SetImage(COMMAND_STOP, ICON_RED));
    const auto enabled = Draw(kStop, 0);
    const auto greyed = Draw(kStop, ODS_GRAYED | ODS_DISABLED);
    const COLORREF red = RGB(0xc0, 0x30, 0x28);
    EXPECT_GT(enabled->Count(red), 0);
    EXPECT_EQ(greyed->Count(red), 0);
    EXPECT_EQ(greyed->Count(GetSysColor(COLOR_MENUTEXT)), 0);
    EXPECT_GT(greyed->Count(GetSysColor(COLOR_GRAYTEXT)), 0);
}

TEST_F(MenuTest, TheItemUnderTheCursorIsLitUnlessItIsGreyed) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const COLORREF light = GetSysColor(COLOR_HIGHLIGHT);
    const auto width = static_cast<LONG>(Measure(kStop).itemWidth);
    EXPECT_EQ(Draw(kStart, ODS_SELECTED)->At(1, 1), light);
    EXPECT_NE(Draw(kStart, 0)->At(1, 1), light);
    const auto greyed = Draw(kStop, ODS_SELECTED | ODS_GRAYED);
    EXPECT_NE(greyed->At(static_cast<int>(width) - 3, 3), light);
    EXPECT_EQ(greyed->At(0, 0), GetSysColor(COLOR_GRAYTEXT)) << "a frame tells where the keyboard is";
}

TEST_F(MenuTest, AMarkShowsWithAndWithoutAnIcon) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const COLORREF text = GetSysColor(COLOR_MENUTEXT);
    const RECT column{0, 0, TcGuiTools::Scaled(24), 100};
    EXPECT_EQ(Draw(kSilent, 0)->Count(text, column), 0);
    EXPECT_GT(Draw(kSilent, ODS_CHECKED)->Count(text, column), 3);
    ASSERT_TRUE(menu.SetImage(COMMAND_SILENT, ICON_GREEN));
    EXPECT_EQ(Draw(kSilent, 0)->Count(GetSysColor(COLOR_HIGHLIGHT), column), 0);
    EXPECT_GT(Draw(kSilent, ODS_CHECKED)->Count(GetSysColor(COLOR_HIGHLIGHT), column), 20);
}

TEST_F(MenuTest, AMarkOfOneAmongSeveralIsABullet) {
    const HMENU languages = GetSubMenu(popup, kLanguage);
    const auto mark = [&](UINT type) {
        MENUITEMINFOA info = Info(popup, kSilent);
        info.fMask = MIIM_FTYPE;
        info.fType = type;
        EXPECT_TRUE(SetMenuItemInfoA(popup, kSilent, TRUE, &info));
        EXPECT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
        const int edge = TcGuiTools::Scaled(24);
        const auto picture = Draw(kSilent, ODS_CHECKED);
        const int middle = static_cast<int>(Measure(kSilent).itemHeight) / 2;
        return picture->At(edge / 2, middle) == GetSysColor(COLOR_MENUTEXT);
    };
    EXPECT_TRUE(Info(languages, 0).fType & MFT_RADIOCHECK);
    EXPECT_TRUE(mark(MFT_STRING | MFT_RADIOCHECK)) << "a disc is filled in its middle";
    menu.ReleaseMenu();
    EXPECT_FALSE(Info(popup, kSilent).fType & MFT_OWNERDRAW);
    EXPECT_TRUE(Info(popup, kSilent).fType & MFT_RADIOCHECK);
}

TEST_F(MenuTest, OtherItemsAreNotItsOwn) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    MEASUREITEMSTRUCT measure{};
    measure.CtlType = ODT_MENU;
    measure.itemData = 12345;
    EXPECT_FALSE(menu.OnMeasureItem(&measure));
    DRAWITEMSTRUCT draw{};
    draw.CtlType = ODT_LISTVIEW;
    draw.itemData = Info(popup, kStart).dwItemData;
    EXPECT_FALSE(menu.OnDrawItem(&draw));
    EXPECT_FALSE(menu.OnMeasureItem(nullptr));
    EXPECT_FALSE(menu.OnDrawItem(nullptr));
}

TEST_F(MenuTest, ARequestForAnotherObjectsItemIsPassedOn) {
    TcMenu submenu;
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    ASSERT_TRUE(submenu.InitMenu(nullptr, GetSubMenu(popup, kLanguage), nullptr));
    const MEASUREITEMSTRUCT own = Measure(kView);
    MEASUREITEMSTRUCT item{};
    item.CtlType = ODT_MENU;
    item.itemData = Info(popup, kView).dwItemData;
    EXPECT_TRUE(submenu.OnMeasureItem(&item));
    EXPECT_EQ(item.itemWidth, own.itemWidth);
}

TEST_F(MenuTest, MnemonicsWork) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 'v'), MAKELRESULT(kView, MNC_EXECUTE));
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 'L'), MAKELRESULT(kLanguage, MNC_EXECUTE));
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 't'), MAKELRESULT(kStop, MNC_SELECT)) << "greyed";
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 'z'), 0);
    EXPECT_EQ(TcMenu::OnMenuChar(nullptr, 'v'), 0);
}

TEST_F(MenuTest, AMnemonicOfSeveralItemsWalksThem) {
    AppendMenuA(popup, MF_STRING, 50, "&Van");
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const int last = GetMenuItemCount(popup) - 1;
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 'v'), MAKELRESULT(kView, MNC_SELECT));
    HiliteMenuItem(GetDesktopWindow(), popup, static_cast<UINT>(kView), MF_BYPOSITION | MF_HILITE);
    MENUITEMINFOA info = Info(popup, kView);
    info.fMask = MIIM_STATE;
    info.fState |= MFS_HILITE;
    SetMenuItemInfoA(popup, kView, TRUE, &info);
    EXPECT_EQ(TcMenu::OnMenuChar(popup, 'v'), MAKELRESULT(last, MNC_SELECT));
}

TEST_F(MenuTest, AScreenReaderFindsTheTextOfAnItem) {
    ASSERT_TRUE(menu.InitMenu(nullptr, popup, nullptr));
    const auto* spoken = reinterpret_cast<const MSAAMENUINFO*>(Info(popup, kStop).dwItemData);
    EXPECT_EQ(spoken->dwMSAASignature, static_cast<DWORD>(MSAA_MENU_SIG));
    EXPECT_EQ(std::wstring(spoken->pszWText, spoken->cchWText), L"Stop");
}

TEST_F(MenuTest, ASystemMenuIsDrawnThroughItsDialog) {
    ToldDialog dialog;
    Steps steps;
    int measured = 0, drawn = 0;
    TcMenu system;
    dialog.onMeasure = [&](int id, MEASUREITEMSTRUCT* item) {
        const bool done = id == 0 && system.OnMeasureItem(item);
        measured += done;
        return done;
    };
    dialog.onDraw = [&](int id, DRAWITEMSTRUCT* item) {
        const bool done = id == 0 && system.OnDrawItem(item);
        drawn += done;
        return done;
    };
    dialog.onInit = [&] {
        ASSERT_TRUE(system.InitMenu(nullptr, GetSystemMenu(dialog.GetHwnd(), FALSE), nullptr));
        steps.Then([&] { PostMessageA(dialog.GetHwnd(), WM_SYSCOMMAND, SC_KEYMENU, ' '); }).Then([&] {
            steps.Then([&] {}).Then([&] { PostMessageA(dialog.GetHwnd(), WM_CANCELMODE, 0, 0); }).Then([&] {
                dialog.ExitDialog(true);
            });
        });
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
    EXPECT_GT(measured, 0);
    EXPECT_GT(drawn, 0);
}

TEST_F(MenuTest, LeavesNoObjectBehind) {
    ExpectNoObjectsLeftBehind(40, [&] {
        TcMenu one;
        EXPECT_TRUE(one.InitMenu(nullptr, popup, nullptr));
        EXPECT_TRUE(one.SetImage(COMMAND_START, ICON_RED));
        MEASUREITEMSTRUCT item{};
        item.CtlType = ODT_MENU;
        item.itemData = Info(popup, kStart).dwItemData;
        EXPECT_TRUE(one.OnMeasureItem(&item));
    });
}

}  // namespace
}  // namespace vardel::test

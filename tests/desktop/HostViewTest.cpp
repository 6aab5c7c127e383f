// The host view as its user meets it: opening, rows, colours, its place, closing.
#include <algorithm>

#include "tests/desktop/HostViewFixture.h"
#include "tests/unit/support/GuiObjects_win.h"

namespace vardel {
namespace {

constexpr COLORREF kGrey = RGB(100, 100, 100), kRed = RGB(180, 0, 0), kDarkBlue = RGB(17, 13, 130);

using test::HostView;

TEST_F(HostView, OpensWithItsColumnsItsGroupsAndTheCount) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2", TrustState::Distrusted);
    Knows("10.0.0.3");
    While([&] {
        EXPECT_EQ(Titles(), (std::vector<std::string>{" ", "IP - Address", "MAC - Address", "Last received packet",
                                                      "Hostname", "Networkcard vendor", "Adv. informations"}));
        EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.1 [Distrusted hosts] 10.0.0.2 [Unknown hosts] 10.0.0.3 ");
        EXPECT_EQ(Count(), "3");
        EXPECT_EQ(GetFocus(), List());
        EXPECT_EQ(SendMessageA(List(), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0), 0x00010023);
        EXPECT_EQ(SendMessageA(List(), LVM_GETTEXTCOLOR, 0, 0), static_cast<LRESULT>(kDarkBlue));
    });
}

TEST_F(HostView, ItsUnusedControlsStayHidden) {
    While([&] {
        for (const int id : {IDC_HOST_REFRESH, IDC_HOST_UPDATES_AVAILABLE, IDC_HOST_AUTO_REFRESH})
            EXPECT_FALSE(IsWindowVisible(view.GetControl(id))) << id;
        EXPECT_TRUE(IsWindowVisible(view.GetControl(IDC_HOST_COUNT_LABEL)));
    });
}

TEST_F(HostView, HasTheProgramsIconInBothSizes) {
    While([&] {
        for (const WPARAM size : {ICON_SMALL, ICON_BIG}) {
            const auto icon = reinterpret_cast<HICON>(SendMessageA(view.GetHwnd(), WM_GETICON, size, 0));
            ICONINFO shape{};
            ASSERT_TRUE(GetIconInfo(icon, &shape));
            BITMAP bitmap{};
            GetObjectA(shape.hbmColor, sizeof bitmap, &bitmap);
            EXPECT_EQ(bitmap.bmWidth, TcGuiTools::Scaled(size == ICON_SMALL ? 16 : 32));
            DeleteObject(shape.hbmColor);
            DeleteObject(shape.hbmMask);
        }
    });
}

TEST_F(HostView, HoldsTenPicturesOfSixteenPixels) {
    Knows("10.0.0.1", TrustState::Trusted);
    While([&] {
        const auto images = reinterpret_cast<HIMAGELIST>(SendMessageA(List(), LVM_GETIMAGELIST, LVSIL_SMALL, 0));
        EXPECT_EQ(ImageList_GetImageCount(images), 10);
        int width = 0, height = 0;
        EXPECT_TRUE(ImageList_GetIconSize(images, &width, &height));
        EXPECT_EQ(width, TcGuiTools::Scaled(16));
        EXPECT_EQ(height, TcGuiTools::Scaled(16));
    });
}

TEST_F(HostView, ItsPicturesAreMadeOnceAndOutliveTheWindow) {
    HIMAGELIST first = nullptr;
    While([&] { first = reinterpret_cast<HIMAGELIST>(SendMessageA(List(), LVM_GETIMAGELIST, LVSIL_SMALL, 0)); });
    While([&] {
        EXPECT_EQ(reinterpret_cast<HIMAGELIST>(SendMessageA(List(), LVM_GETIMAGELIST, LVSIL_SMALL, 0)), first);
        EXPECT_EQ(ImageList_GetImageCount(first), 10);
        EXPECT_TRUE(SendMessageA(view.GetHwnd(), WM_GETICON, ICON_SMALL, 0));
    });
}

TEST_F(HostView, ShowsWhatIsKnownOfAHost) {
    HostRecord& host = Knows("10.0.0.1", TrustState::Trusted);
    host.mac = "00:11:22:33:44:55";
    host.lastSeenText = "12:34:56";
    host.hostName = "nas";
    host.vendor = "Synology";
    host.wmiStatus = 100;
    While([&] {
        const int line = LineOf("10.0.0.1");
        const char* cells[] = {"", "10.0.0.1", "00:11:22:33:44:55", "12:34:56", "nas", "Synology", "Access denied"};
        for (int column = 0; column < 7; ++column) EXPECT_EQ(Cell(line, column), cells[column]);
        EXPECT_EQ(view.List().GetItemImage(0, &host), 0);
        EXPECT_EQ(view.List().GetItemImage(6, &host), 7);
        EXPECT_EQ(view.List().GetItemImage(1, &host), -1);
    });
}

TEST_F(HostView, RefreshesItselfEverySecond) {
    While([&] { EXPECT_EQ(KillTimer(view.GetHwnd(), 10001), TRUE) << "the timer was armed"; },
          [&] {
              Knows("10.0.0.9");
              EXPECT_EQ(Lines(), "");
              Tick();
              EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.9 ");
              EXPECT_EQ(Count(), "1");
          });
}

TEST_F(HostView, ItsRefreshCommandRefreshesToo) {
    While([&] {
        Knows("10.0.0.9");
        Command(IDC_HOST_REFRESH);
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.9 ");
    });
}

TEST_F(HostView, OtherTimersAreNotItsRefresh) {
    While([&] {
        Knows("10.0.0.9");
        SendMessageA(view.GetHwnd(), WM_TIMER, 10002, 0);
        EXPECT_EQ(LineCount(), 0);
    });
}

TEST_F(HostView, HiddenTrustedHostsVanishButTheCountKeepsThem) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2");
    While([&] {
        data.settings.ViewHideSecure = 1;
        Tick();
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.2 ");
        EXPECT_EQ(Count(), "2");
    });
}

TEST_F(HostView, AStaleHostGoesGreyAndOneFrameBringsItBack) {
    data.settings.GreyedOutOldEntries = 1;
    data.settings.ViewGrayTime = 10;
    HostRecord& host = Knows("10.0.0.1", TrustState::Trusted);
    host.lastSeen = system.clock.now - 11 * 60;
    While([&] { Tick(); },
          [&] {
              const int line = LineOf("10.0.0.1");
              EXPECT_GT(PixelsOf(line, kGrey), 0);
              EXPECT_EQ(PixelsOf(line, kDarkBlue), 0);
              EXPECT_EQ(view.List().GetItemImage(0, &host), 1);
              host.lastSeen = system.clock.now;  // what an ARP frame of the host does
              host.greyedOut = 0;
              host.rowDirty = 1;
              Tick();
              EXPECT_EQ(PixelsOf(line, kGrey), 0);
              EXPECT_GT(PixelsOf(line, kDarkBlue), 0);
              EXPECT_EQ(view.List().GetItemImage(0, &host), 0);
          });
}

TEST_F(HostView, StaleRowsClearAtTheNextTickWhenTheSettingGoes) {
    HostRecord& host = Knows("10.0.0.1");
    host.greyedOut = 1;
    data.settings.GreyedOutOldEntries = 1;
    While([&] {
        data.settings.GreyedOutOldEntries = 0;
        Tick();
        EXPECT_EQ(host.greyedOut.Get(), 0);
        EXPECT_EQ(PixelsOf(LineOf("10.0.0.1"), kGrey), 0);
    });
}

TEST_F(HostView, AnOfflineHostIsRedOnlyWhereTheUserWantsIt) {
    HostRecord& host = Knows("10.0.0.1");
    host.offline = 1;
    While([&] { EXPECT_EQ(PixelsOf(LineOf("10.0.0.1"), kRed), 0); });
    data.settings.ViewOfflineRed = 1;
    While([&] { EXPECT_GT(PixelsOf(LineOf("10.0.0.1"), kRed), 0); });
    host.greyedOut = 1;
    data.settings.GreyedOutOldEntries = 1;
    While([&] {
        EXPECT_EQ(PixelsOf(LineOf("10.0.0.1"), kRed), 0) << "a stale row stays grey";
        EXPECT_GT(PixelsOf(LineOf("10.0.0.1"), kGrey), 0);
    });
}

TEST_F(HostView, ControlAndASelectsAllRows) {
    for (int last = 1; last <= 5; ++last) Knows("10.0.0." + std::to_string(last), TrustState::Trusted);
    Knows("10.0.0.9");
    While([&] {
        BYTE keys[256] = {};
        SendMessageA(List(), WM_KEYDOWN, 'A', 1);
        EXPECT_EQ(SelectedCount(), 0);
        keys[VK_CONTROL] = 0x80;
        SetKeyboardState(keys);
        SendMessageA(List(), WM_KEYDOWN, 'A', 1);
        keys[VK_CONTROL] = 0;
        SetKeyboardState(keys);
        EXPECT_EQ(view.List().SelectedItems().size(), 6u);
    });
}

TEST_F(HostView, TheListGrowsWithTheWindowDownToALimit) {
    While([&] {
        RECT window{}, list{}, grown{};
        GetWindowRect(view.GetHwnd(), &window);
        GetWindowRect(List(), &list);
        SetWindowPos(view.GetHwnd(), nullptr, 0, 0, window.right - window.left + 100, window.bottom - window.top + 50,
                     SWP_NOMOVE | SWP_NOZORDER);
        GetWindowRect(List(), &grown);
        EXPECT_EQ(grown.right - grown.left, list.right - list.left + 100);
        EXPECT_EQ(grown.bottom - grown.top, list.bottom - list.top + 50);
        MINMAXINFO limits{};
        SendMessageA(view.GetHwnd(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        EXPECT_EQ(limits.ptMinTrackSize.x, TcGuiTools::Scaled(360));
        EXPECT_EQ(limits.ptMinTrackSize.y, TcGuiTools::Scaled(140));
    });
}

TEST_F(HostView, ItsPlaceIsStoredAndComesBackWhereTheUserWantsIt) {
    data.settings.SaveViewWindow = 1;
    While([&] { SetWindowPos(view.GetHwnd(), nullptr, 30, 40, 700, 300, SWP_NOZORDER); });
    const ViewRectangle stored = data.settings.SavedViewWindowDimension.Read();
    EXPECT_EQ(stored.left, 30);
    EXPECT_EQ(stored.top, 40);
    EXPECT_EQ(stored.right, 730);
    EXPECT_EQ(stored.bottom, 340);
    const auto isWritten = [](const std::string& call) {
        return call.find("SavedViewWindowDimension") != std::string::npos;
    };
    EXPECT_TRUE(std::any_of(store.calls.begin(), store.calls.end(), isWritten));
    While([&] {
        RECT place{};
        GetWindowRect(view.GetHwnd(), &place);
        EXPECT_EQ(place.left, 30);
        EXPECT_EQ(place.top, 40);
        EXPECT_EQ(place.right, 730);
        EXPECT_EQ(place.bottom, 340);
    });
}

TEST_F(HostView, ItsPlaceIsLeftAloneWhereTheUserDoesNotWantIt) {
    store.calls.clear();
    While([&] { SetWindowPos(view.GetHwnd(), nullptr, 30, 40, 700, 300, SWP_NOZORDER); });
    EXPECT_FALSE(IsUsableRectangle(data.settings.SavedViewWindowDimension.Read()));
    EXPECT_TRUE(store.calls.empty());
}

TEST_F(HostView, EscapeClosesIt) {
    test::Steps steps;
    steps.Then([&] { PostMessageA(List(), WM_KEYDOWN, VK_ESCAPE, 1); });
    view.Open(data, nullptr);
    EXPECT_EQ(view.GetHwnd(), nullptr);
}

TEST_F(HostView, TheEndOfTheProgramTakesItAlong) {
    Knows("10.0.0.5");
    data.settings.SaveViewWindow = 1;
    {
        test::Steps steps;
        steps.Then([] { PostQuitMessage(7); });
        view.Open(data, nullptr);
    }
    EXPECT_EQ(view.GetHwnd(), nullptr);
    EXPECT_FALSE(IsUsableRectangle(data.settings.SavedViewWindowDimension.Read())) << "no place was told";
    While([&] { EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.5 ") << "it opens anew"; });
}

TEST_F(HostView, LeavesNoObjectsOfTheSystemBehind) {
    for (int last = 1; last <= 20; ++last) Knows("10.0.0." + std::to_string(last));
    const auto openAndClose = [&] {
        While([&] { AskForMenu(); }, [] { test::OpenMenu().Escape(); },
              [&] {
                  ClickHeader(1);
                  UpdateWindow(view.GetHwnd());
              });
    };
    openAndClose();
    test::ExpectNoObjectsLeftBehind(20, openAndClose);
}

TEST_F(HostView, NamesInOtherCodePagesAreShownAsTheyStand) {
    const std::string names[] = {"caf\xe9 \x80uro", "\xcf\xf0\xe8\xe2\xe5\xf2", "\x83\x65\x83\x58\x83\x67\x95\x5c"};
    for (int at = 0; at < 3; ++at) {
        HostRecord& host = Knows("10.0.0." + std::to_string(at + 1));
        host.hostName = names[at].c_str();
    }
    While([&] {
        UpdateWindow(view.GetHwnd());
        for (int at = 0; at < 3; ++at) {
            TcString text;
            EXPECT_TRUE(view.List().GetItemText(4, view.List().ItemOfRow(view.List().RowOfLine(
                                                       LineOf("10.0.0." + std::to_string(at + 1)))), text));
            EXPECT_EQ(text.GetContent(), names[at]);
        }
    });
}

}  // namespace
}  // namespace vardel

// What the shell is told of the tray icon, call by call.
#include "frame/ShellTrayIcon.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/AlertSurface.h"
#include "tests/unit/support/GuiObjects_win.h"

namespace vardel {
namespace {

struct ToldShell {
    DWORD deed;
    NOTIFYICONDATAA record;
};
std::vector<ToldShell> toldShell;

// What it answers is looked at by nobody.
BOOL WINAPI ListenAsShell(DWORD deed, NOTIFYICONDATAA* record) {
    toldShell.push_back({deed, *record});
    return FALSE;
}

struct ShellTrayIconTest : testing::Test {
    ShellTrayIconTest() { toldShell.clear(); }
    void Begin(int controlsMajor, const char* tip = "Vardelwatch - 3 host(s) found") {
        icon.Set(kWindow, nullptr, controlsMajor);
        icon.Add(tip);
        programIcon = toldShell.back().record.hIcon;
        toldShell.clear();
    }
    static const NOTIFYICONDATAA& Record(std::size_t at) { return toldShell.at(at).record; }

    static constexpr UINT kAllOfTheIcon = NIF_MESSAGE | NIF_ICON | NIF_TIP;
    const HWND kWindow = reinterpret_cast<HWND>(0x4711);
    ShellTrayIcon icon{&ListenAsShell};
    HICON programIcon = nullptr;
};

TEST_F(ShellTrayIconTest, IsAddedWithTheProgramsIconAndTheTooltip) {
    icon.Set(kWindow, nullptr, 6);
    icon.Add("Vardelwatch - 3 host(s) found");
    ASSERT_EQ(toldShell.size(), 1u);
    EXPECT_EQ(toldShell[0].deed, static_cast<DWORD>(NIM_ADD));
    EXPECT_EQ(Record(0).cbSize, sizeof(NOTIFYICONDATAA));
    EXPECT_EQ(Record(0).hWnd, kWindow);
    EXPECT_EQ(Record(0).uID, 102u);
    EXPECT_EQ(Record(0).uFlags, 7u);
    EXPECT_EQ(Record(0).uCallbackMessage, 1124u);
    EXPECT_NE(Record(0).hIcon, nullptr);
    EXPECT_STREQ(Record(0).szTip, "Vardelwatch - 3 host(s) found");
}

TEST_F(ShellTrayIconTest, ABalloonShowsItsIconForAMomentAndTheProgramsComesBack) {
    Begin(6);
    icon.Notify(kTrayMacSpoofing, "MAC Spoofing detected :", "Vardelwatch - 4 host(s) found");
    ASSERT_EQ(toldShell.size(), 2u);
    EXPECT_EQ(toldShell[0].deed, static_cast<DWORD>(NIM_MODIFY));
    EXPECT_EQ(Record(0).uFlags, kAllOfTheIcon | NIF_INFO);
    EXPECT_EQ(Record(0).uTimeout, 2000u);
    EXPECT_EQ(Record(0).dwInfoFlags, 4u);
    EXPECT_STREQ(Record(0).szInfo, "MAC Spoofing detected :");
    EXPECT_STREQ(Record(0).szInfoTitle, "Vardelwatch");
    EXPECT_STREQ(Record(0).szTip, "Vardelwatch - 4 host(s) found");
    EXPECT_NE(Record(0).hIcon, programIcon);
    EXPECT_NE(Record(0).hIcon, nullptr);
    EXPECT_EQ(toldShell[1].deed, static_cast<DWORD>(NIM_MODIFY));
    EXPECT_EQ(Record(1).uFlags, static_cast<UINT>(NIF_ICON));
    EXPECT_EQ(Record(1).hIcon, programIcon);
}

TEST_F(ShellTrayIconTest, ATooltipAloneIsToldTwiceTooAndRaisesNoBalloonOfEarlier) {
    Begin(6);
    icon.Notify(kTrayInformation, "New host(s) found :", "");
    toldShell.clear();
    icon.Notify(kTrayProgram, "Vardelwatch", "Vardelwatch - 5 host(s) found");
    ASSERT_EQ(toldShell.size(), 2u);
    EXPECT_EQ(Record(0).uFlags, kAllOfTheIcon);
    EXPECT_EQ(Record(0).hIcon, programIcon);
    EXPECT_STREQ(Record(0).szTip, "Vardelwatch - 5 host(s) found");
    EXPECT_EQ(Record(1).uFlags, static_cast<UINT>(NIF_ICON));
    EXPECT_EQ(Record(1).hIcon, programIcon);
}

TEST_F(ShellTrayIconTest, OlderControlsShowASignOfTheSystems) {
    Begin(5);
    icon.Notify(kTrayInformation, "text", "tip");
    icon.Notify(kTrayRemoteAccess, "text", "tip");
    ASSERT_EQ(toldShell.size(), 2u) << "once each: the icon has not changed";
    EXPECT_EQ(Record(0).dwInfoFlags, 1u);
    EXPECT_EQ(Record(1).dwInfoFlags, 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(Record(i).cbSize, sizeof(NOTIFYICONDATAA));
        EXPECT_EQ(Record(i).uFlags, kAllOfTheIcon | NIF_INFO);
        EXPECT_EQ(Record(i).hIcon, programIcon);
    }
}

TEST_F(ShellTrayIconTest, TheOldestHaveNoBalloonButTheTooltipChanges) {
    for (const int major : {4, -1}) {
        Begin(major);
        icon.Notify(kTrayInformation, "text", "another");
        ASSERT_EQ(toldShell.size(), 1u) << major;
        EXPECT_EQ(Record(0).cbSize, 4u);
        EXPECT_EQ(Record(0).uFlags, kAllOfTheIcon);
        EXPECT_STREQ(Record(0).szTip, "another");
        EXPECT_STREQ(Record(0).szInfo, "");
    }
}

TEST_F(ShellTrayIconTest, ANewShellGetsItAfreshWithoutTheBalloonOfEarlier) {
    Begin(6);
    icon.Notify(kTrayInformation, "New host(s) found :", "");
    toldShell.clear();
    icon.AddAgain("Vardelwatch - 9 host(s) found");
    ASSERT_EQ(toldShell.size(), 2u);
    EXPECT_EQ(toldShell[0].deed, static_cast<DWORD>(NIM_DELETE));
    EXPECT_EQ(toldShell[1].deed, static_cast<DWORD>(NIM_ADD));
    EXPECT_EQ(Record(1).uFlags, kAllOfTheIcon);
    EXPECT_EQ(Record(1).hIcon, programIcon);
    EXPECT_STREQ(Record(1).szTip, "Vardelwatch - 9 host(s) found");
    EXPECT_STREQ(Record(1).szInfo, "");
}

TEST_F(ShellTrayIconTest, IsTakenAwayByItsWindowAndNumber) {
    Begin(6);
    icon.Remove();
    ASSERT_EQ(toldShell.size(), 1u);
    EXPECT_EQ(toldShell[0].deed, static_cast<DWORD>(NIM_DELETE));
    EXPECT_EQ(Record(0).hWnd, kWindow);
    EXPECT_EQ(Record(0).uID, 102u);
}

TEST_F(ShellTrayIconTest, LongTextsEndInTheirFields) {
    Begin(6);
    const std::string text(1000, 'x');
    icon.Notify(kTrayInformation, text.c_str(), text.c_str());
    EXPECT_EQ(std::string(Record(0).szTip), std::string(127, 'x'));
    EXPECT_EQ(std::string(Record(0).szInfo), std::string(255, 'x'));
    EXPECT_STREQ(Record(0).szInfoTitle, "Vardelwatch");
    EXPECT_EQ(Record(0).uTimeout, 2000u) << "which stands behind a text";
    icon.Notify(kTrayInformation, "short", "tip");
    EXPECT_STREQ(Record(2).szTip, "tip");
    EXPECT_STREQ(Record(2).szInfo, "short");
}

TEST_F(ShellTrayIconTest, BytesOfAnyCodePageArePassedAsTheyAre) {
    Begin(6);
    std::string text;
    for (int byte = 0x80; byte < 0x100; ++byte) text += static_cast<char>(byte);
    icon.Notify(kTrayInformation, text.c_str(), text.substr(0, 100).c_str());
    EXPECT_EQ(std::string(Record(0).szInfo), text);
    EXPECT_EQ(std::string(Record(0).szTip), text.substr(0, 100));
}

TEST_F(ShellTrayIconTest, ManyBalloonsLeaveNothingBehind) {
    Begin(6);
    test::ExpectNoObjectsLeftBehind(50, [&] { icon.Notify(kTrayInformation, "text", "tip"); });
}

}  // namespace
}  // namespace vardel

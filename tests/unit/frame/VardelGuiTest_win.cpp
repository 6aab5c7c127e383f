#include "frame/VardelGui.h"

#include <gtest/gtest.h>

#include "frame/VardelNotifyWnd.h"
#include "tests/unit/support/RunningGui_win.h"

namespace vardel {
namespace {

using VardelGuiTest = test::RunningGui;

TEST_F(VardelGuiTest, TheExitCommandEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
    EXPECT_TRUE(frame.WasBuilt());
}

TEST_F(VardelGuiTest, ACloseRequestEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_CLOSE, 0, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
}

TEST_F(VardelGuiTest, TheEndOfTheSessionEndsIt) {
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_ENDSESSION, TRUE, 0); }));
    EXPECT_EQ(OwnMainWindow(), nullptr);
}

TEST_F(VardelGuiTest, ASessionThatGoesOnDoesNotEndIt) {
    EXPECT_TRUE(RunWith([](HWND window) {
        SendMessageA(window, WM_ENDSESSION, FALSE, 0);
        SendMessageA(window, WM_COMMAND, kExitCommand + 5, 0);
        EXPECT_TRUE(IsWindow(window));
        PostMessageA(window, WM_COMMAND, kExitCommand, 0);
    }));
}

TEST_F(VardelGuiTest, IsNeverVisibleAndBearsItsName) {
    EXPECT_TRUE(RunWith([](HWND window) {
        EXPECT_FALSE(IsWindowVisible(window));
        EXPECT_EQ(GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW, WS_EX_TOOLWINDOW);
        PostMessageA(window, WM_COMMAND, kExitCommand, 0);
    }));
}

TEST_F(VardelGuiTest, ParsesTheNotificationWordsBeforeItsLoop) {
    app.data.settings.SyslogNotificationWords = "panic,oops";
    EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
    EXPECT_EQ(app.data.notificationWords.Count(), 2u);
}

TEST_F(VardelGuiTest, CanBeRunAgain) {
    for (int round = 0; round < 2; ++round)
        EXPECT_TRUE(RunWith([](HWND window) { PostMessageA(window, WM_COMMAND, kExitCommand, 0); }));
}

// What the window does with a command, as the menu shows it afterwards.
struct GuiCommands : VardelGuiTest {
    UINT State(UINT command) const { return GetMenuState(gui.Menus().Popup(), command, MF_BYCOMMAND); }
    bool IsGrey(UINT command) const { return (State(command) & MF_GRAYED) != 0; }
};

TEST_F(GuiCommands, StartAndStopTurnTheCaptureSwitch) {
    While([&](HWND window) {
        SendMessageA(window, WM_COMMAND, kStartCommand, 0);
        EXPECT_EQ(app.data.capturing.Get(), 1);
        EXPECT_TRUE(IsGrey(kStartCommand));
        EXPECT_FALSE(IsGrey(kStopCommand));
        SendMessageA(window, WM_COMMAND, kStopCommand, 0);
        EXPECT_EQ(app.data.capturing.Get(), 0);
        EXPECT_FALSE(IsGrey(kStartCommand));
        EXPECT_TRUE(IsGrey(kStopCommand));
    });
}

TEST_F(GuiCommands, SilentModeTwiceRestoresTheAlerts) {
    app.data.settings.UseToolTips = 1;
    While([&](HWND window) {
        SendMessageA(window, WM_COMMAND, kSilentCommand, 0);
        EXPECT_EQ(app.data.settings.UseToolTips.Get(), 0);
        SendMessageA(window, WM_COMMAND, kSilentCommand, 0);
        EXPECT_EQ(app.data.settings.UseToolTips.Get(), 1);
    });
}

TEST_F(GuiCommands, TheExitCommandEndsItWithTheMenuOpen) {
    While([&](HWND window) {
        PostMessageA(window, kTrayMessage, kTrayIconId, WM_RBUTTONDOWN);
        const DWORD thread = GetWindowThreadProcessId(window, nullptr);
        GUITHREADINFO state{};
        state.cbSize = sizeof state;
        for (int tries = 0; tries < 1000 && !(state.flags & GUI_INMENUMODE); ++tries) {
            Sleep(10);
            GetGUIThreadInfo(thread, &state);
        }
        EXPECT_TRUE(state.flags & GUI_INMENUMODE) << "the menu did not open";
    });
    EXPECT_EQ(OwnMainWindow(), nullptr);
}

TEST_F(GuiCommands, HelpOpensItsSite) {
    While([&](HWND window) { SendMessageA(window, WM_COMMAND, kHelpCommand, 0); });
    ASSERT_EQ(system.shell.launches.size(), 1u);
    EXPECT_EQ(system.shell.launches[0].file, "https://help.vardelwatch.example");
}

TEST_F(GuiCommands, WithOneLanguageTheMenuOffersNone) {
    While([&](HWND) {
        char text[64] = "";
        GetMenuStringA(gui.Menus().Popup(), 11, text, sizeof text, MF_BYPOSITION);
        const HMENU informations = GetSubMenu(gui.Menus().Popup(), 11);
        EXPECT_EQ(GetMenuItemID(informations, 0), kUpdateCommand) << "the informations move up: " << text;
        EXPECT_EQ(GetMenuDefaultItem(gui.Menus().Popup(), FALSE, 0), kViewCommand);
    });
}

TEST_F(GuiCommands, TheTrayRecordIsWholeAndNamesTheProgram) {
    system.strings.texts[75] = "%s - %d host(s) found";
    While([&](HWND window) {
        const NOTIFYICONDATAA& record = gui.Tray().Record();
        EXPECT_EQ(record.hWnd, window);
        EXPECT_EQ(record.uID, 102u);
        EXPECT_EQ(record.uCallbackMessage, 1124u);
        EXPECT_EQ(record.cbSize, app.systemInfo ? sizeof record : 4u);
    });
}

TEST_F(GuiCommands, ANewShellGetsTheIconWithTheCurrentCount) {
    system.strings.texts[75] = "%s - %d host(s) found";
    While([&](HWND window) {
        app.data.arpMap.Insert("10.0.0.5", nullptr);
        SendMessageA(window, RegisterWindowMessageA("TaskbarCreated"), 0, 0);
        EXPECT_STREQ(gui.Tray().Record().szTip, "Vardelwatch - 1 host(s) found");
        EXPECT_EQ(gui.Tray().Record().uFlags, static_cast<UINT>(NIF_MESSAGE | NIF_ICON | NIF_TIP));
    });
}

TEST_F(GuiCommands, AWindowThatTheProgramDoesNotHaveOpensNothing) {
    While([](HWND window) {
        for (const UINT command : {kSettingsCommand, kResourcesCommand, kEventLogCommand, kSysLogCommand})
            SendMessageA(window, WM_COMMAND, command, 0);
    });
}

TEST_F(GuiCommands, PopupsAreSetUpEachForItsAlert) {
    While([&](HWND) {
        const auto look = [](NotifyPopup* popup) { return dynamic_cast<VardelNotifyWnd&>(*popup).Look(); };
        EXPECT_EQ(look(frame.Surface().HostPopup()).fontPoints, 8);
        const PopupLook watch = look(frame.Surface().WatchPopup()), syslog = look(frame.Surface().SyslogPopup());
        EXPECT_FALSE(watch.atTheEdge);
        EXPECT_EQ(watch.displayTimeMs, -1);
        EXPECT_EQ(watch.fontPoints, 10);
        EXPECT_EQ(watch.fontWeight, 700);
        EXPECT_TRUE(syslog.atTheEdge);
        EXPECT_EQ(syslog.left, (Color{255, 255, 255}));
        EXPECT_EQ(syslog.border, (Color{255, 110, 40}));
        EXPECT_EQ(syslog.displayTimeMs, 5000);
    });
}

}  // namespace
}  // namespace vardel

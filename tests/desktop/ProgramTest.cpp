// The program's frame with its real windows: which window a command or a click on the tray icon leads to, and leaving
// while one is open.
#include <map>

#include "capture/Vardel.h"
#include "frame/VardelGui.h"
#include "resources/MenuIds.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/desktop/ListControl.h"
#include "tests/desktop/OpenMenu.h"
#include "tests/unit/support/TestServices.h"
#include "views/HostRows.h"

namespace vardel {
namespace {

// Steps run in the frame's message loop, and in the view's while that is open; the Exit command ends it all.
struct ProgramWindows : testing::Test {
    ProgramWindows() { TheEventMap().SetGuard(nullptr, nullptr); }

    template <class... Step>
    void While(Step&&... step) {
        test::Steps steps;
        (steps.Then(std::forward<Step>(step)), ...);
        steps.Then([this] { Post(kExitCommand); });
        EXPECT_TRUE(frame.CreateApp(app.data, app));
        EXPECT_FALSE(IsViewOpen());
    }
    static HWND Main() {
        for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, kMainWindowClass, kMainWindowTitle));) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId()) return window;
        }
        return nullptr;
    }
    static void Post(UINT command) { PostMessageA(Main(), WM_COMMAND, command, 0); }
    static void DoubleClick() { PostMessageA(Main(), kTrayMessage, kTrayIconId, WM_LBUTTONDBLCLK); }
    HWND View() { return frame.View().GetHwnd(); }
    bool IsViewOpen() { return View() != nullptr; }
    void CloseView() { PostMessageA(View(), WM_CLOSE, 0, 0); }
    std::string Caption() {
        char text[100] = "";
        GetWindowTextA(View(), text, sizeof text);
        return text;
    }
    // Another window takes the foreground, so that it can be seen who takes it back.
    std::unique_ptr<test::PlainWindow> InFront() {
        auto window = std::make_unique<test::PlainWindow>();
        SetForegroundWindow(window->Get());
        EXPECT_EQ(GetForegroundWindow(), window->Get());
        return window;
    }

    test::TestServices system;
    VardelGui frame{nullptr};
    Vardel app{system.services, frame};
};

TEST_F(ProgramWindows, TheViewCommandOpensTheHostView) {
    While([] { Post(kViewCommand); },
          [&] {
              EXPECT_TRUE(IsViewOpen());
              EXPECT_EQ(Caption(), "Vardelwatch - View");
              EXPECT_TRUE(IsWindowVisible(View()));
              CloseView();
          },
          [] {}, [&] { EXPECT_FALSE(IsViewOpen()); });
}

TEST_F(ProgramWindows, ADoubleClickOnTheIconOpensTheHostViewAndThenBringsItForward) {
    HWND first = nullptr;
    std::unique_ptr<test::PlainWindow> other;
    While([] { DoubleClick(); },
          [&] {
              first = View();
              EXPECT_NE(first, nullptr);
              other = InFront();
              DoubleClick();
          },
          [&] {
              EXPECT_EQ(GetForegroundWindow(), first);
              EXPECT_EQ(View(), first);
              other.reset();
          });
}

TEST_F(ProgramWindows, WithTheHostViewOpenEveryOtherWindowsCommandBringsItForward) {
    for (const UINT command : {kViewCommand, kEventLogCommand, kSysLogCommand, kResourcesCommand, kSettingsCommand,
                               kUpdateCommand}) {
        std::unique_ptr<test::PlainWindow> other;
        While([] { Post(kViewCommand); },
              [&] {
                  other = InFront();
                  Post(command);
              },
              [&] {
                  EXPECT_EQ(GetForegroundWindow(), View()) << command;
                  other.reset();
              });
    }
}

TEST_F(ProgramWindows, TheTicksGoOnWhileTheHostViewIsOpen) {
    system.strings.texts[75] = "%s - %d host(s) found";
    While([] { Post(kViewCommand); },
          [&] {
              HostRecord* host = app.data.Adopt(std::make_unique<HostRecord>());
              host->ip = "10.0.0.5";
              app.data.arpMap.Insert("10.0.0.5", host);
              EXPECT_TRUE(IsViewOpen());
              PostMessageA(Main(), WM_TIMER, kTrayTimer, 0);
          },
          [] {}, [&] { EXPECT_STREQ(frame.Tray().Record().szTip, "Vardelwatch - 1 host(s) found"); });
}

TEST_F(ProgramWindows, ExitEndsTheProgramWithTheHostViewOpen) {
    While([] { Post(kViewCommand); }, [&] { EXPECT_TRUE(IsViewOpen()); });
}

TEST_F(ProgramWindows, ExitEndsTheProgramWithAMenuOpen) {
    While([] { Post(kViewCommand); },
          [&] {
              const HWND list = frame.View().List().GetHwnd();
              PostMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), -1);
          },
          [] { EXPECT_TRUE(test::OpenMenu().IsOpen()); });
}

TEST_F(ProgramWindows, TheTraysMenuOffersTheHostViewAndGreysWhatIsNotThere) {
    While([] { PostMessageA(Main(), kTrayMessage, kTrayIconId, WM_RBUTTONDOWN); },
          [] {
              const test::OpenMenu menu;
              ASSERT_TRUE(menu.IsOpen());
              EXPECT_FALSE(menu.IsGrey(kViewCommand));
              for (const UINT command : {kEventLogCommand, kSysLogCommand, kResourcesCommand, kSettingsCommand})
                  EXPECT_TRUE(menu.IsGrey(command)) << command;
              menu.Choose(kViewCommand);
          },
          [] {}, [] {}, [&] { EXPECT_TRUE(IsViewOpen()); });
}

TEST_F(ProgramWindows, AnotherLanguageIsTheHeadersAtOnceAndTheRestOfTheNextOpening) {
    const HMODULE german = LoadLibraryExA(VARDEL_LANGUAGES "/german.lang", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(german, nullptr);
    const auto title = [&] { return test::ColumnTitle(frame.View().List().GetHwnd(), 1); };
    While([] { Post(kViewCommand); },
          [&] {
              EXPECT_EQ(title(), "IP - Address");
              frame.View().SetLanguage(reinterpret_cast<ModuleHandle>(german));
              EXPECT_EQ(title(), "IP-Adresse");
              EXPECT_EQ(Caption(), "Vardelwatch - View");
              CloseView();
          },
          [] {}, [] { Post(kViewCommand); },
          [&] { EXPECT_EQ(Caption(), "Vardelwatch - Ansicht"); });
    FreeLibrary(german);
}

}  // namespace
}  // namespace vardel

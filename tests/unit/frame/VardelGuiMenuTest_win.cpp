// The tray's menu and the timers of the running frame. Menus are driven by the keys that a user would press.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/Modules.h"
#include "platform/SettingsStore.h"
#include "platform/TreeSettingsStore.h"
#include "tests/unit/support/RunningGui_win.h"
#include "tests/unit/support/TestModules.h"

// behind windows.h
#include <oleacc.h>

namespace vardel {
namespace {

struct GuiMenu : test::RunningGui {
    GuiMenu() {
        app.data.settings.DeleteARPCache = 0;
        app.data.settings.SyslogNotification = 0;
        app.data.settings.ReportInterval = 0;
        app.data.settings.ReportTemplate = "";
        app.data.resourceInstance = app.data.programInstance = Program();
    }
    ~GuiMenu() override {
        if (german) SystemModules().Free(german);
    }
    static ModuleHandle Program() { return reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)); }

    void AddLanguage(const char* name, ModuleHandle module, u32 languageId) {
        auto entry = std::make_unique<LanguageEntry>();
        entry->name = name;
        entry->module = module;
        entry->iconId = kEnglishIcon;
        entry->languageId = languageId;
        app.data.languages.Insert(name, std::move(entry));
    }
    void AddTwoLanguages() {
        german = SystemModules().Load(test::LanguageModule("german").c_str());
        ASSERT_NE(german, nullptr);
        AddLanguage("English", Program(), kEnglishId);
        AddLanguage("Deutsch", german, 7);
    }

    static bool IsInMenu(HWND window) {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) && (info.flags & GUI_INMENUMODE);
    }
    static void OpenMenu(HWND window) {
        PostMessageA(window, kTrayMessage, kTrayIconId, WM_RBUTTONDOWN);
        EXPECT_TRUE(Until([&] { return IsInMenu(window); })) << "no menu";
    }
    static void TypeKey(HWND window, char character) {
        PostMessageA(window, WM_CHAR, static_cast<WPARAM>(character), 0);
    }
    static void PressKey(HWND window, WPARAM key) { PostMessageA(window, WM_KEYDOWN, key, 0); }
    static void ExpectNoMenu(HWND window) {
        EXPECT_TRUE(Until([&] { return !IsInMenu(window); })) << "the menu is still there";
        SendMessageA(window, WM_NULL, 0, 0);  // what was chosen has been done
    }
    // With the menu open; Escape leaves it.
    static void LookAtMenu(HWND window, const std::function<void()>& look = [] {}) {
        OpenMenu(window);
        look();
        PressKey(window, VK_ESCAPE);
        ExpectNoMenu(window);
    }
    void Choose(HWND window, const LanguageEntry& language) {
        OpenMenu(window);
        TypeKey(window, 'l');
        for (u32 step = kFirstLanguageCommand; step < language.menuId; ++step) PressKey(window, VK_DOWN);
        PressKey(window, VK_RETURN);
        ExpectNoMenu(window);
    }

    bool Is(UINT state, UINT command) const {
        return (GetMenuState(gui.Menus().Popup(), command, MF_BYCOMMAND) & state) != 0;
    }
    bool IsGrey(UINT command) const { return Is(MF_GRAYED, command); }
    void ExpectOnlyStopIsOffered(HWND window) {
        LookAtMenu(window, [&] {
            EXPECT_TRUE(IsGrey(kStartCommand));
            EXPECT_FALSE(IsGrey(kStopCommand));
        });
    }
    std::wstring TextOf(UINT command) const {
        MENUITEMINFOA info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_DATA;
        EXPECT_TRUE(GetMenuItemInfoA(gui.Menus().Popup(), command, FALSE, &info));
        const auto* spoken = reinterpret_cast<const MSAAMENUINFO*>(info.dwItemData);
        return std::wstring(spoken->pszWText, spoken->cchWText);
    }
    UINT DefaultLanguage() const { return GetMenuDefaultItem(GetSubMenu(gui.Menus().Popup(), 11), FALSE, 0); }
    bool HasTimer(HWND window, UINT_PTR id) {
        bool had = false;
        InItsThread(window, [&] { had = KillTimer(window, id) != FALSE; });
        return had;
    }

    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    ModuleHandle german = nullptr;
};

TEST_F(GuiMenu, ARightClickOnTheIconOpensItAndEscapeChoosesNothing) {
    app.data.settings.UseToolTips = 1;
    While([&](HWND window) {
        LookAtMenu(window);
        EXPECT_TRUE(IsWindow(window));
        EXPECT_EQ(app.data.settings.UseToolTips.Get(), 1);
    });
}

TEST_F(GuiMenu, OtherIconsAndOtherMouseMessagesOpenNothing) {
    While([&](HWND window) {
        SendMessageA(window, kTrayMessage, kTrayIconId + 1, WM_RBUTTONDOWN);
        SendMessageA(window, kTrayMessage, kTrayIconId, WM_RBUTTONUP);
        SendMessageA(window, kTrayMessage, kTrayIconId, WM_LBUTTONDOWN);
        EXPECT_FALSE(IsInMenu(window));
    });
}

TEST_F(GuiMenu, AChosenItemIsCarriedOutAndTheMarkFollows) {
    app.data.settings.UseToolTips = 1;
    While([&](HWND window) {
        for (const u8 alerts : {0, 1}) {
            OpenMenu(window);
            EXPECT_EQ(Is(MF_CHECKED, kSilentCommand), alerts != 0) << "silent before the choice";
            TypeKey(window, 'm');
            ExpectNoMenu(window);
            EXPECT_EQ(app.data.settings.UseToolTips.Get(), alerts);
        }
    });
}

// Some systems find the key of an item that its program draws by themselves, the others ask.
TEST_F(GuiMenu, TheKeysOfItsItemsAreToldToASystemThatAsks) {
    While([&](HWND window) {
        const auto answer = [&](char key) {
            return SendMessageA(window, WM_MENUCHAR, MAKEWPARAM(key, MF_POPUP),
                                reinterpret_cast<LPARAM>(gui.Menus().Popup()));
        };
        LookAtMenu(window, [&] {
            const LRESULT silent = answer('m');
            EXPECT_EQ(HIWORD(silent), MNC_EXECUTE);
            EXPECT_EQ(GetMenuItemID(gui.Menus().Popup(), LOWORD(silent)), kSilentCommand);
            EXPECT_EQ(HIWORD(answer('x')), MNC_IGNORE) << "no item has this key";
        });
    });
}

TEST_F(GuiMenu, WhatHasNothingToShowIsGrey) {
    app.data.interfaceName = "eth0";
    app.data.settings.ShareSearch = app.data.settings.UsingEventLog = app.data.settings.Syslog = 0;
    While([&](HWND window) {
        OpenMenu(window);
        for (const UINT command : {kStopCommand, kResourcesCommand, kEventLogCommand, kSysLogCommand})
            EXPECT_TRUE(IsGrey(command)) << command;
        for (const UINT command : {kStartCommand, kSilentCommand, kAboutCommand, kHelpCommand})
            EXPECT_FALSE(IsGrey(command)) << command;
        EXPECT_FALSE(IsGrey(kExitCommand));
        TypeKey(window, 's');
        ExpectNoMenu(window);
        EXPECT_EQ(app.data.capturing.Get(), 1);
        ExpectOnlyStopIsOffered(window);
    });
}

TEST_F(GuiMenu, WithoutAnInterfaceStartAndStopAreAtFirstBothThere) {
    While([&](HWND window) {
        LookAtMenu(window, [&] {
            EXPECT_FALSE(IsGrey(kStartCommand));
            EXPECT_FALSE(IsGrey(kStopCommand));
        });
    });
}

TEST_F(GuiMenu, AChosenLanguageIsTakenAtOnceAndStored) {
    AddTwoLanguages();
    While([&](HWND window) {
        const LanguageEntry& choice = *app.data.languages.FindValue("Deutsch");
        EXPECT_EQ(DefaultLanguage(), app.data.languages.FindValue("English")->menuId.Get());
        Choose(window, choice);
        EXPECT_EQ(TextOf(kSilentCommand), L"Stiller Modus");
        EXPECT_EQ(DefaultLanguage(), choice.menuId.Get()) << "the mark moves";
        EXPECT_EQ(app.data.settings.Language, "Deutsch");
        VardelSettings stored;
        stored.ReadSettings();
        EXPECT_EQ(stored.Language, "Deutsch");
        EXPECT_EQ(app.data.languageId, 7u);
        SendMessageA(window, WM_TIMER, kTrayTimer, 0);
        EXPECT_EQ(system.strings.lastModule, german) << "the next tooltip";
        EXPECT_EQ(app.data.resourceInstance.Get(), Program()) << "the workers keep their texts";
    });
}

TEST_F(GuiMenu, TheCurrentLanguageChosenAgainIsTakenAgain) {
    AddTwoLanguages();
    app.data.settings.Language = "Suomi";
    While([&](HWND window) {
        Choose(window, *app.data.languages.FindValue("English"));
        EXPECT_EQ(TextOf(kSilentCommand), L"Silent Mode");
        EXPECT_EQ(app.data.settings.Language, "English");
        EXPECT_EQ(app.data.languageId, kEnglishId);
    });
}

TEST_F(GuiMenu, ANumberOfNoLanguageSentAsACommandDoesNothing) {
    AddTwoLanguages();
    While([&](HWND window) {
        SendMessageA(window, WM_COMMAND, app.data.languages.FindValue("Deutsch")->menuId.Get(), 0);
        EXPECT_EQ(TextOf(kSilentCommand), L"Silent Mode") << "languages are chosen in the menu alone";
    });
}

TEST_F(GuiMenu, ANewLanguageShowsStartAndStopAsTheCaptureSwitchIs) {
    AddTwoLanguages();
    app.data.interfaceName = "eth0";
    app.data.capturing = 1;
    While([&](HWND window) {
        Choose(window, *app.data.languages.FindValue("Deutsch"));
        ExpectOnlyStopIsOffered(window);
    });
}

TEST_F(GuiMenu, OpeningTheMenuOftenLeavesNothingBehind) {
    AddTwoLanguages();
    While([&](HWND window) {
        ExpectNoObjectsLeftBehindBy(window, 8, [&] {
            LookAtMenu(window);
            Choose(window, *app.data.languages.FindValue("English"));
        });
    });
}

TEST_F(GuiMenu, ItsTimersRun) {
    While([&](HWND window) {
        for (const UINT_PTR timer : {kTrayTimer, kShareTimer, kWatchTimer})
            EXPECT_TRUE(HasTimer(window, timer)) << timer;
        for (const UINT_PTR timer : {kArpFlushTimer, kReportTimer, kSyslogTimer})
            EXPECT_FALSE(HasTimer(window, timer)) << timer;
    });
}

TEST_F(GuiMenu, ASessionThatMayEndStopsTheFlushOfTheArpCache) {
    app.data.settings.DeleteARPCache = 1;
    While([&](HWND window) {
        SendMessageA(window, WM_ENDSESSION, FALSE, 0);
        EXPECT_FALSE(HasTimer(window, kArpFlushTimer));
        EXPECT_TRUE(HasTimer(window, kTrayTimer)) << "the others go on";
    });
}

TEST_F(GuiMenu, TheFlushOfTheArpCacheRunsWhereItIsWanted) {
    app.data.settings.DeleteARPCache = 1;
    While([&](HWND window) { EXPECT_TRUE(HasTimer(window, kArpFlushTimer)); });
}

TEST_F(GuiMenu, AWindowClassThatIsTakenMakesNoWindow) {
    WNDCLASSA taken{};
    taken.lpfnWndProc = &DefWindowProcA;
    taken.hInstance = GetModuleHandleA(nullptr);
    taken.lpszClassName = kMainWindowClass;
    ASSERT_TRUE(RegisterClassA(&taken));
    EXPECT_FALSE(frame.CreateApp(app.data, app));
    EXPECT_FALSE(frame.WasBuilt());
    EXPECT_TRUE(UnregisterClassA(kMainWindowClass, GetModuleHandleA(nullptr)));
    While([](HWND) {});
    EXPECT_TRUE(frame.WasBuilt());
}

}  // namespace
}  // namespace vardel

// The about box of the running frame.
#include "frame/AboutBox.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/Modules.h"
#include "tests/unit/support/RunningGui_win.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

struct AboutBoxTest : test::RunningGui {
    static HWND Box() { return OwnWindow("#32770", "About Vardelwatch"); }
    static HWND Open(HWND main, const char* title = "About Vardelwatch") {
        PostMessageA(main, WM_COMMAND, kAboutCommand, 0);
        HWND box = nullptr;
        EXPECT_TRUE(Until([&] { return (box = OwnWindow("#32770", title)) && IsWindowVisible(box); })) << "no box";
        return box;
    }
    static void ExpectGone(HWND box) {
        EXPECT_TRUE(Until([&] { return !IsWindow(box); })) << "the about box is still there";
    }
    static std::string TextOf(HWND box, int control) {
        char text[256] = "";
        GetDlgItemTextA(box, control, text, sizeof text);
        return text;
    }
    static int IconWidth(HWND box, int control) {
        const auto icon = reinterpret_cast<HICON>(SendDlgItemMessageA(box, control, STM_GETICON, 0, 0));
        ICONINFO info{};
        if (!icon || !GetIconInfo(icon, &info)) return 0;
        BITMAP bitmap{};
        GetObjectA(info.hbmColor, sizeof bitmap, &bitmap);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        return static_cast<int>(bitmap.bmWidth);
    }
};

TEST_F(AboutBoxTest, TellsTheVersionsOfTheProgramAndOfTheCaptureLibrary) {
    app.data.packetLibraryVersion = "4.1.0.2001 & more";
    While([](HWND window) {
        const HWND box = Open(window);
        EXPECT_EQ(TextOf(box, 1023), "4.1.0.2001 & more");
        EXPECT_EQ(TextOf(box, 1074), "Version 0.7.0 Build 1623");
        EXPECT_TRUE(GetWindowLongA(GetDlgItem(box, 1023), GWL_STYLE) & SS_NOPREFIX) << "shown as it is";
        PostMessageA(box, WM_CLOSE, 0, 0);
        ExpectGone(box);
    });
}

TEST_F(AboutBoxTest, ShowsTheProgramsIconAndThatOfAHost) {
    While([](HWND window) {
        const HWND box = Open(window);
        EXPECT_GE(IconWidth(box, 1205), 32);
        EXPECT_GE(IconWidth(box, 1206), 32);
        EXPECT_NE(SendDlgItemMessageA(box, 1205, STM_GETICON, 0, 0), SendDlgItemMessageA(box, 1206, STM_GETICON, 0, 0));
        PostMessageA(box, WM_CLOSE, 0, 0);
        ExpectGone(box);
    });
}

TEST_F(AboutBoxTest, OkEscapeAndEnterCloseIt) {
    While([](HWND window) {
        HWND box = Open(window);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
        ExpectGone(box);
        for (const WPARAM key : {VK_ESCAPE, VK_RETURN}) {
            box = Open(window);
            PostMessageA(box, WM_KEYDOWN, key, 0);
            ExpectGone(box);
        }
    });
}

TEST_F(AboutBoxTest, AskedForAgainItIsTheSame) {
    While([](HWND window) {
        const HWND box = Open(window);
        SendMessageA(window, WM_COMMAND, kAboutCommand, 0);
        EXPECT_EQ(FindWindowExA(nullptr, box, "#32770", "About Vardelwatch"), nullptr) << "no second one";
        EXPECT_EQ(Box(), box);
        PostMessageA(box, WM_CLOSE, 0, 0);
        ExpectGone(box);
    });
}

TEST_F(AboutBoxTest, TheTimersGoOnBehindIt) {
    system.strings.texts[75] = "%s - %d host(s) found";
    While([&](HWND window) {
        const HWND box = Open(window);
        app.data.arpMap.Insert("10.0.0.5", nullptr);
        EXPECT_TRUE(Until([&] { return std::string(gui.Tray().Record().szTip) == "Vardelwatch - 1 host(s) found"; }));
        PostMessageA(box, WM_CLOSE, 0, 0);
        ExpectGone(box);
    });
}

TEST_F(AboutBoxTest, TheProgramEndsWhileItIsOpen) {
    While([](HWND window) { Open(window); });
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(AboutBoxTest, ComesInTheFramesLanguage) {
    const ModuleHandle german = SystemModules().Load(test::LanguageModule("german").c_str());
    app.data.resourceInstance = german;
    While([](HWND window) {
        const HWND box = Open(window, "\xdc" "ber Vardelwatch");
        EXPECT_EQ(TextOf(box, 1074), "Version 0.7.0 Build 1623");
        PostMessageA(box, WM_CLOSE, 0, 0);
        ExpectGone(box);
    });
    SystemModules().Free(german);
}

TEST_F(AboutBoxTest, LeavesNothingBehind) {
    While([](HWND window) {
        ExpectNoObjectsLeftBehindBy(window, 10, [&] {
            const HWND box = Open(window);
            PostMessageA(box, WM_COMMAND, IDOK, 0);
            ExpectGone(box);
            SendMessageA(window, WM_NULL, 0, 0);
        });
    });
}

}  // namespace
}  // namespace vardel

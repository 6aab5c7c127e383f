#include "frame/VardelNotifyWnd.h"

#include <gtest/gtest.h>

#include <memory>

#include "foundation/TcSystemInfo.h"
#include "frame/PopupPainting.h"

namespace vardel {
namespace {

constexpr UINT kFadeIn = 10005, kFadeOut = 10006, kHold = 10007;

struct NotifyWindow : testing::Test {
    NotifyWindow() : system(TcSystemInfo::CreateObject()) { Make(system); }
    ~NotifyWindow() override {
        popup.reset();
        TcSystemInfo::DestroyObject(system);
    }
    void Make(TcSystemInfo* info) {
        popup.reset();
        popup = std::make_unique<VardelNotifyWnd>(nullptr, Program(), info);
    }
    static ModuleHandle Program() { return reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)); }

    // Timers fire only in a message loop; the tests send their messages instead of waiting.
    void Tick(UINT timer, int times = 1) {
        for (int i = 0; i < times; ++i) SendMessageA(window(), WM_TIMER, timer, 0);
    }
    HWND window() const { return popup->Window(); }
    int Opacity() const {
        BYTE opacity = 0;
        DWORD flags = 0;
        EXPECT_TRUE(GetLayeredWindowAttributes(window(), nullptr, &opacity, &flags));
        EXPECT_EQ(flags, static_cast<DWORD>(LWA_ALPHA));
        return opacity;
    }
    RECT Place() const {
        RECT place{};
        GetWindowRect(window(), &place);
        return place;
    }

    TcSystemInfo* system;
    std::unique_ptr<VardelNotifyWnd> popup;
};

TEST_F(NotifyWindow, FadesInStaysAndFadesOut) {
    EXPECT_FALSE(popup->IsShowing());
    ASSERT_TRUE(popup->Show("New host(s) found :\n\tdesk [10.0.0.5]"));
    EXPECT_TRUE(popup->IsShowing());
    EXPECT_FALSE(IsWindowVisible(window())) << "nothing is seen before the first step";
    Tick(kFadeIn);
    EXPECT_TRUE(IsWindowVisible(window()));
    EXPECT_EQ(Opacity(), 2);
    Tick(kFadeIn, 99);
    EXPECT_EQ(Opacity(), 200);
    EXPECT_FALSE(KillTimer(window(), kFadeIn)) << "this timer has ended";
    Tick(kHold);
    Tick(kFadeOut, 99);
    EXPECT_EQ(Opacity(), 2);
    EXPECT_TRUE(popup->IsShowing());
    Tick(kFadeOut);
    EXPECT_EQ(window(), nullptr);
    EXPECT_FALSE(popup->IsShowing());
}

TEST_F(NotifyWindow, ShowsOneTextAfterAnother) {
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(popup->Show("text"));
        Tick(kFadeIn, 100);
        Tick(kFadeOut, 100);
        EXPECT_FALSE(popup->IsShowing());
    }
}

TEST_F(NotifyWindow, BearsItsStylesAndTakesNoFocus) {
    popup->Show("text");
    char name[64] = "", title[64] = "";
    GetClassNameA(window(), name, sizeof name);
    GetWindowTextA(window(), title, sizeof title);
    EXPECT_STREQ(name, "Vardelwatch - NotifyWndClass");
    EXPECT_STREQ(title, "Vardelwatch - Notfiy Window");
    const LONG_PTR extended = GetWindowLongPtrA(window(), GWL_EXSTYLE);
    EXPECT_EQ(extended & 0x8080008, 0x8080008);
    EXPECT_EQ(GetWindowLongPtrA(window(), GWL_STYLE) & WS_CAPTION, 0);
    EXPECT_EQ(GetClassLongPtrA(window(), GCL_STYLE) & CS_DROPSHADOW, static_cast<ULONG_PTR>(CS_DROPSHADOW));
    Tick(kFadeIn);
    EXPECT_NE(GetForegroundWindow(), window());
}

TEST_F(NotifyWindow, IsAsLargeAsItsTextWithItsMargins) {
    const char* text = "a longer first line\n\ttabbed\nthird";
    popup->Show(text);
    RECT measured{};
    const HDC dc = GetDC(window());
    LOGFONTA like{};
    like.lfHeight = -MulDiv(8, GetDeviceCaps(dc, LOGPIXELSY), 72);
    like.lfWeight = 500;
    like.lfCharSet = DEFAULT_CHARSET;
    lstrcpynA(like.lfFaceName, "Arial", LF_FACESIZE);
    const HFONT font = CreateFontIndirectA(&like);
    const HGDIOBJ before = SelectObject(dc, font);
    DrawTextA(dc, text, -1, &measured, 0x444);
    SelectObject(dc, before);
    DeleteObject(font);
    ReleaseDC(window(), dc);
    const RECT place = Place();
    EXPECT_EQ(place.right - place.left, measured.right + 30);
    EXPECT_EQ(place.bottom - place.top, measured.bottom + 28);
    EXPECT_EQ(popup->Extent().text, (PixelRect{15, 19, static_cast<i32>(measured.right) + 15,
                                               static_cast<i32>(measured.bottom) + 19}));
    RECT client{};
    GetClientRect(window(), &client);
    EXPECT_EQ(client.right, place.right - place.left) << "no frame of the system's";
}

TEST_F(NotifyWindow, GoesWhereThePlacementSays) {
    popup->SetCorner(false);
    popup->Show("in the middle");
    RECT area{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    const PopupPoint expected =
        PlacePopup({static_cast<i32>(area.left), static_cast<i32>(area.top), static_cast<i32>(area.right),
                    static_cast<i32>(area.bottom)},
                   TaskbarEdge::NotFound, false, popup->Extent().width, popup->Extent().height);
    EXPECT_EQ(Place().left, expected.x);
    EXPECT_EQ(Place().top, expected.y);
}

TEST_F(NotifyWindow, StaysUntilClickedAndThenFadesOut) {
    popup->SetDisplayTime(-1);
    popup->Show("Host is offline");
    Tick(kFadeIn, 100);
    EXPECT_FALSE(KillTimer(window(), kHold)) << "no timer ends it";
    SendMessageA(window(), WM_LBUTTONUP, 0, 0);
    EXPECT_TRUE(popup->IsShowing());
    EXPECT_TRUE(KillTimer(window(), kFadeOut)) << "it fades out";
    Tick(kFadeOut, 99);
    EXPECT_TRUE(popup->IsShowing());
    Tick(kFadeOut);
    EXPECT_FALSE(popup->IsShowing());
}

TEST_F(NotifyWindow, AClickOnOneWithATimeLimitDoesNothing) {
    popup->Show("text");
    Tick(kFadeIn, 100);
    SendMessageA(window(), WM_LBUTTONUP, 0, 0);
    EXPECT_FALSE(KillTimer(window(), kFadeOut));
    EXPECT_TRUE(KillTimer(window(), kHold));
    EXPECT_EQ(Opacity(), 200);
}

TEST_F(NotifyWindow, AClickDuringTheFadeInEndsIt) {
    popup->SetDisplayTime(-1);
    popup->Show("text");
    Tick(kFadeIn, 10);
    SendMessageA(window(), WM_LBUTTONUP, 0, 0);
    EXPECT_FALSE(KillTimer(window(), kFadeIn));
    Tick(kFadeOut, 10);
    EXPECT_FALSE(popup->IsShowing());
}

TEST_F(NotifyWindow, WithoutAWindowItStaysMarkedAsShowing) {
    ASSERT_TRUE(UnregisterClassA(kNotifyWindowClass, GetModuleHandleA(nullptr)));
    EXPECT_FALSE(popup->Show("text"));
    EXPECT_TRUE(popup->IsShowing());
    EXPECT_EQ(window(), nullptr);
}

TEST_F(NotifyWindow, ASecondTextMakesASecondWindowWhichTheObjectFollows) {
    popup->Show("first");
    const HWND first = window();
    popup->Show("second");
    EXPECT_NE(window(), first);
    EXPECT_TRUE(IsWindow(first));
    EXPECT_TRUE(IsWindow(window()));
    const HWND second = window();
    popup.reset();
    EXPECT_FALSE(IsWindow(first));
    EXPECT_FALSE(IsWindow(second));
}

TEST_F(NotifyWindow, WithoutLayeredWindowsItLivesItsTimeUnseen) {
    Make(nullptr);
    ASSERT_TRUE(popup->Show("text"));
    Tick(kFadeIn);
    EXPECT_FALSE(IsWindowVisible(window()));
    EXPECT_TRUE(KillTimer(window(), kHold));
    Tick(kFadeOut);
    EXPECT_FALSE(popup->IsShowing());
}

TEST_F(NotifyWindow, PaintsItsRamp) {
    popup->SetColors({255, 0, 0}, {180, 0, 0}, {255, 255, 255}, {100, 0, 0});
    popup->Show("\n\n\n\n");
    const i32 width = popup->Extent().width, height = popup->Extent().height;
    const HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    popup->Paint(dc);
    EXPECT_EQ(GetPixel(dc, 0, 20), RGB(100, 0, 0));
    EXPECT_EQ(GetPixel(dc, 2, 2), RGB(200, 200, 200));
    EXPECT_EQ(GetPixel(dc, 2, 5), RGB(192, 192, 192));
    EXPECT_EQ(GetPixel(dc, 2, 7), RGB(196, 196, 196));
    const std::vector<Color> ramp = RampColors({100, 0, 0});
    const i32 band = (height - 11) / 20;
    for (const int number : {0, 1, 10, 20}) {
        const Color color = ramp[static_cast<std::size_t>(number)];
        EXPECT_EQ(GetPixel(dc, 2, 11 + band * number), RGB(color.red, color.green, color.blue)) << number;
    }
    SelectObject(dc, before);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
}

TEST_F(NotifyWindow, TheLastObjectTakesTheWindowClassAway) {
    auto second = std::make_unique<VardelNotifyWnd>(nullptr, Program(), system);
    popup.reset();
    WNDCLASSA known{};
    EXPECT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), kNotifyWindowClass, &known));
    second.reset();
    EXPECT_FALSE(GetClassInfoA(GetModuleHandleA(nullptr), kNotifyWindowClass, &known));
}

}  // namespace
}  // namespace vardel

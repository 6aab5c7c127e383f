// What a popup's window answers, how its object follows it, and what texts do to it.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/TcSystemInfo.h"
#include "frame/VardelNotifyWnd.h"
#include "tests/unit/support/Canvas_win.h"
#include "tests/unit/support/GuiObjects_win.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {
namespace {

struct PopupWindow : testing::Test {
    PopupWindow()
        : system(TcSystemInfo::CreateObject()),
          popup(std::make_unique<VardelNotifyWnd>(
              nullptr, reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)), system)) {}
    ~PopupWindow() override {
        popup.reset();
        TcSystemInfo::DestroyObject(system);
    }
    void Tick(HWND window, PopupTimer timer, int times = 1) {
        for (int i = 0; i < times; ++i) SendMessageA(window, WM_TIMER, timer, 0);
    }
    PixelSize SizeFor(const std::string& text) {
        EXPECT_TRUE(popup->Show(text.c_str()));
        const PixelSize size{popup->Extent().width, popup->Extent().height};
        DestroyWindow(popup->Window());
        return size;
    }
    std::unique_ptr<test::Canvas> Painted() const {
        auto canvas = std::make_unique<test::Canvas>(popup->Extent().width, popup->Extent().height);
        popup->Paint(canvas->Dc());
        return canvas;
    }

    TcSystemInfo* const system;
    std::unique_ptr<VardelNotifyWnd> popup;
};

TEST_F(PopupWindow, ItsWindowKnowsItsObject) {
    popup->Show("text");
    EXPECT_EQ(GetPropA(popup->Window(), "InfoDlgClassPtr"), static_cast<HANDLE>(popup.get()));
}

TEST_F(PopupWindow, MouseMovesAndFramePaintsAreAnsweredWithOne) {
    popup->Show("text");
    EXPECT_EQ(SendMessageA(popup->Window(), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)), 1);
    EXPECT_EQ(SendMessageA(popup->Window(), WM_NCPAINT, 1, 0), 1);
}

TEST_F(PopupWindow, ACloseRequestLeavesItToFadeOut) {
    popup->Show("text");
    const HWND window = popup->Window();
    Tick(window, kFadeInTimer, 100);
    SendMessageA(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(popup->IsShowing());
    EXPECT_TRUE(KillTimer(window, kFadeOutTimer));
}

TEST_F(PopupWindow, ADestroyedWindowLeavesItsObjectReady) {
    popup->Show("text");
    DestroyWindow(popup->Window());
    EXPECT_FALSE(popup->IsShowing());
    EXPECT_EQ(popup->Window(), nullptr);
    EXPECT_EQ(popup->Extent(), PopupExtent{});
    EXPECT_TRUE(popup->Show("again"));
    EXPECT_FALSE(IsWindowVisible(popup->Window())) << "it begins unseen as before";
}

TEST_F(PopupWindow, OfTwoWindowsTheFirstThatGoesMakesTheObjectReady) {
    popup->Show("first");
    const HWND first = popup->Window();
    popup->Show("second");
    const HWND second = popup->Window();
    DestroyWindow(first);
    EXPECT_FALSE(popup->IsShowing()) << "wanted";
    EXPECT_TRUE(IsWindow(second));
    Tick(second, kFadeOutTimer);
    EXPECT_FALSE(IsWindow(second));
}

TEST_F(PopupWindow, AtTheEdgeItLiesWhereTheTaskbarIs) {
    popup->Show("text");
    RECT area{}, place{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    GetWindowRect(popup->Window(), &place);
    const DesktopMeasures desktop{ToPixels(area), GetSystemMetrics(SM_CXFULLSCREEN), GetSystemMetrics(SM_CXSCREEN),
                                  GetSystemMetrics(SM_CYSCREEN)};
    const PopupPoint expected =
        PlacePopup(ToPixels(area), FindTaskbarEdge(desktop), true, popup->Extent().width, popup->Extent().height);
    EXPECT_EQ((PopupPoint{static_cast<i32>(place.left), static_cast<i32>(place.top)}), expected);
    EXPECT_TRUE(GetWindowLongPtrA(popup->Window(), GWL_EXSTYLE) & WS_EX_TOPMOST);
}

TEST_F(PopupWindow, LinesAndTabsMakeItLarger) {
    const PixelSize one = SizeFor("text");
    const PixelSize two = SizeFor("text\ntext");
    EXPECT_EQ(two.width, one.width);
    EXPECT_EQ(two.height - one.height, one.height - 28) << "a line more";
    EXPECT_GT(SizeFor("\ttext").width, one.width);
}

TEST_F(PopupWindow, AnotherFontCountsFromTheNextTextOn) {
    const PixelSize plain = SizeFor("a text");
    popup->SetFont(16, 700);
    const PixelSize large = SizeFor("a text");
    EXPECT_GT(large.width, plain.width);
    EXPECT_GT(large.height, plain.height);
    popup->Reset();
    EXPECT_EQ(SizeFor("a text").width, plain.width);
}

TEST_F(PopupWindow, TheTextStandsInItsColourAndWithoutOneThereIsNone) {
    popup->SetColors({1, 1, 1}, {2, 2, 2}, {255, 0, 255}, {0, 100, 0});
    popup->SetFont(16, 700);
    popup->Show("IIIII");
    EXPECT_GT(Painted()->Count(RGB(255, 0, 255)), 20);
    DestroyWindow(popup->Window());
    popup->Show("");
    EXPECT_EQ(popup->Extent().width, 30);
    EXPECT_EQ(Painted()->Count(RGB(255, 0, 255)), 0);
}

TEST_F(PopupWindow, TheGradientGoesFromLeftToRight) {
    popup->SetColors({200, 0, 0}, {0, 0, 200}, {0, 0, 0}, {0, 0, 0});
    popup->SetRamp(false);
    popup->Show("a text of some width");
    const auto canvas = Painted();
    const i32 middle = popup->Extent().height - 3;
    EXPECT_EQ(canvas->At(1, middle), RGB(200, 0, 0));
    EXPECT_EQ(canvas->At(1, 1), RGB(200, 0, 0)) << "over the grip too";
    const COLORREF last = canvas->At(popup->Extent().width - 2, middle);
    EXPECT_LT(GetRValue(last), 5);
    EXPECT_GT(GetBValue(last), 195);
    EXPECT_EQ(canvas->At(0, middle), RGB(0, 0, 0)) << "the frame stays";
}

TEST_F(PopupWindow, BytesOfAnyCodePageDoNoHarm) {
    std::string all;
    for (int byte = 0x80; byte < 0x100; ++byte) all += static_cast<char>(byte);
    for (const std::string& text : {all, std::string("\xcf\xf0\xe8\xe2\xe5\xf2"), std::string("\x83\x7a\x83\x58\x83"),
                                    std::string(3000, '\xff'), std::string("100 % %s %n & \x01\x7f")}) {
        ASSERT_TRUE(popup->Show(text.c_str()));
        EXPECT_GT(popup->Extent().width, 30);
        Tick(popup->Window(), kFadeInTimer);
        RedrawWindow(popup->Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        DestroyWindow(popup->Window());
    }
}

TEST_F(PopupWindow, SeveralObjectsShowAtOnceAndKnowNothingOfEachOther) {
    VardelNotifyWnd other(nullptr, reinterpret_cast<ModuleHandle>(GetModuleHandleA(nullptr)), system);
    popup->Show("first");
    EXPECT_FALSE(other.IsShowing());
    other.Show("other");
    DestroyWindow(popup->Window());
    EXPECT_TRUE(other.IsShowing());
    EXPECT_TRUE(IsWindow(other.Window()));
}

TEST_F(PopupWindow, ManyTextsLeaveNothingBehind) {
    const auto round = [&](int points) {
        popup->SetFont(points, 700);
        popup->SetRamp(points % 2 == 0);
        popup->Show("text\n\tmore");
        Tick(popup->Window(), kFadeInTimer);
        RedrawWindow(popup->Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        Tick(popup->Window(), kFadeOutTimer);
    };
    int points = 8;
    test::ExpectNoObjectsLeftBehind(60, [&] { round(8 + ++points % 5); });
}

}  // namespace
}  // namespace vardel

#include "tests/desktop/DesktopFixture.h"
#include "toolkit/TcColorBar.h"

namespace vardel::test {
namespace {

constexpr COLORREF kStart = RGB(20, 40, 160);

// Shows a bar of that text and hands its picture over.
void LookAtBar(TcColorBar& bar, const char* text, const std::function<void(const Canvas&, RECT)>& look) {
    ToldDialog dialog(DIALOG_BAR);
    Steps steps;
    dialog.onInit = [&] {
        EXPECT_TRUE(bar.SetHwnd(dialog.GetControl(CONTROL_BAR)));
        EXPECT_TRUE(bar.SetStartColor(kStart));
        EXPECT_TRUE(bar.SetText(text));
        steps.Then([&] { EXPECT_TRUE(bar.Update()); })
            .Then([&] {
                const HWND control = dialog.GetControl(CONTROL_BAR);
                RECT client{};
                GetClientRect(control, &client);
                const Canvas canvas(static_cast<int>(client.right), static_cast<int>(client.bottom));
                const HDC dc = GetDC(control);
                BitBlt(canvas.Dc(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
                ReleaseDC(control, dc);
                look(canvas, client);
                TcString shown;
                EXPECT_TRUE(dialog.GetControlText(CONTROL_BAR, shown));
                EXPECT_STREQ(shown, text) << "for screen readers";
            })
            .Then([&] { dialog.ExitDialog(true); });
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(ColorBar, FadesFromItsColourToTheDialogs) {
    TcColorBar bar;
    LookAtBar(bar, "General", [](const Canvas& canvas, RECT client) {
        const auto right = static_cast<int>(client.right) - 1, middle = static_cast<int>(client.bottom) / 2;
        EXPECT_EQ(canvas.At(1, middle), kStart);
        EXPECT_EQ(canvas.At(right, middle), GetSysColor(COLOR_3DFACE));
        u32 before = Brightness(canvas.At(right / 2, 1));
        for (int x = right / 2; x <= right; ++x) {
            const u32 now = Brightness(canvas.At(x, 1));
            EXPECT_GE(now, before);
            before = now;
        }
    });
}

TEST(ColorBar, ItsTextIsLegible) {
    TcColorBar bar;
    LookAtBar(bar, "IIIIIIIIIII",
              [](const Canvas& canvas, RECT) { EXPECT_GT(canvas.Count(RGB(255, 255, 255)), 20); });
}

TEST(ColorBar, ShowsAnIconOfTheProgram) {
    TcColorBar bar;
    EXPECT_TRUE(bar.SetIcon(ICON_RED));
    LookAtBar(bar, "Hosts",
              [](const Canvas& canvas, RECT) { EXPECT_GT(canvas.Count(RGB(0xc0, 0x30, 0x28)), 80); });
    EXPECT_FALSE(bar.SetIcon(4000));
    LookAtBar(bar, "Hosts",
              [](const Canvas& canvas, RECT) { EXPECT_EQ(canvas.Count(RGB(0xc0, 0x30, 0x28)), 0); });
}

TEST(ColorBar, WithoutAControlItTellsSo) {
    TcColorBar bar;
    EXPECT_FALSE(bar.SetHwnd(nullptr));
    EXPECT_FALSE(bar.SetText("x"));
    EXPECT_FALSE(bar.Update());
}

TEST(ColorBar, LetsItsControlGo) {
    TcColorBar bar;
    LookAtBar(bar, "x", [](const Canvas&, RECT) {});
    EXPECT_FALSE(bar.Update()) << "the control is no more";
}

}  // namespace
}  // namespace vardel::test

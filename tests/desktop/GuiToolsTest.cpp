#include "tests/desktop/DesktopFixture.h"
#include "tests/unit/support/GuiObjects_win.h"
#include "toolkit/ColorSteps.h"
#include "toolkit/TcGuiTools.h"
#include "toolkit/UniqueHandle.h"

namespace vardel::test {
namespace {

TEST(GuiTools, AGreyIconHasTheShapeOfTheOriginalAndNoHue) {
    const UniqueIcon green(TcGuiTools::LoadSizedIcon(nullptr, ICON_GREEN, 16));
    ASSERT_TRUE(green);
    const UniqueIcon grey(TcGuiTools::CreateGrayScaleIcon(green.Get(), nullptr));
    ASSERT_TRUE(grey);
    const Canvas before(16, 16), after(16, 16);
    DrawIconEx(before.Dc(), 0, 0, green.Get(), 16, 16, 0, nullptr, DI_NORMAL);
    DrawIconEx(after.Dc(), 0, 0, grey.Get(), 16, 16, 0, nullptr, DI_NORMAL);
    const COLORREF behind = RGB(255, 0, 255);
    EXPECT_EQ(before.At(0, 0), behind);
    EXPECT_EQ(after.At(0, 0), behind);
    const COLORREF middle = after.At(8, 8);
    EXPECT_NE(before.At(8, 8), middle);
    EXPECT_EQ(RedOf(middle), GreenOf(middle));
    EXPECT_EQ(GreenOf(middle), BlueOf(middle));
    EXPECT_NEAR(static_cast<int>(RedOf(middle)), static_cast<int>(Brightness(before.At(8, 8))), 1);
}

TEST(GuiTools, AGreyIconIsACopy) {
    const UniqueIcon red(TcGuiTools::LoadSizedIcon(nullptr, ICON_RED, 16));
    const Canvas untouched(16, 16), used(16, 16);
    DrawIconEx(untouched.Dc(), 0, 0, red.Get(), 16, 16, 0, nullptr, DI_NORMAL);
    {
        const WindowDc screen(nullptr);
        const UniqueIcon grey(TcGuiTools::CreateGrayScaleIcon(red.Get(), screen.Get()));
        ASSERT_TRUE(grey);
        EXPECT_NE(grey.Get(), red.Get());
    }
    DrawIconEx(used.Dc(), 0, 0, red.Get(), 16, 16, 0, nullptr, DI_NORMAL);
    EXPECT_EQ(untouched.At(8, 8), used.At(8, 8));
}

TEST(GuiTools, WithoutAnIconThereIsNoGreyOne) {
    EXPECT_EQ(TcGuiTools::CreateGrayScaleIcon(nullptr, nullptr), nullptr);
}

TEST(GuiTools, GreyIconsLeaveNoObjectBehind) {
    const UniqueIcon red(TcGuiTools::LoadSizedIcon(nullptr, ICON_RED, 16));
    ExpectNoObjectsLeftBehind(40, [&] { UniqueIcon(TcGuiTools::CreateGrayScaleIcon(red.Get(), nullptr)); });
}

TEST(GuiTools, AnIconThatIsMissingIsNull) {
    EXPECT_EQ(TcGuiTools::LoadSizedIcon(nullptr, 4000, 16), nullptr);
}

TEST(GuiTools, ANullModuleIsTheProgram) {
    EXPECT_EQ(TcGuiTools::Instance(nullptr), GetModuleHandleA(nullptr));
    const HMODULE other = GetModuleHandleA("user32.dll");
    EXPECT_EQ(TcGuiTools::Instance(reinterpret_cast<ModuleHandle>(other)), other);
}

TEST(GuiTools, LengthsFollowTheDisplaysDensity) {
    EXPECT_GE(TcGuiTools::Dpi(), 96);
    EXPECT_EQ(TcGuiTools::Scaled(100), ScaledForDpi(100, TcGuiTools::Dpi()));
}

}  // namespace
}  // namespace vardel::test

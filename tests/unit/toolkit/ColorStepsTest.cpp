#include "toolkit/ColorSteps.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

constexpr u32 kDarkBlue = MakeColor(0x11, 0x0d, 0x82);

TEST(ColorSteps, AColorIsItsThreeParts) {
    EXPECT_EQ(kDarkBlue, 0x820d11u);
    EXPECT_EQ(RedOf(kDarkBlue), 0x11u);
    EXPECT_EQ(GreenOf(kDarkBlue), 0x0du);
    EXPECT_EQ(BlueOf(kDarkBlue), 0x82u);
}

TEST(ColorSteps, AGradientRunsFromItsStartToItsEnd) {
    const u32 start = MakeColor(0, 100, 255), end = MakeColor(255, 50, 0);
    EXPECT_EQ(GradientColor(start, end, 0, 256), start);
    EXPECT_EQ(GradientColor(start, end, 255, 256), end);
    EXPECT_EQ(GradientColor(start, end, 51, 256), MakeColor(51, 90, 204));
}

TEST(ColorSteps, AGradientOfTwoStepsIsItsEnds) {
    EXPECT_EQ(GradientColor(0, 0xffffff, 0, 2), 0u);
    EXPECT_EQ(GradientColor(0, 0xffffff, 1, 2), 0xffffffu);
}

TEST(ColorSteps, HalvesOfAGradientAreRoundedAwayFromItsStart) {
    EXPECT_EQ(GradientColor(MakeColor(10, 0, 5), MakeColor(0, 10, 5), 1, 5), MakeColor(7, 3, 5));
    EXPECT_EQ(GradientColor(MakeColor(10, 0, 5), MakeColor(0, 10, 5), 3, 5), MakeColor(2, 8, 5));
}

TEST(ColorSteps, AGradientNeverTurnsBack) {
    const u32 start = MakeColor(10, 200, 30), end = MakeColor(250, 20, 30);
    u32 before = start;
    for (int step = 0; step < 100; ++step) {
        const u32 now = GradientColor(start, end, step, 100);
        EXPECT_GE(RedOf(now), RedOf(before));
        EXPECT_LE(GreenOf(now), GreenOf(before));
        EXPECT_EQ(BlueOf(now), 30u);
        before = now;
    }
    EXPECT_EQ(before, end);
}

TEST(ColorSteps, OutsideItsStepsAGradientStandsStill) {
    EXPECT_EQ(GradientColor(1, 2, -5, 10), 1u);
    EXPECT_EQ(GradientColor(1, 2, 50, 10), 2u);
    EXPECT_EQ(GradientColor(1, 2, 5, 1), 1u);
    EXPECT_EQ(GradientColor(1, 2, 5, 0), 1u);
}

TEST(ColorSteps, TextIsLegibleOnItsBackground) {
    EXPECT_EQ(TextColorOn(MakeColor(255, 255, 255)), 0u);
    EXPECT_EQ(TextColorOn(MakeColor(250, 220, 80)), 0u);
    EXPECT_EQ(TextColorOn(0), 0xffffffu);
    EXPECT_EQ(TextColorOn(kDarkBlue), 0xffffffu);
    EXPECT_EQ(TextColorOn(MakeColor(0x33, 0x99, 0xff)), 0xffffffu) << "the usual colour of lit menu items";
}

TEST(ColorSteps, TextTurnsBlackAtABrightnessOf140) {
    const u32 below = MakeColor(139, 139, 139), at = MakeColor(140, 140, 140);
    ASSERT_EQ(Brightness(below), 139u);
    ASSERT_EQ(Brightness(at), 140u);
    EXPECT_EQ(TextColorOn(below), 0xffffffu);
    EXPECT_EQ(TextColorOn(at), 0u);
}

TEST(ColorSteps, ABrightnessIsRounded) {
    EXPECT_EQ(Brightness(MakeColor(0, 0, 250)), 29u) << "28.5";
    EXPECT_EQ(Brightness(MakeColor(0, 0, 249)), 28u) << "28.4";
}

TEST(ColorSteps, AGreyPixelKeepsBrightnessAndOpacity) {
    EXPECT_EQ(GreyPixel(0xffffffffu), 0xffffffffu);
    EXPECT_EQ(GreyPixel(0xff000000u), 0xff000000u);
    EXPECT_EQ(GreyPixel(0x80ff0000u), 0x804c4c4cu) << "red";
    EXPECT_EQ(GreyPixel(0x0000ff00u), 0x00969696u) << "green";
    EXPECT_EQ(GreyPixel(0xff0000ffu), 0xff1d1d1du) << "blue";
    EXPECT_EQ(Brightness(MakeColor(255, 0, 0)), 0x4cu);
}

}  // namespace
}  // namespace vardel

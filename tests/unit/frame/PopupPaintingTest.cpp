#include "frame/PopupPainting.h"

#include <gtest/gtest.h>

#include "frame/HlsColor.h"

namespace vardel {
namespace {

using StepKind = PaintStep::Kind;

constexpr Color kPaintWhite{255, 255, 255};
constexpr Color kPaintDark{128, 128, 128};

PaintStep PaintBox(Color pen, Color fill, PixelRect area) { return {StepKind::Rectangle, pen, fill, area}; }
PaintStep PaintLine(Color pen, PixelRect fromTo) { return {StepKind::Line, pen, kPaintWhite, fromTo}; }

TEST(PopupPainting, BeginsWithFrameAndGrip) {
    PopupLook look;
    look.border = {100, 0, 0};
    const std::vector<PaintStep> steps = PaintingOf(look, 101, 80);
    const std::vector<PaintStep> expected = {
        PaintBox({100, 0, 0}, kPaintWhite, {0, 0, 101, 80}),
        PaintBox(kPaintDark, kPaintWhite, {0, 0, 101, 10}),
        PaintBox({200, 200, 200}, {200, 200, 200}, {1, 1, 100, 4}),
        PaintBox({192, 192, 192}, {192, 192, 192}, {1, 4, 100, 6}),
        PaintBox({196, 196, 196}, {196, 196, 196}, {1, 6, 100, 9}),
        PaintLine(kPaintDark, {50, 4, 50, 6}),
        PaintLine(kPaintDark, {51, 4, 51, 6}),
        PaintLine(kPaintDark, {44, 4, 44, 6}),
        PaintLine(kPaintDark, {45, 4, 45, 6}),
        PaintLine(kPaintDark, {56, 4, 56, 6}),
        PaintLine(kPaintDark, {57, 4, 57, 6}),
        PaintLine(kPaintWhite, {51, 6, 51, 7}),
        PaintLine(kPaintWhite, {52, 5, 52, 7}),
        PaintLine(kPaintWhite, {57, 6, 57, 7}),
        PaintLine(kPaintWhite, {58, 5, 58, 7}),
        PaintLine(kPaintWhite, {45, 6, 45, 7}),
        PaintLine(kPaintWhite, {46, 5, 46, 7}),
        PaintBox({100, 0, 0}, kPaintWhite, {0, 10, 101, 80}),
    };
    ASSERT_EQ(steps.size(), expected.size() + 21);
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(steps[i], expected[i]) << i;
}

TEST(PopupPainting, TheRampsBandsCoverEachOtherDownwards) {
    const PopupLook look;
    const std::vector<PaintStep> steps = PaintingOf(look, 100, 80);
    const std::vector<Color> colors = RampColors(look.border);
    for (int band = 0; band < 21; ++band) {
        const Color color = colors[static_cast<std::size_t>(band)];
        EXPECT_EQ(steps[steps.size() - 21 + static_cast<std::size_t>(band)],
                  PaintBox(color, color, {1, 11 + 3 * band, 99, 79}))
            << band;  // (80 - 11) / 20 in whole numbers
    }
}

TEST(PopupPainting, TheBorderAloneDecidesTheRamp) {
    PopupLook first, second;
    second.left = second.right = {1, 2, 3};
    EXPECT_EQ(PaintingOf(first, 100, 80), PaintingOf(second, 100, 80));
}

TEST(RampColors, DarkBordersAreLightenedAndTheOthersBeginNearWhite) {
    const std::vector<Color> dark = RampColors({100, 0, 0});  // luminance 47
    ASSERT_EQ(dark.size(), 21u);
    EXPECT_EQ(dark.front(), ColorOf({0, 144, 240}));
    EXPECT_EQ(dark.back(), ColorOf({0, 84, 240}));
    const std::vector<Color> bright = RampColors({22, 122, 233});  // luminance 120
    EXPECT_EQ(bright.front(), ColorOf({141, 227, 199}));
    EXPECT_EQ(bright.back(), ColorOf({141, 167, 199}));
}

TEST(RampColors, TheLimitIsALuminanceOfAHundred) {
    ASSERT_EQ(HlsOf({105, 105, 105}).luminance, 99);
    EXPECT_EQ(RampColors({105, 105, 105}).front(), ColorOf({160, 196, 0}));
    ASSERT_EQ(HlsOf({106, 106, 106}).luminance, 100);
    EXPECT_EQ(RampColors({106, 106, 106}).front(), ColorOf({160, 227, 0}));
}

TEST(PopupPainting, TheGradientGoesFromLeftToRight) {
    PopupLook look;
    look.left = {200, 0, 10};
    look.right = {100, 50, 10};
    look.ramp = false;
    const std::vector<PaintStep> steps = PaintingOf(look, 12, 80);
    ASSERT_GE(steps.size(), 10u);
    for (int column = 0; column < 10; ++column)
        EXPECT_EQ(steps[steps.size() - 10 + static_cast<std::size_t>(column)],
                  PaintLine({static_cast<u8>(200 - 10 * column), static_cast<u8>(5 * column), 10},
                       {column + 1, 1, column + 1, 79}));
}

TEST(GradientColors, AreTruncated) {
    EXPECT_EQ(GradientColor({0, 0, 10}, {10, 1, 0}, 2, 3), (Color{6, 0, 3}));
    EXPECT_EQ(GradientColor({7, 8, 9}, {10, 1, 0}, 0, 3), (Color{7, 8, 9}));
}

}  // namespace
}  // namespace vardel

#include "toolkit/ResizeRules.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

constexpr PixelRect kControl{10, 20, 110, 60};

TEST(ResizeRules, AListThatFillsTheDialogGrowsInBothDirections) {
    EXPECT_EQ(ResizedControl(kControl, 193, {30, 7}), (PixelRect{10, 20, 140, 67}));
}

TEST(ResizeRules, AControlInTheBottomRightMovesWithBothEdges) {
    EXPECT_EQ(ResizedControl(kControl, 192, {30, 7}), (PixelRect{40, 27, 140, 67}));
}

TEST(ResizeRules, AControlInTheBottomLeftMovesDownAlone) {
    EXPECT_EQ(ResizedControl(kControl, 128, {30, 7}), (PixelRect{10, 27, 110, 67}));
}

TEST(ResizeRules, EachBitActsByItself) {
    EXPECT_EQ(ResizedControl(kControl, 64, {30, 7}), (PixelRect{40, 20, 140, 60}));
    EXPECT_EQ(ResizedControl(kControl, 65, {30, 7}), (PixelRect{10, 20, 140, 60}));
    EXPECT_EQ(ResizedControl(kControl, 129, {30, 7}), (PixelRect{10, 20, 110, 67}));
    EXPECT_EQ(ResizedControl(kControl, 1, {30, 7}), kControl);
    EXPECT_EQ(ResizedControl(kControl, 0, {30, 7}), kControl);
    EXPECT_EQ(ResizedControl(kControl, 32 | 16, {30, 7}), kControl) << "bits without a meaning";
}

TEST(ResizeRules, ADialogThatShrinksTakesItsControlsAlong) {
    EXPECT_EQ(ResizedControl(kControl, 192, {-30, -7}), (PixelRect{-20, 13, 80, 53}));
    EXPECT_EQ(ResizedControl(kControl, 193, {-30, -7}), (PixelRect{10, 20, 80, 53}));
}

TEST(ResizeRules, NoControlGetsANegativeSize) {
    EXPECT_EQ(ResizedControl(kControl, 193, {-500, -500}), (PixelRect{10, 20, 10, 20}));
}

TEST(ResizeRules, TheMinimumHoldsForEachMeasure) {
    EXPECT_EQ(AtLeast({100, 500}, {360, 140}), (PixelSize{360, 500}));
    EXPECT_EQ(AtLeast({400, 100}, {360, 140}), (PixelSize{400, 140}));
    EXPECT_EQ(AtLeast({400, 500}, {360, 140}), (PixelSize{400, 500}));
}

TEST(ResizeRules, AWindowOutsideIsMovedInAndKeepsItsSize) {
    constexpr PixelRect work{0, 0, 1000, 700};
    EXPECT_EQ(MovedInto({-400, -300, 0, 0}, work), (PixelRect{0, 0, 400, 300}));
    EXPECT_EQ(MovedInto({2000, 900, 2400, 1200}, work), (PixelRect{600, 400, 1000, 700}));
    EXPECT_EQ(MovedInto({100, 100, 500, 400}, work), (PixelRect{100, 100, 500, 400}));
}

TEST(ResizeRules, AWindowLargerThanTheMonitorIsCut) {
    EXPECT_EQ(MovedInto({-5000, 50, -1000, 2050}, {100, 0, 900, 600}), (PixelRect{100, 0, 900, 600}));
}

TEST(ResizeRules, LengthsScaleWithTheDensity) {
    EXPECT_EQ(ScaledForDpi(360, 96), 360);
    EXPECT_EQ(ScaledForDpi(360, 144), 540);
    EXPECT_EQ(ScaledForDpi(360, 192), 720);
    EXPECT_EQ(ScaledForDpi(3, 120), 4);
    EXPECT_EQ(ScaledForDpi(-3, 120), -4);
    EXPECT_EQ(ScaledForDpi(16, 0), 16) << "a display that tells no density";
}

}  // namespace
}  // namespace vardel

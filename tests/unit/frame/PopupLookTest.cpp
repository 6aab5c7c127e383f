#include "frame/PopupLook.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

// A new popup and one that was reset differ in their left colour alone; that is wanted.
void ExpectTheUsualButForTheLeftColor(const PopupLook& look) {
    EXPECT_EQ(look.right, (Color{112, 141, 203}));
    EXPECT_EQ(look.text, (Color{0, 0, 128}));
    EXPECT_EQ(look.border, (Color{0, 0, 128}));
    EXPECT_EQ(look.displayTimeMs, 5000);
    EXPECT_TRUE(look.atTheEdge);
    EXPECT_TRUE(look.ramp);
    EXPECT_EQ(look.fontPoints, 8);
    EXPECT_EQ(look.fontWeight, 500);
}

TEST(PopupLook, BeginsAsANewPopupDoes) {
    const PopupLook look;
    EXPECT_EQ(look.left, (Color{180, 196, 228}));
    ExpectTheUsualButForTheLeftColor(look);
    EXPECT_FALSE(look.fontDirty);
}

TEST(PopupLook, ASecondIsTooShortAndOneMoreMillisecondIsNot) {
    PopupLook look;
    look.SetDisplayTime(7500);
    look.SetDisplayTime(1000);
    EXPECT_EQ(look.displayTimeMs, 5000);
    look.SetDisplayTime(1001);
    EXPECT_EQ(look.displayTimeMs, 1001);
    look.SetDisplayTime(0);
    EXPECT_EQ(look.displayTimeMs, 5000);
    look.SetDisplayTime(-2);
    EXPECT_EQ(look.displayTimeMs, 5000);
    look.SetDisplayTime(-1);
    EXPECT_EQ(look.displayTimeMs, -1);
    EXPECT_TRUE(look.StaysUntilClicked());
}

TEST(PopupLook, BlackStandsForNoColor) {
    PopupLook look;
    look.SetColors({0, 0, 0}, {1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    EXPECT_EQ(look.left, (Color{180, 196, 228}));
    EXPECT_EQ(look.right, (Color{1, 2, 3}));
    EXPECT_EQ(look.text, (Color{4, 5, 6}));
    EXPECT_EQ(look.border, (Color{7, 8, 9}));
    look.SetColors({10, 20, 30}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    EXPECT_EQ(look.right, (Color{10, 20, 30}));
    EXPECT_EQ(look.text, (Color{0, 0, 0}));
    EXPECT_EQ(look.border, (Color{0, 0, 0}));
    look.SetColors({0, 0, 0}, {0, 0, 0}, {}, {});
    EXPECT_EQ(look.right, (Color{180, 196, 228}));
}

TEST(PopupLook, AFontThatDiffersIsMadeAnewFromThenOn) {
    PopupLook look;
    look.SetFont(8, 500);
    EXPECT_FALSE(look.fontDirty);
    look.SetFont(8, 700);
    EXPECT_TRUE(look.fontDirty);
    look.SetFont(8, 700);
    EXPECT_TRUE(look.fontDirty) << "it is never taken back";
    PopupLook other;
    other.SetFont(10, 500);
    EXPECT_TRUE(other.fontDirty);
    EXPECT_EQ(other.fontPoints, 10);
}

TEST(PopupLook, AResetGivesWhiteOnTheLeft) {
    PopupLook look;
    look.SetColors({1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {4, 4, 4});
    look.SetDisplayTime(7500);
    look.atTheEdge = false;
    look.ramp = false;
    look.SetFont(10, 700);
    look.Reset();
    EXPECT_EQ(look.left, (Color{255, 255, 255}));
    ExpectTheUsualButForTheLeftColor(look);
}

TEST(PopupLook, AResetOfTheUsualFontLeavesItAsItIs) {
    PopupLook look;
    look.Reset();
    EXPECT_FALSE(look.fontDirty);
}

}  // namespace
}  // namespace vardel

#include "toolkit/ListLayout.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

using Lines = std::vector<int>;

TEST(ListLayout, EachGroupWithRowsHasAHeadingAboveThem) {
    const int groups[] = {1, 2, 3};
    const int rows[] = {3, 1, 3, 2, 1};
    EXPECT_EQ(GroupedLines(rows, groups),
              (Lines{HeadingLine(0), 1, 4, HeadingLine(1), 3, HeadingLine(2), 0, 2}));
}

TEST(ListLayout, AGroupWithoutRowsHasNoHeading) {
    const int groups[] = {1, 2, 3};
    const int rows[] = {3, 3};
    EXPECT_EQ(GroupedLines(rows, groups), (Lines{HeadingLine(2), 0, 1}));
    EXPECT_TRUE(GroupedLines({}, groups).empty());
}

TEST(ListLayout, TheOrderOfTheGroupsIsTheirs) {
    const int groups[] = {9, 1};
    const int rows[] = {1, 9};
    EXPECT_EQ(GroupedLines(rows, groups), (Lines{HeadingLine(0), 1, HeadingLine(1), 0}));
}

TEST(ListLayout, RowsOfNoKnownGroupComeLast) {
    const int groups[] = {1};
    const int rows[] = {-1, 1, 5};
    EXPECT_EQ(GroupedLines(rows, groups), (Lines{HeadingLine(0), 1, 0, 2}));
    EXPECT_EQ(GroupedLines(rows, {}), (Lines{0, 1, 2}));
}

TEST(ListLayout, HeadingsAreToldFromRows) {
    EXPECT_TRUE(IsHeadingLine(HeadingLine(0)));
    EXPECT_TRUE(IsHeadingLine(HeadingLine(7)));
    EXPECT_FALSE(IsHeadingLine(0));
    EXPECT_EQ(GroupOfHeading(HeadingLine(0)), 0);
    EXPECT_EQ(GroupOfHeading(HeadingLine(7)), 7);
}

TEST(ListLayout, ARowHoldsTextAndPicture) {
    EXPECT_EQ(ListRowHeight(13, 16, 96), 18);
    EXPECT_EQ(ListRowHeight(30, 16, 96), 34);
    EXPECT_GT(ListRowHeight(26, 32, 192), 32);
}

constexpr RowPalette kPalette{.plain = {1, 2}, .selected = {3, 4}, .resting = {5, 6}};

TEST(ListLayout, ASelectedRowIsLitAndRestsWithoutTheFocus) {
    RowState state{.isSelected = true, .hasFocus = true};
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.selected);
    state.hasFocus = false;
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.plain);
    state.showsSelectionAlways = true;
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.resting);
    state.isSelected = false;
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.plain);
}

TEST(ListLayout, ARowsOwnColourYieldsToTheSelectionAndToHighContrast) {
    RowState state{.ownColor = 0x646464};
    EXPECT_EQ(ChooseRowColors(state, kPalette), (RowColors{0x646464, 2}));
    state.ownColor = 0;
    EXPECT_EQ(ChooseRowColors(state, kPalette), (RowColors{0, 2})) << "black is a colour";
    state.ownColor = -1;
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.plain);
    state.ownColor = 0x0000b4;
    state.isHighContrast = true;
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.plain);
    state = {.isSelected = true, .hasFocus = true, .ownColor = 0x0000b4};
    EXPECT_EQ(ChooseRowColors(state, kPalette), kPalette.selected);
}

}  // namespace
}  // namespace vardel

#include "toolkit/MenuMetrics.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(MenuMetrics, ATabPartsLabelAndKeys) {
    EXPECT_EQ(SplitMenuText("&View\tAlt+V"), (MenuText{"&View", "Alt+V"}));
    EXPECT_EQ(SplitMenuText("&View"), (MenuText{"&View", ""}));
    EXPECT_EQ(SplitMenuText("\tAlt+F4"), (MenuText{"", "Alt+F4"}));
    EXPECT_EQ(SplitMenuText("a\tb\tc"), (MenuText{"a", "b\tc"}));
    EXPECT_EQ(SplitMenuText(""), MenuText{});
}

TEST(MenuMetrics, TheMnemonicIsTheCharacterBehindASingleMark) {
    EXPECT_EQ(MnemonicOf("&View"), 'v');
    EXPECT_EQ(MnemonicOf("S&top"), 't');
    EXPECT_EQ(MnemonicOf("Save && &Exit"), 'e');
    EXPECT_EQ(MnemonicOf("R&&D"), 0);
    EXPECT_EQ(MnemonicOf("Plain"), 0);
    EXPECT_EQ(MnemonicOf("End&"), 0);
    EXPECT_EQ(MnemonicOf(""), 0);
    EXPECT_EQ(MnemonicOf("&\xdc"
                         "ber"),
              0xdc)
        << "a letter of the code page stays as it is";
}

TEST(MenuMetrics, ALabelIsReadOutWithoutItsMarks) {
    EXPECT_EQ(SpokenLabel("S&top"), "Stop");
    EXPECT_EQ(SpokenLabel("Save && &Exit"), "Save & Exit");
    EXPECT_EQ(SpokenLabel("End&"), "End");
    EXPECT_EQ(SpokenLabel("\x82\xa0(&A)"), "\x82\xa0(A)") << "two-byte characters";
}

TEST(MenuMetrics, AnItemHoldsIconLabelAndKeys) {
    const MenuMeasures measures = MenuMeasuresFor(96);
    EXPECT_EQ(measures.iconEdge, 16);
    const PixelSize plain = MenuItemSize(measures, {.labelWidth = 50, .keysWidth = 0, .height = 13});
    EXPECT_EQ(plain.width, measures.iconColumn + measures.textIndent + 50 + measures.endMargin);
    EXPECT_EQ(plain.height, 22) << "the icon is higher than the text";
    const PixelSize keyed = MenuItemSize(measures, {.labelWidth = 50, .keysWidth = 30, .height = 28});
    EXPECT_EQ(keyed.width, plain.width + measures.keyGap + 30);
    EXPECT_EQ(keyed.height, 34);
}

TEST(MenuMetrics, SizesFollowTheDensity) {
    for (const int scale : {1, 2}) {
        const MenuMeasures measures = MenuMeasuresFor(96 * scale);
        const PixelSize item =
            MenuItemSize(measures, {.labelWidth = 50 * scale, .keysWidth = 30 * scale, .height = 13 * scale});
        EXPECT_EQ(item, (PixelSize{156 * scale, 22 * scale}));
        EXPECT_EQ(MenuSeparatorSize(measures), (PixelSize{52 * scale, 7 * scale}));
    }
}

TEST(MenuMetrics, TheNarrowestKeyTextStandsApartFromItsLabelToo) {
    const MenuMeasures measures = MenuMeasuresFor(96);
    const PixelSize plain = MenuItemSize(measures, {.labelWidth = 50, .keysWidth = 0, .height = 13});
    const PixelSize keyed = MenuItemSize(measures, {.labelWidth = 50, .keysWidth = 1, .height = 13});
    EXPECT_EQ(keyed.width, plain.width + measures.keyGap + 1);
}

TEST(MenuMetrics, AnItemWithoutTextIsItsIconAndMargins) {
    EXPECT_EQ(MenuItemSize(MenuMeasuresFor(96), {}), (PixelSize{52, 22}));
}

TEST(MenuMetrics, AnItemsPartsStandSideBySide) {
    const MenuItemParts parts = LayOutMenuItem(MenuMeasuresFor(96), {5, 50, 161, 72});
    EXPECT_EQ(parts.iconColumn, (PixelRect{5, 50, 29, 72}));
    EXPECT_EQ(parts.icon, (PixelRect{9, 53, 25, 69})) << "in the middle of its column";
    EXPECT_EQ(parts.text, (PixelRect{37, 50, 141, 72}));
}

TEST(MenuMetrics, ThePartsOfAnItemDoNotOverlap) {
    for (const int dpi : {96, 120, 144, 192}) {
        const MenuMeasures measures = MenuMeasuresFor(dpi);
        const PixelSize size = MenuItemSize(measures, {.labelWidth = 100, .keysWidth = 40, .height = 20});
        const PixelRect item{5, 50, 5 + size.width, 50 + size.height};
        const MenuItemParts parts = LayOutMenuItem(measures, item);
        EXPECT_EQ(parts.icon.Width(), ScaledForDpi(16, dpi));
        EXPECT_EQ(parts.icon.Height(), ScaledForDpi(16, dpi));
        EXPECT_GE(parts.icon.left, parts.iconColumn.left);
        EXPECT_LE(parts.icon.right, parts.iconColumn.right);
        EXPECT_GE(parts.icon.top, item.top);
        EXPECT_LE(parts.icon.bottom, item.bottom);
        EXPECT_GT(parts.text.left, parts.iconColumn.right);
        EXPECT_LT(parts.text.right, item.right);
        EXPECT_GE(parts.text.Width(), 100 + 40 + measures.keyGap);
    }
}

TEST(MenuMetrics, ASeparatorIsLowerThanAnItem) {
    const MenuMeasures measures = MenuMeasuresFor(144);
    EXPECT_LT(MenuSeparatorSize(measures).height, MenuItemSize(measures, {10, 0, 10}).height / 2);
}

}  // namespace
}  // namespace vardel

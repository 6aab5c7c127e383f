#include "toolkit/MenuGlyphs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vardel {
namespace {

using GlyphStrokes = std::span<const GlyphStroke>;

// Each stroke begins where the one before it ends, and none is slanted.
void ExpectEdgesInOneLine(GlyphStrokes strokes) {
    for (std::size_t at = 0; at < strokes.size(); ++at) {
        const GlyphStroke& edge = strokes[at];
        EXPECT_NE(edge.fromX == edge.toX, edge.fromY == edge.toY) << at;
        if (at == 0) continue;
        EXPECT_EQ(edge.fromX, strokes[at - 1].toX) << at;
        EXPECT_EQ(edge.fromY, strokes[at - 1].toY) << at;
    }
}

PixelRect ExtentOfStrokes(GlyphStrokes strokes) {
    PixelRect extent{16, 16, 0, 0};
    for (const auto& [fromX, fromY, toX, toY] : strokes)
        extent = {std::min({extent.left, fromX, toX}), std::min({extent.top, fromY, toY}),
                  std::max({extent.right, fromX, toX}), std::max({extent.bottom, fromY, toY})};
    return extent;
}

void ExpectClosedSquare(GlyphStrokes strokes) {
    ASSERT_EQ(strokes.size(), 4u);
    ExpectEdgesInOneLine(strokes);
    EXPECT_EQ(strokes.back().toX, strokes.front().fromX);
    EXPECT_EQ(strokes.back().toY, strokes.front().fromY);
    EXPECT_EQ(ExtentOfStrokes(strokes).Width(), ExtentOfStrokes(strokes).Height());
}

TEST(MenuGlyphs, AWindowsOwnCommandsHaveTheirSigns) {
    EXPECT_EQ(GlyphOfCommand(0xf060), MenuGlyph::Close);
    EXPECT_EQ(GlyphOfCommand(0xf020), MenuGlyph::Minimize);
    EXPECT_EQ(GlyphOfCommand(0xf030), MenuGlyph::Maximize);
    EXPECT_EQ(GlyphOfCommand(0xf120), MenuGlyph::Restore);
    EXPECT_EQ(GlyphOfCommand(0xf010), MenuGlyph::None) << "moving has none";
    EXPECT_EQ(GlyphOfCommand(40001), MenuGlyph::None);
    EXPECT_EQ(GlyphOfCommand(0), MenuGlyph::None);
}

TEST(MenuGlyphs, EachSignLiesWithinItsBox) {
    for (const MenuGlyph glyph :
         {MenuGlyph::Check, MenuGlyph::Close, MenuGlyph::Minimize, MenuGlyph::Maximize, MenuGlyph::Restore}) {
        EXPECT_FALSE(StrokesOf(glyph).empty());
        for (const GlyphStroke& stroke : StrokesOf(glyph)) {
            const PixelRect place = StrokeIn({100, 200, 132, 232}, stroke);
            for (const int x : {place.left, place.right}) EXPECT_TRUE(x >= 100 && x < 132) << x;
            for (const int y : {place.top, place.bottom}) EXPECT_TRUE(y >= 200 && y < 232) << y;
        }
    }
    EXPECT_TRUE(StrokesOf(MenuGlyph::None).empty());
    EXPECT_TRUE(StrokesOf(MenuGlyph::Bullet).empty()) << "a disc";
}

TEST(MenuGlyphs, AWindowThatFillsTheScreenIsASquare) {
    ExpectClosedSquare(StrokesOf(MenuGlyph::Maximize));
}

TEST(MenuGlyphs, AWindowOfItsFormerSizeIsASquareBeforeTheEdgesOfAnother) {
    const GlyphStrokes strokes = StrokesOf(MenuGlyph::Restore);
    ASSERT_EQ(strokes.size(), 8u);
    const GlyphStrokes front = strokes.first(4), behind = strokes.last(4);
    ExpectClosedSquare(front);
    ExpectEdgesInOneLine(behind);
    const PixelRect square = ExtentOfStrokes(front), other = ExtentOfStrokes(behind);
    EXPECT_EQ(behind.front().fromY, square.top) << "it comes out from behind the upper edge";
    EXPECT_EQ(behind.back().toX, square.right) << "and goes in again behind the right one";
    EXPECT_EQ(other.Width(), square.Width());
    EXPECT_EQ(other.Height(), square.Height());
    EXPECT_EQ(other.left - square.left, square.top - other.top);
}

TEST(MenuGlyphs, ClosingIsTheCrossOfASquaresDiagonals) {
    const GlyphStrokes strokes = StrokesOf(MenuGlyph::Close);
    ASSERT_EQ(strokes.size(), 2u);
    const GlyphStroke &falling = strokes[0], &rising = strokes[1];
    EXPECT_EQ(falling.toX - falling.fromX, falling.toY - falling.fromY);
    EXPECT_EQ(PixelRect({rising.toX, rising.fromY, rising.fromX, rising.toY}),
              PixelRect({falling.fromX, falling.fromY, falling.toX, falling.toY}));
}

TEST(MenuGlyphs, ACheckIsAShortStrokeDownAndALongOneUp) {
    const GlyphStrokes strokes = StrokesOf(MenuGlyph::Check);
    ASSERT_EQ(strokes.size(), 2u);
    const GlyphStroke &down = strokes[0], &up = strokes[1];
    EXPECT_EQ(up.fromX, down.toX);
    EXPECT_EQ(up.fromY, down.toY);
    EXPECT_EQ(down.toX - down.fromX, down.toY - down.fromY) << "at half a right angle";
    EXPECT_LT(up.toY, down.fromY);
}

TEST(MenuGlyphs, SignsThatFillTheirBoxAreOfOneWidth) {
    for (const MenuGlyph glyph : {MenuGlyph::Check, MenuGlyph::Close, MenuGlyph::Maximize, MenuGlyph::Restore}) {
        EXPECT_EQ(ExtentOfStrokes(StrokesOf(glyph)).left, 4);
        EXPECT_EQ(ExtentOfStrokes(StrokesOf(glyph)).right, 12);
        EXPECT_EQ(ExtentOfStrokes(StrokesOf(glyph)).top, 4);
    }
}

TEST(MenuGlyphs, ASignGrowsWithItsBox) {
    EXPECT_EQ(StrokeIn({0, 0, 16, 16}, {4, 8, 7, 11}), (PixelRect{4, 8, 7, 11}));
    EXPECT_EQ(StrokeIn({10, 20, 42, 52}, {4, 8, 7, 11}), (PixelRect{18, 36, 24, 42}));
}

}  // namespace
}  // namespace vardel

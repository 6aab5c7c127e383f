#include "toolkit/MenuGlyphs.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

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

TEST(MenuGlyphs, ASignGrowsWithItsBox) {
    EXPECT_EQ(StrokeIn({0, 0, 16, 16}, {4, 8, 7, 11}), (PixelRect{4, 8, 7, 11}));
    EXPECT_EQ(StrokeIn({10, 20, 42, 52}, {4, 8, 7, 11}), (PixelRect{18, 36, 24, 42}));
}

}  // namespace
}  // namespace vardel

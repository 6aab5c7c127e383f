#include "toolkit/ColorBarLayout.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(ColorBarLayout, IconAndTextStandAtTheLeftAndInTheMiddle) {
    const ColorBarParts parts = LayOutColorBar({300, 24}, 80, 16, 96);
    EXPECT_EQ(parts.icon, (PixelRect{6, 4, 22, 20}));
    EXPECT_EQ(parts.text, (PixelRect{28, 0, 294, 24}));
    EXPECT_EQ(parts.gradientStart, 28 + 80 + 6) << "the text is on the bar's own colour";
}

TEST(ColorBarLayout, WithoutAnIconTheTextTakesItsPlace) {
    const ColorBarParts parts = LayOutColorBar({300, 24}, 80, 0, 96);
    EXPECT_EQ(parts.icon.Width(), 0);
    EXPECT_EQ(parts.text.left, 6);
}

TEST(ColorBarLayout, ALongTextLeavesAQuarterToTheGradient) {
    EXPECT_EQ(LayOutColorBar({300, 24}, 1000, 16, 96).gradientStart, 225);
}

TEST(ColorBarLayout, ATinyBarHasNoNegativeParts) {
    const ColorBarParts parts = LayOutColorBar({4, 4}, 100, 16, 96);
    EXPECT_GE(parts.text.Width(), 0);
    EXPECT_EQ(parts.gradientStart, 3);
    EXPECT_EQ(LayOutColorBar({0, 0}, 0, 0, 192).gradientStart, 0);
}

}  // namespace
}  // namespace vardel

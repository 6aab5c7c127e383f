#include "frame/HlsColor.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

// What ColorRGBToHLS and ColorHLSToRGB of shlwapi.dll gave.
struct FromRgb {
    Color color;
    HlsColor hls;
};
constexpr FromRgb kFromRgb[] = {
    {{180, 196, 228}, {147, 192, 113}},
    {{100, 0, 0}, {0, 47, 240}},
    {{22, 122, 233}, {141, 120, 199}},
    {{0, 0, 128}, {160, 60, 240}},
    {{255, 110, 40}, {13, 139, 240}},
    {{140, 140, 140}, {160, 132, 0}},
    {{255, 255, 255}, {160, 240, 0}},
    {{0, 0, 0}, {160, 0, 0}},
    {{1, 2, 3}, {140, 2, 120}},
    {{0, 255, 0}, {80, 120, 240}},
    {{10, 250, 130}, {100, 122, 230}},
    {{51, 153, 255}, {140, 144, 240}},
    {{254, 255, 255}, {120, 240, 240}},
    {{128, 0, 255}, {180, 120, 240}},
    {{7, 7, 9}, {160, 8, 30}},
};
struct FromHls {
    HlsColor hls;
    Color color;
};
constexpr FromHls kFromHls[] = {
    {{0, 197, 240}, {255, 164, 164}},
    {{120, 120, 120}, {64, 191, 191}},
    {{240, 100, 200}, {194, 18, 18}},
    {{239, 37, 240}, {79, 0, 2}},
    {{160, 227, 0}, {241, 241, 241}},
    {{13, 200, 77}, {226, 207, 199}},
    {{40, 60, 1}, {64, 64, 64}},
    {{80, 180, 240}, {128, 255, 128}},
    {{200, 0, 240}, {0, 0, 0}},
    {{200, 240, 240}, {255, 255, 255}},
};

TEST(HlsColors, AreThoseOfTheSystemsFunctions) {
    for (const FromRgb& row : kFromRgb)
        EXPECT_EQ(HlsOf(row.color), row.hls) << int{row.color.red} << " " << int{row.color.green};
    for (const FromHls& row : kFromHls) EXPECT_EQ(ColorOf(row.hls), row.color) << row.hls.hue;
}

TEST(HlsColors, StayOnTheirScale) {
    for (int red = 0; red < 256; red += 5)
        for (int green = 0; green < 256; green += 5)
            for (int blue = 0; blue < 256; blue += 5) {
                const HlsColor hls = HlsOf({static_cast<u8>(red), static_cast<u8>(green), static_cast<u8>(blue)});
                ASSERT_TRUE(hls.hue >= 0 && hls.hue <= kHlsMax);
                ASSERT_TRUE(hls.luminance >= 0 && hls.luminance <= kHlsMax);
                ASSERT_TRUE(hls.saturation >= 0 && hls.saturation <= kHlsMax);
            }
}

}  // namespace
}  // namespace vardel

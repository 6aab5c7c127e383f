#include <gtest/gtest.h>

#include "frame/HlsColor.h"
#include "platform/WindowsApi.h"

#include <shlwapi.h>

namespace vardel {
namespace {

// The colours that popups use come from all over the cube; every seventh of each part is looked at.
TEST(HlsColorsOfTheSystem, AreTheSameForEveryColor) {
    for (int red = 0; red < 256; red += 7)
        for (int green = 0; green < 256; green += 7)
            for (int blue = 0; blue < 256; blue += 7) {
                WORD hue = 0, luminance = 0, saturation = 0;
                ColorRGBToHLS(RGB(red, green, blue), &hue, &luminance, &saturation);
                const HlsColor ours = HlsOf({static_cast<u8>(red), static_cast<u8>(green), static_cast<u8>(blue)});
                ASSERT_EQ(ours, (HlsColor{hue, luminance, saturation})) << red << " " << green << " " << blue;
            }
}

TEST(HlsColorsOfTheSystem, AreTheSameForEveryHue) {
    for (int hue = 0; hue <= kHlsMax; hue += 3)
        for (int luminance = 0; luminance <= kHlsMax; luminance += 3)
            for (int saturation = 0; saturation <= kHlsMax; saturation += 3) {
                const COLORREF theirs = ColorHLSToRGB(static_cast<WORD>(hue), static_cast<WORD>(luminance),
                                                      static_cast<WORD>(saturation));
                const Color ours = ColorOf({hue, luminance, saturation});
                ASSERT_EQ(ours, (Color{GetRValue(theirs), GetGValue(theirs), GetBValue(theirs)}))
                    << hue << " " << luminance << " " << saturation;
            }
}

}  // namespace
}  // namespace vardel

// Hue, luminance and saturation of a colour, each from 0 to 240, in whole numbers.
//
// The same numbers as the Windows functions ColorRGBToHLS and ColorHLSToRGB give, rounding included, so that a popup
// has the same colours wherever it is drawn. Functions of values.
#pragma once

#include "capture/NotifyPopup.h"

namespace vardel {

struct HlsColor {
    i32 hue = 0, luminance = 0, saturation = 0;
    bool operator==(const HlsColor&) const = default;
};

constexpr i32 kHlsMax = 240;
constexpr i32 kHueOfGrey = 160;  // a colour without saturation has no hue; this number stands for it

HlsColor HlsOf(Color color);
Color ColorOf(HlsColor color);

}  // namespace vardel

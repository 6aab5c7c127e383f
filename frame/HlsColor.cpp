#include "frame/HlsColor.h"

#include <algorithm>

namespace vardel {

namespace {

constexpr i32 kRgbMax = 255;

// Saturation from the spread of the three parts, rounded.
i32 SaturationOf(i32 spread, i32 sum, i32 luminance) {
    const i32 room = luminance <= kHlsMax / 2 ? sum : 2 * kRgbMax - sum;
    return (spread * kHlsMax + room / 2) / room;
}

// The part of the colour circle that lies at `hue`, between the low and the high value.
i32 PartOf(i32 low, i32 high, i32 hue) {
    constexpr i32 kSixth = kHlsMax / 6;
    if (hue < 0) hue += kHlsMax;
    if (hue > kHlsMax) hue -= kHlsMax;
    if (hue < kSixth) return low + ((high - low) * hue + kSixth / 2) / kSixth;
    if (hue < kHlsMax / 2) return high;
    if (hue < kHlsMax * 2 / 3) return low + ((high - low) * (kHlsMax * 2 / 3 - hue) + kSixth / 2) / kSixth;
    return low;
}

u8 ByteOf(i32 part) { return static_cast<u8>((part * kRgbMax + kHlsMax / 2) / kHlsMax); }

}  // namespace

HlsColor HlsOf(Color color) {
    const i32 red = color.red, green = color.green, blue = color.blue;
    const i32 most = std::max({red, green, blue}), least = std::min({red, green, blue});
    const i32 sum = most + least, spread = most - least;
    HlsColor hls;
    hls.luminance = (sum * kHlsMax + kRgbMax) / (2 * kRgbMax);
    if (spread == 0) {
        hls.hue = kHueOfGrey;
        return hls;
    }
    hls.saturation = SaturationOf(spread, sum, hls.luminance);
    const auto away = [&](i32 part) { return ((most - part) * (kHlsMax / 6) + spread / 2) / spread; };
    if (red == most) hls.hue = away(blue) - away(green);
    else if (green == most) hls.hue = kHlsMax / 3 + away(red) - away(blue);
    else hls.hue = kHlsMax * 2 / 3 + away(green) - away(red);
    if (hls.hue < 0) hls.hue += kHlsMax;
    if (hls.hue > kHlsMax) hls.hue -= kHlsMax;
    return hls;
}

Color ColorOf(HlsColor color) {
    const i32 luminance = color.luminance, saturation = color.saturation;
    if (saturation == 0) {
        const auto grey = static_cast<u8>(luminance * kRgbMax / kHlsMax);
        return {grey, grey, grey};
    }
    const i32 high = luminance <= kHlsMax / 2
                         ? (luminance * (kHlsMax + saturation) + kHlsMax / 2) / kHlsMax
                         : luminance + saturation - (luminance * saturation + kHlsMax / 2) / kHlsMax;
    const i32 low = 2 * luminance - high;
    return {ByteOf(PartOf(low, high, color.hue + kHlsMax / 3)), ByteOf(PartOf(low, high, color.hue)),
            ByteOf(PartOf(low, high, color.hue - kHlsMax / 3))};
}

}  // namespace vardel

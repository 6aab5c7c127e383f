#include "toolkit/ColorSteps.h"

#include <algorithm>

namespace vardel {

namespace {

// Weights of ITU-R BT.601 for red, green and blue, of 1000.
u32 Luma(u32 red, u32 green, u32 blue) {
    return (299 * red + 587 * green + 114 * blue + 500) / 1000;
}

u32 Between(u32 start, u32 end, int step, int last) {
    const int difference = static_cast<int>(end) - static_cast<int>(start);
    const int half = difference < 0 ? -last / 2 : last / 2;
    return static_cast<u32>(static_cast<int>(start) + (difference * step + half) / last);
}

}  // namespace

u32 GradientColor(u32 start, u32 end, int step, int steps) {
    const int last = steps - 1;
    if (last < 1 || step <= 0) return start;
    const int at = std::min(step, last);
    return MakeColor(Between(RedOf(start), RedOf(end), at, last),
                     Between(GreenOf(start), GreenOf(end), at, last),
                     Between(BlueOf(start), BlueOf(end), at, last));
}

u32 Brightness(u32 color) {
    return Luma(RedOf(color), GreenOf(color), BlueOf(color));
}

u32 TextColorOn(u32 background) {
    return Brightness(background) < 140 ? MakeColor(255, 255, 255) : 0;
}

u32 GreyPixel(u32 pixel) {
    const u32 grey = Luma(pixel >> 16 & 0xff, pixel >> 8 & 0xff, pixel & 0xff);
    return (pixel & 0xff000000u) | grey << 16 | grey << 8 | grey;
}

}  // namespace vardel

// Colours that the toolkit's drawing computes: gradients, mixtures, legible text, grey pictures.
//
// A colour is a number 0x00BBGGRR, as the system's drawing calls take it.
#pragma once

#include "platform/Types.h"

namespace vardel {

constexpr u32 MakeColor(u32 red, u32 green, u32 blue) {
    return red | green << 8 | blue << 16;
}
constexpr u32 RedOf(u32 color) {
    return color & 0xff;
}
constexpr u32 GreenOf(u32 color) {
    return color >> 8 & 0xff;
}
constexpr u32 BlueOf(u32 color) {
    return color >> 16 & 0xff;
}

// The colour at `step` of a ramp of `steps` steps: `start` at 0, `end` at steps - 1 and beyond. A ramp of one
// step has its start's colour.
u32 GradientColor(u32 start, u32 end, int step, int steps);

// How bright a colour looks, 0 (black) to 255 (white).
u32 Brightness(u32 color);

// Black or white, whichever is the better to read on `background`.
u32 TextColorOn(u32 background);

// A pixel 0xAARRGGBB without its hue; its opacity stays.
u32 GreyPixel(u32 pixel);

}  // namespace vardel

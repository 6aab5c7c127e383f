// The signs of a menu: marks, and those of a window's own commands. They are drawn by strokes, since the font
// that has them is not on every system.
#pragma once

#include <span>

#include "platform/Types.h"
#include "toolkit/PixelRect.h"

namespace vardel {

enum class MenuGlyph { None, Check, Bullet, Close, Minimize, Maximize, Restore };

// Of a command of the system menu; None for any other.
MenuGlyph GlyphOfCommand(u32 command);

// A line from one point of a grid of 16 x 16 to another. A bullet has none: it is a disc.
struct GlyphStroke {
    int fromX, fromY, toX, toY;
};
std::span<const GlyphStroke> StrokesOf(MenuGlyph glyph);

// A stroke's place in a square box; `from` is the top left corner's place in it.
PixelRect StrokeIn(const PixelRect& box, const GlyphStroke& stroke);

}  // namespace vardel

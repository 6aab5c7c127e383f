// What a popup's window paints behind its text, as a list of rectangles and lines in their order.
//
// Functions of values: a window of any system carries the list out. A rectangle is filled and has a frame one pixel
// wide in the pen's colour; a line ends before its last point.
#pragma once

#include <vector>

#include "frame/PopupLook.h"
#include "frame/PopupPlacement.h"

namespace vardel {

struct PaintStep {
    enum class Kind { Rectangle, Line };
    Kind kind;
    Color pen;
    Color fill;      // of a rectangle
    PixelRect area;  // of a line: from left, top to right, bottom
    bool operator==(const PaintStep&) const = default;
};

// Frame, grip strip and grip marks, then the body as the look says.
std::vector<PaintStep> PaintingOf(const PopupLook& look, i32 width, i32 height);

// The 21 colours of the ramp from top to bottom. The border's colour alone decides them.
constexpr int kRampBands = 21;
std::vector<Color> RampColors(Color border);

// The colour of column `column` of `columns` between both ends.
Color GradientColor(Color left, Color right, i32 column, i32 columns);

}  // namespace vardel

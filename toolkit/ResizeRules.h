// Where the controls of a resizable dialog go, and which sizes and places a window may have.
#pragma once

#include "toolkit/PixelRect.h"

namespace vardel {

// Bits of a control's resize flags. A control with neither edge stays where it is.
constexpr int kFollowsBottomEdge = 128;
constexpr int kFollowsRightEdge = 64;
constexpr int kGrowsWithEdges = 1;  // the edges move its far sides and leave its near ones

// The place of a control that stood at `original` when the dialog's client area was smaller by `growth`
// (negative values: larger). A control never gets a negative size.
PixelRect ResizedControl(const PixelRect& original, int flags, PixelSize growth);

// Each measure at least that of `minimum`.
PixelSize AtLeast(PixelSize size, PixelSize minimum);

// `window` moved, and where it is larger cut, so that it lies within `work`.
PixelRect MovedInto(const PixelRect& window, const PixelRect& work);

}  // namespace vardel

// Where the parts of a colour bar go.
#pragma once

#include "toolkit/PixelRect.h"

namespace vardel {

struct ColorBarParts {
    PixelRect icon;  // of no width without one
    PixelRect text;
    int gradientStart;  // left of it the bar has its first colour throughout, so that the text stays legible
};

// `textWidth` as it is drawn; `iconEdge` 0 without an icon. All in pixels of a display of `dpi`.
ColorBarParts LayOutColorBar(PixelSize bar, int textWidth, int iconEdge, int dpi);

}  // namespace vardel

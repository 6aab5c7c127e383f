#include "toolkit/ColorBarLayout.h"

#include <algorithm>

namespace vardel {

ColorBarParts LayOutColorBar(PixelSize bar, int textWidth, int iconEdge, int dpi) {
    const int margin = ScaledForDpi(6, dpi);
    ColorBarParts parts{};
    const int iconTop = (bar.height - iconEdge) / 2;
    parts.icon = {margin, iconTop, margin + iconEdge, iconTop + iconEdge};
    const int left = iconEdge > 0 ? parts.icon.right + margin : margin;
    parts.text = {left, 0, std::max(left, bar.width - margin), bar.height};
    // At least a quarter of the bar fades, however long the text is.
    parts.gradientStart = std::clamp(left + textWidth + margin, 0, bar.width - bar.width / 4);
    return parts;
}

}  // namespace vardel

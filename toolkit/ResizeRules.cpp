#include "toolkit/ResizeRules.h"

#include <algorithm>

namespace vardel {

PixelRect ResizedControl(const PixelRect& original, int flags, PixelSize growth) {
    const int right = flags & kFollowsRightEdge ? growth.width : 0;
    const int down = flags & kFollowsBottomEdge ? growth.height : 0;
    PixelRect place = original;
    place.right += right;
    place.bottom += down;
    if (!(flags & kGrowsWithEdges)) {
        place.left += right;
        place.top += down;
    }
    place.right = std::max(place.left, place.right);
    place.bottom = std::max(place.top, place.bottom);
    return place;
}

PixelSize AtLeast(PixelSize size, PixelSize minimum) {
    return {std::max(size.width, minimum.width), std::max(size.height, minimum.height)};
}

PixelRect MovedInto(const PixelRect& window, const PixelRect& work) {
    const int width = std::min(window.Width(), work.Width());
    const int height = std::min(window.Height(), work.Height());
    const int left = std::clamp(window.left, work.left, work.right - width);
    const int top = std::clamp(window.top, work.top, work.bottom - height);
    return {left, top, left + width, top + height};
}

}  // namespace vardel

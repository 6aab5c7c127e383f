#include "frame/PopupPlacement.h"

namespace vardel {

namespace {

constexpr i32 kGap = 5;  // to the edge of the desktop
constexpr i32 kSideMargin = 15;
constexpr i32 kTopMargin = 19;
constexpr i32 kExtraHeight = 28;

}  // namespace

// Later answers take precedence over earlier ones; the order decides for a work area that fits several.
TaskbarEdge FindTaskbarEdge(const DesktopMeasures& desktop) {
    const PixelRect& area = desktop.workArea;
    if (area.Width() != desktop.screenWidth && area.left == 0 && area.bottom == desktop.screenHeight)
        return TaskbarEdge::Right;
    if (area.left != 0 && area.top == 0) return TaskbarEdge::Left;
    if (area.left == 0 && area.top != 0) return TaskbarEdge::Top;
    if (area.Width() == desktop.maximizedWidth && area.bottom < desktop.screenHeight) return TaskbarEdge::Bottom;
    return TaskbarEdge::NotFound;
}

PopupExtent ExtentForText(i32 textWidth, i32 textHeight) {
    return {textWidth + 2 * kSideMargin, textHeight + kExtraHeight,
            {kSideMargin, kTopMargin, textWidth + kSideMargin, textHeight + kTopMargin}};
}

PopupPoint PlacePopup(const PixelRect& workArea, TaskbarEdge taskbar, bool atTheEdge, i32 width, i32 height) {
    // Wanted: the half of the work area's size, wherever the area begins.
    if (!atTheEdge) return {workArea.Width() / 2 - width / 2, workArea.Height() / 2 - height / 2};
    const i32 right = workArea.right - width - kGap, bottom = workArea.bottom - height - kGap;
    switch (taskbar) {
        case TaskbarEdge::Top: return {right, workArea.top};  // wanted: no gap above
        case TaskbarEdge::Bottom:
        case TaskbarEdge::Right: return {right, bottom};
        case TaskbarEdge::Left: return {workArea.left, bottom};
        case TaskbarEdge::NotFound: break;
    }
    return {};
}

}  // namespace vardel

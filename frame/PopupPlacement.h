// Where a notification popup goes and how large it is. Functions of values; all numbers are pixels.
#pragma once

#include "platform/Types.h"
#include "toolkit/PixelRect.h"

namespace vardel {

struct PopupPoint {
    i32 x = 0, y = 0;
    bool operator==(const PopupPoint&) const = default;
};

// The desktop as the system tells it.
struct DesktopMeasures {
    PixelRect workArea;
    i32 maximizedWidth = 0;  // client area of a window that fills the screen
    i32 screenWidth = 0;
    i32 screenHeight = 0;
};

enum class TaskbarEdge : u32 { NotFound = 0, Top = 500, Bottom = 501, Left = 502, Right = 503 };
TaskbarEdge FindTaskbarEdge(const DesktopMeasures& desktop);

// A popup as large as its text asks for.
struct PopupExtent {
    i32 width = 0, height = 0;
    PixelRect text;  // inside the window
    bool operator==(const PopupExtent&) const = default;
};
PopupExtent ExtentForText(i32 textWidth, i32 textHeight);

// The window's upper left corner.
PopupPoint PlacePopup(const PixelRect& workArea, TaskbarEdge taskbar, bool atTheEdge, i32 width, i32 height);

}  // namespace vardel

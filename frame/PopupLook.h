// PopupLook: how a notification popup looks and how long it stays, and the rules by which it is set.
//
// A value, part of a popup object; main thread.
#pragma once

#include "capture/NotifyPopup.h"

namespace vardel {

struct PopupLook {
    // As a new popup has them.
    Color left{180, 196, 228};
    Color right{112, 141, 203};
    Color text{0, 0, 128};
    Color border{0, 0, 128};
    i32 displayTimeMs = 5000;  // or kUntilClicked
    bool atTheEdge = true;     // false: in the middle of the desktop
    bool ramp = true;          // background from the border's colour; false: gradient of left and right
    i32 fontPoints = 8;
    i32 fontWeight = 500;
    bool fontDirty = false;  // once set the font is made anew for each text

    // Wanted: black stands for "none", so no popup has a black left end.
    void SetColors(Color newLeft, Color newRight, Color newText, Color newBorder);
    // Wanted: exactly a second counts as too short, too.
    void SetDisplayTime(i32 milliseconds);
    void SetFont(i32 points, i32 weight);
    // Differs from a new popup in the left colour.
    void Reset();

    bool StaysUntilClicked() const { return displayTimeMs == kUntilClicked; }
};

}  // namespace vardel

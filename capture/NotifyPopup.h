// NotifyPopup: a small window that fades in, tells one text for a while and fades out again.
//
// A frame makes these and lends them out; everything runs on the main thread. An object shows one text at a time and
// has no queue: whoever has something to tell asks IsShowing first and keeps its data for later.
#pragma once

#include "platform/Types.h"

namespace vardel {

struct Color {
    u8 red = 0, green = 0, blue = 0;
    bool operator==(const Color&) const = default;
};

// A display time that lasts until the popup is clicked.
constexpr i32 kUntilClicked = -1;

class NotifyPopup {
  public:
    virtual ~NotifyPopup() = default;

    virtual bool IsShowing() const = 0;

    // Colours, display time (5000 ms), place (at the edge), background (ramp) and font (8 points, weight 500) as they
    // are by default.
    virtual void Reset() = 0;
    // `left` and `right` end the background's gradient. Black can't be one of them: a black left end stands for
    // (180,196,228), a black right end for the left colour.
    virtual void SetColors(Color left, Color right, Color text, Color border) = 0;
    // kUntilClicked, or more than 1000; any other value gives 5000.
    virtual void SetDisplayTime(i32 milliseconds) = 0;
    virtual void SetCorner(bool atTheEdge) = 0;  // false: in the middle of the desktop
    virtual void SetRamp(bool ramp) = 0;         // false: the gradient of the two colours
    virtual void SetFont(i32 points, i32 weight) = 0;

    // `text` may hold line feeds and tabs. It doesn't look whether another text is showing. False when there is no
    // window for it.
    virtual bool Show(const char* text) = 0;
};

// The popups' looks as the program sets them up, each told by its owner once. The host popup stays as it was made:
// every alert sets it anew.
void SetUpWatchPopup(NotifyPopup& popup);
void SetUpSyslogPopup(NotifyPopup& popup);

// The notice of the start that there are updates: the popup's look, then the text, unless it is showing one.
void ShowUpdateNotice(NotifyPopup& popup, const char* text);

}  // namespace vardel

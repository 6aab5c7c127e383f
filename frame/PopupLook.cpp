#include "frame/PopupLook.h"

namespace vardel {

namespace {

constexpr Color kBlack{0, 0, 0};
constexpr Color kLightBlue{180, 196, 228};
constexpr i32 kDisplayTimeMs = 5000;
constexpr i32 kShortestTimeMs = 1000;  // itself excluded

}  // namespace

void PopupLook::SetColors(Color newLeft, Color newRight, Color newText, Color newBorder) {
    left = newLeft == kBlack ? kLightBlue : newLeft;
    right = newRight == kBlack ? left : newRight;
    text = newText;
    border = newBorder;
}

void PopupLook::SetDisplayTime(i32 milliseconds) {
    const bool taken = milliseconds == kUntilClicked || milliseconds > kShortestTimeMs;
    displayTimeMs = taken ? milliseconds : kDisplayTimeMs;
}

void PopupLook::SetFont(i32 points, i32 weight) {
    if (points != fontPoints || weight != fontWeight) fontDirty = true;
    fontPoints = points;
    fontWeight = weight;
}

void PopupLook::Reset() {
    const PopupLook fresh;
    SetColors({255, 255, 255}, fresh.right, fresh.text, fresh.border);
    displayTimeMs = fresh.displayTimeMs;
    atTheEdge = fresh.atTheEdge;
    ramp = fresh.ramp;
    SetFont(fresh.fontPoints, fresh.fontWeight);
}

}  // namespace vardel

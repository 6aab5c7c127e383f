#include "capture/NotifyPopup.h"

namespace vardel {

namespace {

constexpr i32 kPoints = 10;
constexpr i32 kBold = 700;
constexpr i32 kDisplayTimeMs = 5000;
constexpr Color kBlack{0, 0, 0};
constexpr Color kWhite{255, 255, 255};

}  // namespace

void SetUpWatchPopup(NotifyPopup& popup) {
    popup.SetCorner(false);
    popup.SetFont(kPoints, kBold);
    popup.SetDisplayTime(kUntilClicked);
}

void SetUpSyslogPopup(NotifyPopup& popup) {
    popup.SetCorner(true);
    popup.SetFont(kPoints, kBold);
    popup.SetColors(kWhite, kWhite, kBlack, {255, 110, 40});
    popup.SetDisplayTime(kDisplayTimeMs);
}

void ShowUpdateNotice(NotifyPopup& popup, const char* text) {
    popup.SetDisplayTime(kDisplayTimeMs);
    popup.SetRamp(true);
    popup.SetCorner(true);
    popup.SetColors({220, 220, 220}, {160, 160, 160}, {50, 105, 0}, {140, 140, 140});
    popup.SetFont(kPoints, kBold);
    if (!popup.IsShowing()) popup.Show(text);
}

}  // namespace vardel

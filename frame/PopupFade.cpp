#include "frame/PopupFade.h"

#include <algorithm>

#include "capture/NotifyPopup.h"

namespace vardel {

namespace {

constexpr i32 kStep = 2;

}  // namespace

PopupStep PopupFade::OnTimer(u32 timer, i32 displayTimeMs) {
    switch (timer) {
        case kFadeInTimer: return FadeIn(displayTimeMs);
        case kFadeOutTimer: return FadeOut();
        case kHoldTimer: {
            PopupStep step;
            step.kill = kHoldTimer;
            step.start = {kFadeOutTimer, kFadePeriodMs};
            return step;
        }
        default: return {};
    }
}

PopupStep PopupFade::FadeIn(i32 displayTimeMs) {
    PopupStep step;
    if (canFade_) {
        step.showFirst = opacity_ == 0;
        opacity_ = std::min(opacity_ + kStep, kMostOpaque);
        step.opacity = opacity_;
        if (opacity_ < kMostOpaque) return step;
    }
    step.kill = kFadeInTimer;
    if (displayTimeMs != kUntilClicked) step.start = {kHoldTimer, static_cast<u32>(displayTimeMs)};
    return step;
}

PopupStep PopupFade::FadeOut() {
    PopupStep step;
    if (canFade_) {
        opacity_ = std::max(opacity_ - kStep, 0);
        step.opacity = opacity_;
        if (opacity_ > 0) return step;
    }
    step.kill = kFadeOutTimer;
    step.destroy = true;
    return step;
}

// A fade in that is under way ends here: the two would hold each other up for ever.
PopupStep PopupFade::OnClose() const {
    PopupStep step;
    step.kill = kFadeInTimer;
    step.start = {kFadeOutTimer, kFadePeriodMs};
    return step;
}

}  // namespace vardel

// PopupFade: the life of a popup's window as its timers see it. Fades in, stays, fades out.
//
// Told of each timer that fires and of a close request, it answers with what the window has to do. It knows neither
// windows nor clocks; main thread.
#pragma once

#include <optional>

#include "platform/Types.h"

namespace vardel {

enum PopupTimer : u32 { kFadeInTimer = 10005, kFadeOutTimer = 10006, kHoldTimer = 10007 };

constexpr u32 kFadePeriodMs = 5;
constexpr i32 kMostOpaque = 200;  // of 255

// In this order: the opacity, showing, killing the timer, starting another, destroying.
struct PopupStep {
    struct Start {
        u32 timer, periodMs;
        bool operator==(const Start&) const = default;
    };
    bool showFirst = false;         // the window is invisible: its opacity becomes 0, then it is shown
    std::optional<i32> opacity;     // of 255
    std::optional<u32> kill;        // timer
    std::optional<Start> start;
    bool destroy = false;
    bool operator==(const PopupStep&) const = default;
};

class PopupFade {
  public:
    // `canFade`: the system has layered windows. Without them the window is never shown, but lives its time.
    explicit PopupFade(bool canFade) : canFade_(canFade) {}

    // A window begins, or has gone.
    void Begin() { opacity_ = 0; }

    // `displayTimeMs` as in PopupLook. A number that is none of PopupTimer asks for nothing.
    PopupStep OnTimer(u32 timer, i32 displayTimeMs);

    // The window is asked to close: it fades out.
    PopupStep OnClose() const;

    i32 Opacity() const { return opacity_; }

  private:
    PopupStep FadeIn(i32 displayTimeMs);
    PopupStep FadeOut();

    const bool canFade_;
    i32 opacity_ = 0;
};

}  // namespace vardel

// TimerQueue: which of a frame's periodic timers are due, as a function of the moments it is handed.
//
// Used by one thread, the frame's. Times are milliseconds of any clock that never runs backwards. A timer that
// fell behind is due once, not once for every period that it missed.
#pragma once

#include <optional>
#include <vector>

#include "platform/Types.h"

namespace vardel {

class TimerQueue {
  public:
    // Starts the timer `id`, first due one period from `nowMs`; a timer of that id begins anew. A period of 0 counts
    // as 1 ms.
    void Arm(u32 id, u64 periodMs, u64 nowMs);
    // False when no such timer runs.
    bool Kill(u32 id);

    // Milliseconds until the next timer is due, 0 when one is, at most `limitMs`.
    u32 UntilNext(u64 nowMs, u32 limitMs) const;
    // The due timer that has waited longest, which then starts its next period; nothing when none is due.
    std::optional<u32> TakeDue(u64 nowMs);

  private:
    struct Timer {
        u32 id;
        u64 periodMs;
        u64 dueMs;
    };
    std::vector<Timer> timers_;
};

}  // namespace vardel

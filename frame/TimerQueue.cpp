#include "frame/TimerQueue.h"

#include <algorithm>

namespace vardel {

void TimerQueue::Arm(u32 id, u64 periodMs, u64 nowMs) {
    Kill(id);
    const u64 period = std::max<u64>(periodMs, 1);
    timers_.push_back({id, period, nowMs + period});
}

bool TimerQueue::Kill(u32 id) {
    return std::erase_if(timers_, [id](const Timer& timer) { return timer.id == id; }) > 0;
}

u32 TimerQueue::UntilNext(u64 nowMs, u32 limitMs) const {
    u64 wait = limitMs;
    for (const Timer& timer : timers_) wait = std::min(wait, timer.dueMs > nowMs ? timer.dueMs - nowMs : 0);
    return static_cast<u32>(wait);
}

std::optional<u32> TimerQueue::TakeDue(u64 nowMs) {
    const auto next = std::min_element(timers_.begin(), timers_.end(),
                                       [](const Timer& a, const Timer& b) { return a.dueMs < b.dueMs; });
    if (next == timers_.end() || next->dueMs > nowMs) return std::nullopt;
    // Keeps to its beat; periods that were missed altogether are left out.
    next->dueMs += next->periodMs * ((nowMs - next->dueMs) / next->periodMs + 1);
    return next->id;
}

}  // namespace vardel

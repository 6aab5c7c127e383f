#include "frame/HeadlessFrame.h"

#include <algorithm>
#include <chrono>

#include "capture/SyslogPurge.h"
#include "foundation/TcTrace.h"
#include "frame/EngineDeeds.h"

namespace vardel {

namespace {

// The frame's own; the numbers of the ticks begin at 10000.
constexpr u32 kPrintTimer = 1;
constexpr u64 kPrintPeriodMs = 200;
constexpr u32 kPurgeTimer = 2;
constexpr u64 kPurgePeriodMs = 5000;
// A period of 0 must not keep the loop busy; other systems' timers have the same shortest period.
constexpr u64 kShortestPeriodMs = 10;
constexpr u32 kLongestWaitMs = 60000;

u64 SteadyMs() {
    using namespace std::chrono;
    return static_cast<u64>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

HeadlessFrame::HeadlessFrame(Services& services, EventHandle leave, std::FILE* output, std::FILE* errors,
                             DesktopNotice& notices)
    : services_(services), leave_(leave), errors_(errors), report_(output), alerts_(output, notices) {}

bool HeadlessFrame::CreateApp(VardelData& data, Vardel&) {
    if (!leave_) return false;
    built_ = true;
    EngineDeeds deeds(data);
    PeriodicTick tick(&data, alerts_, deeds);
    report_.PrintNewEvents(data);
    ArmAll(data);
    VARDEL_TRACE("HeadlessFrame", "CreateApp", "Start messageloop...");
    while (services_.events.Wait(leave_, timers_.UntilNext(SteadyMs(), kLongestWaitMs)) == WaitResult::TimedOut) {
        const u64 now = SteadyMs();
        while (const auto due = timers_.TakeDue(now)) OnTimer(*due, data, tick);
    }
    timers_ = {};
    return true;
}

void HeadlessFrame::ArmAll(VardelData& data) {
    const u64 now = SteadyMs();
    timers_.Arm(kPrintTimer, kPrintPeriodMs, now);
    timers_.Arm(kPurgeTimer, kPurgePeriodMs, now);
    QueueTimers timers(timers_);
    ArmTimers(timers, data);
}

void HeadlessFrame::QueueTimers::Arm(u32 id, u64 periodMs) {
    queue_.Arm(id, std::max(periodMs, kShortestPeriodMs), SteadyMs());
}

void HeadlessFrame::OnTimer(u32 id, VardelData& data, PeriodicTick& tick) {
    if (id == kPrintTimer) report_.PrintNewEvents(data);
    // Without a view of the messages nobody else would free them.
    else if (id == kPurgeTimer) PurgeExpiredSyslogs(data);
    else tick.OnTimer(id);
}

void HeadlessFrame::ShowError(const char* title, const char* text) {
    std::fprintf(errors_, "%s: %s\n", title, text);
    std::fflush(errors_);
}

}  // namespace vardel

#include "frame/HeadlessFrame.h"

#include <chrono>

namespace vardel {

namespace {

constexpr u32 kPrintTimer = 1;
constexpr u64 kPrintPeriodMs = 200;
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
    data.ParseNotificationWords(data.settings.SyslogNotificationWords);
    report_.PrintNewEvents(data);
    timers_.Arm(kPrintTimer, kPrintPeriodMs, SteadyMs());
    while (services_.events.Wait(leave_, timers_.UntilNext(SteadyMs(), kLongestWaitMs)) == WaitResult::TimedOut) {
        const u64 now = SteadyMs();
        while (const auto due = timers_.TakeDue(now)) OnTimer(*due, data);
    }
    timers_.Kill(kPrintTimer);
    return true;
}

void HeadlessFrame::OnTimer(u32 id, VardelData& data) {
    if (id == kPrintTimer) report_.PrintNewEvents(data);
}

void HeadlessFrame::ShowError(const char* title, const char* text) {
    std::fprintf(errors_, "%s: %s\n", title, text);
    std::fflush(errors_);
}

}  // namespace vardel

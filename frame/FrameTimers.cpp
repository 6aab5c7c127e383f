#include "frame/FrameTimers.h"

#include "capture/Vardel.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

constexpr u64 kTrayPeriodMs = 500;
constexpr u64 kSharePeriodMs = 1000;
constexpr u64 kArpFlushPeriodMs = 60'000;
// Wanted: the period after a save differs from that of the start.
constexpr u64 kSyslogPeriodAtStartMs = 5'000;
constexpr u64 kSyslogPeriodAfterSaveMs = 10'000;
constexpr u64 kMsPerSecond = 1'000;
constexpr u64 kMsPerMinute = 60'000;
constexpr u32 kNotifyByPopup = 0;

void ArmWatch(FrameTimers& timers, const VardelSettings& settings) {
    timers.Arm(kWatchTimer, settings.WatchInterval * kMsPerSecond);
}

void ArmReport(FrameTimers& timers, const VardelSettings& settings) {
    timers.Arm(kReportTimer, settings.ReportInterval * kMsPerMinute);
}

bool TellsOfSyslog(const VardelSettings& settings) {
    return settings.SyslogNotification && settings.SyslogNotificationType == kNotifyByPopup;
}

void RearmTimers(FrameTimers& timers, const VardelSettings& settings) {
    timers.Kill(kArpFlushTimer);
    if (settings.DeleteARPCache) timers.Arm(kArpFlushTimer, kArpFlushPeriodMs);
    timers.Kill(kWatchTimer);
    ArmWatch(timers, settings);
    timers.Kill(kReportTimer);
    // Wanted: unlike at the start the interval isn't looked at. Where it is 0 the template has been cleared.
    if (!settings.ReportTemplate.IsEmpty()) ArmReport(timers, settings);
    timers.Kill(kSyslogTimer);
    if (TellsOfSyslog(settings)) timers.Arm(kSyslogTimer, kSyslogPeriodAfterSaveMs);
}

void FollowEventLogSetting(const VardelSettings& settings, Vardel& app) {
    const bool running = app.IsEventWriterRunning();
    if (settings.EventLogSave && !running) app.StartEventLogWrite();
    if (!settings.EventLogSave && running) app.StopEventLogWrite();
}

}  // namespace

void ArmTimers(FrameTimers& timers, VardelData& data) {
    const VardelSettings& settings = data.settings;
    timers.Arm(kTrayTimer, kTrayPeriodMs);
    timers.Arm(kShareTimer, kSharePeriodMs);
    if (settings.DeleteARPCache) timers.Arm(kArpFlushTimer, kArpFlushPeriodMs);
    ArmWatch(timers, settings);
    if (!settings.ReportTemplate.IsEmpty() && settings.ReportInterval > 0) ArmReport(timers, settings);
    if (TellsOfSyslog(settings)) timers.Arm(kSyslogTimer, kSyslogPeriodAtStartMs);
    data.ParseNotificationWords(settings.SyslogNotificationWords);
    VARDEL_TRACE("VardelGui", "MainProc", "WM_INITDIALOG");
}

bool ApplySavedSettings(FrameTimers& timers, VardelData& data, Vardel& app) {
    const VardelSettings& settings = data.settings;
    if (data.interfaceName != settings.Interface) {
        data.interfaceName = settings.Interface;
        data.interfaceChanged = 1;
    }
    const bool switchOn = !data.interfaceName.IsEmpty() && !data.capturing;
    if (switchOn) data.capturing = 1;
    RearmTimers(timers, settings);
    data.ParseNotificationWords(settings.SyslogNotificationWords);
    FollowEventLogSetting(settings, app);
    return switchOn;
}

}  // namespace vardel

#include "frame/PeriodicTick.h"

#include <new>

#include "foundation/TcTrace.h"
#include "frame/ArpFlushTick.h"
#include "frame/FrameTimers.h"
#include "frame/ShareTick.h"
#include "frame/SyslogTick.h"
#include "frame/TrayTick.h"

namespace vardel {

namespace {

struct TickRow {
    u32 timerId;
    void (*run)(const TickContext& tick);
};

constexpr TickRow kTicks[] = {
    {kTrayTimer, &RunTrayTick},
    {kShareTimer, &RunShareTick},
    {kArpFlushTimer, [](const TickContext& tick) { RunArpFlushTick(tick.data.services.arpCache); }},
    {kWatchTimer, [](const TickContext& tick) { tick.deeds.CheckWatchedHosts(tick.surface.WatchPopup(), tick.language); }},
    {kReportTimer, [](const TickContext& tick) { tick.deeds.WriteReport(); }},
    {kSyslogTimer, &RunSyslogTick},
};

}  // namespace

void PeriodicTick::OnTimer(u32 timerId) {
    if (!data_) return;
    try {
        Run(timerId, {*data_, surface_, deeds_, language_});
    } catch (const std::bad_alloc&) {
        VARDEL_TRACE("VardelGui", "OnTimer", "out of memory");
    }
}

void PeriodicTick::Run(u32 timerId, const TickContext& tick) {
    for (const TickRow& row : kTicks)
        if (row.timerId == timerId) return row.run(tick);
}

}  // namespace vardel

// The worker that inspects the hosts of `wmiWork`, oldest first, at most one a second.
#include <new>

#include "capture/Vardel.h"
#include "foundation/TcTrace.h"
#include "watchers/HostInspection.h"

namespace vardel {

namespace {

constexpr char kLabel[] = "TestWMIAccess";

std::unique_ptr<WmiWorkItem> TakeOldest(VardelData& data) {
    const FenceTaken taken(data.fences, Fence::WmiAccess);
    return std::unique_ptr<WmiWorkItem>(data.wmiWork.TakeBack().value_or(nullptr));
}

void TakeTurn(HostInspection& inspection, WmiWorkItem& item) {
    try {
        if (item.host) inspection.Inspect(item);
    } catch (const std::bad_alloc&) {
        // The host's turn is over; its status tells no more than it did.
    }
}

void RunInspections(ThreadParams& params) {
    VardelData& data = *params.data;
    Events& events = data.services.events;
    HostInspection inspection(data, &params);
    const EventHandle sleepEvent = events.Create("DoNothingEventWMI", false, false);
    while (!params.stop) {
        if (!data.wmiWork.IsEmpty())
            if (const std::unique_ptr<WmiWorkItem> item = TakeOldest(data)) TakeTurn(inspection, *item);
        SleepUnlessStopped(params, events, sleepEvent, kWorkerPauseMs);
    }
    events.Close(sleepEvent);
}

}  // namespace

void WMIThread(void* raw) {
    ThreadParams* params = static_cast<ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", kLabel, "No params - Exit...");
        return;
    }
    if (params->data) {
        const WmiThreadEntry entry(params->data->services.wmi);
        RunInspections(*params);
    }
    VARDEL_TRACE("Vardel", kLabel, "Exit...");
}

}  // namespace vardel

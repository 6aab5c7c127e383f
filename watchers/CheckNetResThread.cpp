// The worker that asks hosts for their shares: one entry of its queue every ten seconds, whether it asked that host or
// not. The queue may hold a host many times; a further scan finds only what is new.
#include "foundation/TcTrace.h"
#include "watchers/ShareScan.h"

namespace vardel {

namespace {

constexpr u32 kScanPauseMs = 10000;

HostRecord* TakeOldest(VardelData& data) {
    const FenceTaken inside(data.fences, Fence::NetRes);
    return data.netResWork.TakeBack().value_or(nullptr);
}

void RunScanner(ThreadParams& params) {
    VardelData& data = *params.data;
    Events& events = data.services.events;
    const EventHandle sleepEvent = events.Create("DoNothingEventNetRes", false, false);
    while (params.data && !params.stop) {
        if (!data.netResWork.IsEmpty()) {
            HostRecord* host = TakeOldest(data);
            if (host && !host->shareScanBusy && !host->shareScanRefused) ScanShares(*host, data, params);
        }
        SleepUnlessStopped(params, events, sleepEvent, kScanPauseMs);
    }
    events.Close(sleepEvent);
}

}  // namespace

void CheckNetResThread(void* raw) {
    ThreadParams* params = static_cast<ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", "CheckNetResThread", "No params - Exit...");
        return;
    }
    if (params->data) RunScanner(*params);
    VARDEL_TRACE("Vardel", "CheckNetResThread", "Exit...");
}

}  // namespace vardel

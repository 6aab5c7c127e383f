#include "capture/ThreadParams.h"

namespace vardel {

void RequestStop(ThreadParams& params, Events& events) {
    params.stop = 1;
    events.Set(params.stopRequested);
}

void SleepUnlessStopped(const ThreadParams& params, Events& events, EventHandle sleepEvent, u32 timeoutMs) {
    if (params.stop) return;
    events.WaitEither(sleepEvent, params.stopRequested, timeoutMs);
}

}  // namespace vardel

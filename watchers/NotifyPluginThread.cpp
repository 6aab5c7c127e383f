// The worker that hands queued notifications to the plugins of their type, a batch a second, away from the
// main thread: a slow plugin holds up neither the window nor the capture. It knows nothing of what the items
// mean.
#include <new>

#include "capture/ThreadParams.h"
#include "capture/VardelData.h"
#include "foundation/TcTrace.h"
#include "plugins/PluginCalls.h"

namespace vardel {

namespace {

// Every plugin gets the whole batch in order, one plugin after the other. What joins meanwhile is the next
// batch's.
void DeliverBatch(VardelData& data) {
    const std::vector<PluginNotifyQueue::Waiting> batch = data.notifyQueue.Batch();
    for (LoadedPlugin* plugin = data.plugins.FirstActivePlugin(PLUGIN_TYPE_NOTIFY); plugin;
         plugin = data.plugins.NextActivePlugin()) {
        if (!plugin->active || !plugin->notifyArmed) continue;
        for (const PluginNotifyQueue::Waiting& waiting : batch)
            if (waiting.item) NotifyPlugin(*plugin, *waiting.item);
    }
    // Also when no plugin took them.
    data.notifyQueue.Free(batch);
}

void RunNotifier(ThreadParams& params) {
    VardelData& data = *params.data;
    Events& events = data.services.events;
    const EventHandle sleepEvent = events.Create("DoNothingEventNotify", false, false);
    while (params.data && !params.stop) {
        if (!data.notifyQueue.IsEmpty()) {
            // The tick takes the fence too. Whatever the wait gives, and at the end of the run at once.
            events.WaitEither(data.fences.Handle(Fence::Notify), params.stopRequested, kFenceTimeoutMs);
            const FenceTaken taken(data.fences, Fence::Notify);
            try {
                DeliverBatch(data);
            } catch (const std::bad_alloc&) {
                // The items wait for the next round.
            }
        }
        SleepUnlessStopped(params, events, sleepEvent, kWorkerPauseMs);
    }
    events.Close(sleepEvent);
}

}  // namespace

void NotifyPluginThread(void* raw) {
    ThreadParams* params = static_cast<ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", "NotifyPluginThread", "No params - Exit...");
        return;
    }
    if (params->data) RunNotifier(*params);
}

}  // namespace vardel

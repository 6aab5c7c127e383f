// The worker that appends the events of the run to the log file, at most one batch a second.
#include <new>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "foundation/TcTrace.h"
#include "watchers/EventLogFile.h"

namespace vardel {

namespace {

// How far the writer has got. Starts at the first event of the run, so a writer that is started late writes
// them all.
struct LogProgress {
    u32 written = 0;                       // events, whether their line reached the file or not
    const EventMap::Node* last = nullptr;  // nodes are never removed during a run
};

void WriteLine(EventLogFile& file, const EventRecord& event, const VardelData& data) {
    try {
        file.Write(FormEventLine(event, data), data.settings.MaxEventLogFileSize);
    } catch (const std::bad_alloc&) {
        // The line is lost; it stays in the map.
    }
}

// Posters wait outside meanwhile, so the batch is all that was posted so far.
void WriteBatch(EventLogFile& file, LogProgress& progress, const VardelData& data) {
    EventMap& map = TheEventMap();
    map.EnterGuard();
    file.Open();
    {
        ReadPin pin;
        const EventMap::Node* node = progress.written == 0 ? map.First() : EventMap::Next(progress.last);
        progress.written = map.Count();
        for (; node; node = EventMap::Next(node)) {
            if (const EventRecord* event = node->Value()) WriteLine(file, *event, data);
            progress.last = node;
        }
    }
    file.Close();
    map.LeaveGuard();
}

void RunWriter(ThreadParams& params) {
    VardelData& data = *params.data;
    Events& events = data.services.events;
    EventLogFile file(EventLogPath(data.services.folders));
    file.CreateIfMissing();
    const EventHandle sleepEvent = events.Create("DoNothingWriteEvents", false, false);
    LogProgress progress;
    while (params.data && !params.stop) {
        if (progress.written < TheEventMap().Count()) {
            WriteBatch(file, progress, data);
            if (params.app) {
                params.app->eventsWritten = progress.written;
                events.Set(params.app->batchWritten);
            }
        }
        SleepUnlessStopped(params, events, sleepEvent, kWorkerPauseMs);
    }
    events.Close(sleepEvent);
}

}  // namespace

void WriteEventsThread(void* raw) {
    ThreadParams* params = static_cast<ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", "WriteEventsThread", "No params - Exit...");
        return;
    }
    if (params->data) RunWriter(*params);
}

}  // namespace vardel

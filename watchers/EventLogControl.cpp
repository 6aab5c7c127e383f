// Starting and stopping the log writer. All on the main thread.
#include "capture/Vardel.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

constexpr u32 kStopTimeoutMs = 30000;

}  // namespace

// Wanted: nothing clears the stop byte again. A writer that is started after a stop goes through its start-up
// and ends; the file takes no more lines until the next start of the program.
bool Vardel::StartEventLogWrite() {
    StopEventLogWrite();
    eventsWritten = 0;
    services.threads.Start(&WriteEventsThread, &eventWriterParams, writeEventsThread.handle,
                           writeEventsThread.id);
    VARDEL_TRACE_INT("Vardel", "StartEventLogWrite", "Create WriteEventsThread - ID: ", writeEventsThread.id);
    return IsEventWriterRunning();
}

bool Vardel::StopEventLogWrite() {
    if (!writeEventsThread.handle) return false;
    RequestStop(eventWriterParams, services.events);
    // A writer that hangs in its file is left to itself, never ended from outside.
    if (services.threads.WaitAll({&writeEventsThread.handle, 1}, kStopTimeoutMs))
        services.threads.Close(writeEventsThread.handle);
    else
        abandonedThreads.push_back(writeEventsThread.handle);
    writeEventsThread = {};
    return true;
}

bool Vardel::IsEventWriterRunning() const {
    return writeEventsThread.handle && writeEventsThread.id > 0;
}

}  // namespace vardel

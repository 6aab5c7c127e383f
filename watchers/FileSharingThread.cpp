// The worker that watches who is connected to the shares of this machine, one look a second, whatever the settings
// say: what is told of it is decided where the alert is made.
#include <new>
#include <vector>

#include "capture/Vardel.h"
#include "foundation/TcTrace.h"
#include "watchers/ShareAccesses.h"

namespace vardel {

namespace {

constexpr char kLabel[] = "FileSharingThread";

// What memory doesn't suffice for is passed over; the next look meets it again.
std::vector<ServerConnection> Look(ServerConnections& connections) {
    try {
        return connections.List();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

void TakeAll(VardelData& data, const std::vector<ServerConnection>& connections) {
    for (const ServerConnection& connection : connections) {
        try {
            TakeConnection(data, connection);
        } catch (const std::bad_alloc&) {
            continue;
        }
    }
}

void RunWatch(ThreadParams& params) {
    VardelData& data = *params.data;
    Events& events = data.services.events;
    const EventHandle sleepEvent = events.Create("DoNothingEventFS", false, false);
    while (!params.stop) {
        TakeAll(data, Look(data.services.serverConnections));
        SleepUnlessStopped(params, events, sleepEvent, kWorkerPauseMs);
    }
    events.Close(sleepEvent);
}

}  // namespace

void FileSharingThread(void* raw) {
    ThreadParams* params = static_cast<ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", kLabel, "No params - Exit...");
        return;
    }
    if (params->data) {
        ServerConnections& connections = params->data->services.serverConnections;
        if (connections.EnterThread()) {
            RunWatch(*params);
            connections.LeaveThread();
        }
    }
    VARDEL_TRACE("Vardel", kLabel, "Exit...");
}

}  // namespace vardel

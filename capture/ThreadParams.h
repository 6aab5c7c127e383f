// The thread table: what a worker is handed, and the workers' functions. Each is defined in its own folder.
#pragma once

#include "foundation/Shared.h"
#include "platform/Events.h"

namespace vardel {

class Vardel;
class VardelARPImpl;
class VardelData;
class VardelIPImpl;

// Shared by the threads of one block and the main thread. A thread ends when it sees `stop` set or `data` null.
struct ThreadParams {
    VardelARPImpl* arp = nullptr;
    VardelIPImpl* ip = nullptr;
    VardelData* data = nullptr;
    Vardel* app = nullptr;
    Shared<u8> stop = 0;

    // Manual-reset, signalled together with `stop`, so that every sleep ends on the stop request; the named sleep
    // events of the workers are never signalled. May be null: a sleep then runs its full time.
    EventHandle stopRequested = nullptr;
};

// Sets the stop byte and wakes whoever sleeps on it.
void RequestStop(ThreadParams& params, Events& events);

// What most workers sleep between two looks for work.
inline constexpr u32 kWorkerPauseMs = 1000;

// Sleeps `timeoutMs` on `sleepEvent`, or until the stop request.
void SleepUnlessStopped(const ThreadParams& params, Events& events, EventHandle sleepEvent, u32 timeoutMs);

// The parameter is a ThreadParams*, for ReadVendorThread a VendorRun* (ReadVendorThread.h).
void SnifferThread(void* params);
void FileSharingThread(void* params);
void WMIThread(void* params);
void CheckNetResThread(void* params);
void NotifyPluginThread(void* params);
void ReadVendorThread(void* run);
void WriteEventsThread(void* params);

}  // namespace vardel

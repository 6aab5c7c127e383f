// The event map: everything notable of this run, in order of posting. Process-wide; any thread posts, none removes.
//
// Keys run 1, 2, 3, ... The guard is the named event "WriteEventMapHandle", which the application makes once and
// posters and the log writer wait for at most 30000 ms; before it exists posts go straight in. The map's own
// structure needs no guard.
#pragma once

#include "foundation/SharedOrderedMap.h"
#include "foundation/TcString.h"
#include "platform/Events.h"

namespace vardel {

enum class EventKind : i32 {
    ProgramStarted = 1,
    ProgramExited = 2,
    CaptureStarted = 3,
    CaptureStopped = 4,
    NewHost = 5,
    ShareAccessed = 6,
    WatchedHostOnline = 7,
    WatchedHostOffline = 8,
    CaptureStoppedNoInterface = 9,
    SyslogNotification = 10,
    DeviceNameFound = 11,
    DeviceAnnounced = 12
};

// The string id of an event's text is its kind + this.
constexpr u32 kEventTextBase = 136;

struct EventRecord {
    i32 kind = 0;
    i64 time = 0;  // seconds since 1970, read before the guard was taken
    TcString host;
    TcString info;
    TcString text;
    i32 syslogInfo = -1;  // kind 10: facility << 16 | severity
};

class EventMap {
  public:
    using Node = SharedOrderedMap<EventRecord, Ownership::OwnsValues>::Node;

    // Null texts leave their field empty. False for a kind below 1 or a failed allocation; nothing is added then.
    bool PostEvent(i32 kind, const char* host, const char* info, const char* text);
    bool PostSyslogEvent(i32 kind, const char* host, u32 syslogInfo, const char* text);

    // Made by the application before the capture library is loaded; null once it is closed.
    void SetGuard(Events* events, EventHandle guard);
    // What a taker does: wait (30000 ms) and reset; then signal.
    void EnterGuard();
    void LeaveGuard();

    u32 Count() const { return events_.Count(); }
    // In key order, without the guard; the caller holds a ReadPin.
    const Node* First() const { return events_.First(); }
    static const Node* Next(const Node* node) { return SharedOrderedMap<EventRecord, Ownership::OwnsValues>::Next(node); }
    // The first event behind `key`, for a reader that comes back for what is new.
    const Node* After(i32 key) const { return events_.After(key); }
    template <class Visit>
    void ForEach(Visit&& visit) const {
        events_.ForEach(visit);
    }
    // Frees all records: at the end of the program.
    void Clear() { events_.Clear(); }

  private:
    bool Add(std::unique_ptr<EventRecord> record);

    SharedOrderedMap<EventRecord, Ownership::OwnsValues> events_;
    std::atomic<Events*> service_{nullptr};
    std::atomic<EventHandle> guard_{nullptr};
};

// The process's one event map, and posting to it.
EventMap& TheEventMap();
bool PostEvent(i32 kind, const char* host, const char* info, const char* text);
bool PostSyslogEvent(i32 kind, const char* host, u32 syslogInfo, const char* text);
inline bool PostEvent(EventKind kind, const char* host = nullptr, const char* info = nullptr,
                      const char* text = nullptr) {
    return PostEvent(static_cast<i32>(kind), host, info, text);
}

}  // namespace vardel

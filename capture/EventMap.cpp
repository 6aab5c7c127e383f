#include "capture/EventMap.h"

#include <new>

#include "platform/Clock.h"

namespace vardel {

namespace {

constexpr u32 kGuardTimeoutMs = 30000;

std::unique_ptr<EventRecord> MakeRecord(i32 kind, const char* host, const char* text) {
    auto record = std::make_unique<EventRecord>();
    record->kind = kind;
    record->time = SystemClock().Now();
    if (host) record->host = host;
    if (text) record->text = text;
    return record;
}

}  // namespace

bool EventMap::PostEvent(i32 kind, const char* host, const char* info, const char* text) {
    if (kind < 1) return false;
    try {
        auto record = MakeRecord(kind, host, text);
        if (info) record->info = info;
        return Add(std::move(record));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool EventMap::PostSyslogEvent(i32 kind, const char* host, u32 syslogInfo, const char* text) {
    if (kind < 1) return false;
    try {
        auto record = MakeRecord(kind, host, text);
        record->syslogInfo = static_cast<i32>(syslogInfo);
        return Add(std::move(record));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool EventMap::Add(std::unique_ptr<EventRecord> record) {
    EnterGuard();
    struct Leave {
        EventMap& map;
        ~Leave() { map.LeaveGuard(); }
    } leave{*this};
    events_.Append(record.get());
    record.release();
    return true;
}

void EventMap::SetGuard(Events* events, EventHandle guard) {
    service_ = events;
    guard_ = guard;
}

// The wait's outcome doesn't count: after the time-out the caller goes on as if it held the guard.
void EventMap::EnterGuard() {
    const EventHandle guard = guard_;
    if (!guard) return;
    Events& events = *service_;
    events.Wait(guard, kGuardTimeoutMs);
    events.Reset(guard);
}

void EventMap::LeaveGuard() {
    if (const EventHandle guard = guard_) service_.load()->Set(guard);
}

// Never destroyed: a thread that outlives the application may still post.
EventMap& TheEventMap() {
    static EventMap* map = new EventMap;
    return *map;
}

bool PostEvent(i32 kind, const char* host, const char* info, const char* text) {
    return TheEventMap().PostEvent(kind, host, info, text);
}

bool PostSyslogEvent(i32 kind, const char* host, u32 syslogInfo, const char* text) {
    return TheEventMap().PostSyslogEvent(kind, host, syslogInfo, text);
}

}  // namespace vardel

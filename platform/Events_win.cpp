#include "platform/Events.h"

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

HANDLE Native(EventHandle event) { return reinterpret_cast<HANDLE>(event); }

WaitResult Outcome(DWORD result, DWORD count) {
    if (result < WAIT_OBJECT_0 + count) return WaitResult::Signalled;
    return result == WAIT_TIMEOUT ? WaitResult::TimedOut : WaitResult::Failed;
}

class WindowsEvents : public Events {
  public:
    EventHandle Create(const char* name, bool manualReset, bool signalled) override {
        return reinterpret_cast<EventHandle>(CreateEventA(nullptr, manualReset, signalled, name));
    }
    void Close(EventHandle event) override {
        if (event) CloseHandle(Native(event));
    }
    bool Set(EventHandle event) override { return event && SetEvent(Native(event)); }
    bool Reset(EventHandle event) override { return event && ResetEvent(Native(event)); }

    WaitResult Wait(EventHandle event, u32 timeoutMs) override {
        if (!event) return WaitResult::Failed;
        return Outcome(WaitForSingleObject(Native(event), timeoutMs), 1);
    }
    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        if (!first || !second) return Wait(first ? first : second, timeoutMs);
        const HANDLE both[] = {Native(first), Native(second)};
        return Outcome(WaitForMultipleObjects(2, both, FALSE, timeoutMs), 2);
    }
};

}  // namespace

Events& SystemEvents() {
    static WindowsEvents events;
    return events;
}

}  // namespace vardel

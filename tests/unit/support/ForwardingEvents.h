// The system's events, for doubles that change one or two of the operations.
#pragma once

#include "platform/Events.h"

namespace vardel::test {

class ForwardingEvents : public Events {
  public:
    EventHandle Create(const char* name, bool manualReset, bool signalled) override {
        return SystemEvents().Create(name, manualReset, signalled);
    }
    void Close(EventHandle event) override { SystemEvents().Close(event); }
    bool Set(EventHandle event) override { return SystemEvents().Set(event); }
    bool Reset(EventHandle event) override { return SystemEvents().Reset(event); }
    WaitResult Wait(EventHandle event, u32 timeoutMs) override { return SystemEvents().Wait(event, timeoutMs); }
    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        return SystemEvents().WaitEither(first, second, timeoutMs);
    }
};

}  // namespace vardel::test

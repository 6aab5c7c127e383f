// Events that take no time: a sleep is written down and lets the test's script go on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Events.h"

namespace vardel::test {

class ScriptedEvents : public Events {
  public:
    struct Created {
        std::string name;
        bool manualReset;
        bool signalled;
    };

    EventHandle Create(const char* name, bool manualReset, bool signalled) override {
        created.push_back({name ? name : "", manualReset, signalled});
        ++open;
        return reinterpret_cast<EventHandle>(created.size());
    }
    void Close(EventHandle event) override {
        if (event) --open;
    }
    bool Set(EventHandle event) override { return event != nullptr; }
    bool Reset(EventHandle event) override { return event != nullptr; }
    WaitResult Wait(EventHandle event, u32) override {
        return event ? WaitResult::Signalled : WaitResult::Failed;
    }
    WaitResult WaitEither(EventHandle, EventHandle, u32 timeoutMs) override {
        sleeps.push_back(timeoutMs);
        if (onSleep) onSleep();
        return WaitResult::TimedOut;
    }

    std::vector<Created> created;
    int open = 0;             // events not closed yet
    std::vector<u32> sleeps;  // milliseconds
    std::function<void()> onSleep;
};

}  // namespace vardel::test

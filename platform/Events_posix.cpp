// An event is a flag beside an eventfd that is readable while the event is signalled: a wait on a signalled
// manual-reset event costs one load, any other wait is a poll, which can watch two events at once.
#include "platform/Events.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

namespace vardel {

struct EventObject {
    int descriptor = -1;
    bool manualReset = false;
    std::atomic<bool> signalled{false};
    std::mutex guard;  // keeps flag and descriptor in step

    void Put(bool value) {
        std::lock_guard hold(guard);
        if (signalled.load() == value) return;
        const u64 one = 1;
        u64 drained;
        [[maybe_unused]] const auto done = value ? write(descriptor, &one, sizeof one)
                                                 : read(descriptor, &drained, sizeof drained);
        signalled.store(value);
    }
    // True when the event was signalled; an auto-reset event is reset by it.
    bool TryPass() {
        if (manualReset) return signalled.load();
        std::lock_guard hold(guard);
        if (!signalled.load()) return false;
        u64 drained;
        [[maybe_unused]] const auto done = read(descriptor, &drained, sizeof drained);
        signalled.store(false);
        return true;
    }
};

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

int RemainingMs(SteadyTime deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

class PosixEvents : public Events {
  public:
    EventHandle Create(const char*, bool manualReset, bool signalled) override {
        auto event = std::make_unique<EventObject>();
        event->descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        if (event->descriptor < 0) return nullptr;
        event->manualReset = manualReset;
        event->Put(signalled);
        return event.release();
    }
    void Close(EventHandle event) override {
        if (!event) return;
        close(event->descriptor);
        delete event;
    }
    bool Set(EventHandle event) override {
        if (event) event->Put(true);
        return event != nullptr;
    }
    bool Reset(EventHandle event) override {
        if (event) event->Put(false);
        return event != nullptr;
    }
    WaitResult Wait(EventHandle event, u32 timeoutMs) override { return WaitEither(event, nullptr, timeoutMs); }

    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        if (!first && !second) return WaitResult::Failed;
        if ((first && first->TryPass()) || (second && second->TryPass())) return WaitResult::Signalled;
        const SteadyTime deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        // A negative descriptor is left out by poll.
        pollfd watched[] = {{first ? first->descriptor : -1, POLLIN, 0}, {second ? second->descriptor : -1, POLLIN, 0}};
        for (;;) {
            const int remaining = RemainingMs(deadline);
            poll(watched, 2, remaining);
            if ((first && first->TryPass()) || (second && second->TryPass())) return WaitResult::Signalled;
            if (remaining == 0) return WaitResult::TimedOut;
        }
    }
};

}  // namespace

Events& SystemEvents() {
    static PosixEvents events;
    return events;
}

}  // namespace vardel

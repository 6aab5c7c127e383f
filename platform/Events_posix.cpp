// An event is a flag, and the list of those who wait for it. A wait on a signalled manual-reset event costs one load,
// setting and resetting an event that nobody waits for one store each.
#include "platform/Events.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <vector>

namespace vardel {

namespace {

// One thread's stay in one wait, which may be for two events.
class Sleeper {
  public:
    void Wake() {
        std::lock_guard hold(guard_);
        woken_ = true;
        wake_.notify_one();
    }
    // Returns when woken since the last call, or at the deadline with false.
    bool SleepUntil(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock hold(guard_);
        if (!wake_.wait_until(hold, deadline, [this] { return woken_; })) return false;
        woken_ = false;
        return true;
    }

  private:
    std::mutex guard_;
    std::condition_variable wake_;
    bool woken_ = false;
};

}  // namespace

struct EventObject {
    EventObject(bool manual, bool set) : manualReset(manual), signalled(set) {}

    const bool manualReset;
    std::atomic<bool> signalled;
    std::atomic<u32> sleeperCount{0};
    std::mutex guard;
    std::vector<Sleeper*> sleepers;  // under the guard

    // A sleeper enlists before it looks at the flag, and the flag is set before the count is looked at: one of the
    // two sees the other.
    void Set() {
        signalled = true;
        if (sleeperCount == 0) return;
        std::lock_guard hold(guard);
        for (Sleeper* sleeper : sleepers) sleeper->Wake();
    }
    // True when the event was signalled; an auto-reset event is reset by it.
    bool TryPass() { return manualReset ? signalled.load() : signalled.exchange(false); }
};

namespace {

// A sleeper's place in an event's list.
class Enlisted {
  public:
    Enlisted(EventObject* event, Sleeper& sleeper) : event_(event), sleeper_(&sleeper) {
        if (!event_) return;
        std::lock_guard hold(event_->guard);
        event_->sleepers.push_back(sleeper_);
        ++event_->sleeperCount;
    }
    ~Enlisted() {
        if (!event_) return;
        std::lock_guard hold(event_->guard);
        --event_->sleeperCount;
        event_->sleepers.erase(std::find(event_->sleepers.begin(), event_->sleepers.end(), sleeper_));
    }
    Enlisted(const Enlisted&) = delete;
    Enlisted& operator=(const Enlisted&) = delete;

  private:
    EventObject* const event_;
    Sleeper* const sleeper_;
};

class PosixEvents : public Events {
  public:
    EventHandle Create(const char*, bool manualReset, bool signalled) override {
        return new (std::nothrow) EventObject(manualReset, signalled);
    }
    void Close(EventHandle event) override { delete event; }
    bool Set(EventHandle event) override {
        if (event) event->Set();
        return event != nullptr;
    }
    bool Reset(EventHandle event) override {
        if (event) event->signalled = false;
        return event != nullptr;
    }
    WaitResult Wait(EventHandle event, u32 timeoutMs) override { return WaitEither(event, nullptr, timeoutMs); }

    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        if (!first && !second) return WaitResult::Failed;
        if (Pass(first, second)) return WaitResult::Signalled;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        Sleeper sleeper;
        const Enlisted inFirst(first, sleeper);
        const Enlisted inSecond(second == first ? nullptr : second, sleeper);
        do {
            if (Pass(first, second)) return WaitResult::Signalled;
        } while (sleeper.SleepUntil(deadline));
        return Pass(first, second) ? WaitResult::Signalled : WaitResult::TimedOut;
    }

  private:
    static bool Pass(EventObject* first, EventObject* second) {
        return (first && first->TryPass()) || (second && second->TryPass());
    }
};

}  // namespace

Events& SystemEvents() {
    static PosixEvents events;
    return events;
}

}  // namespace vardel

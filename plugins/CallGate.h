// CallGate: lets calls into a module from its opening until it is closed, and knows when the last of them has come back.
//
// Any thread. A call that was let in leaves once. Closed for good.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/Types.h"

namespace vardel {

class CallGate {
  public:
    void Open() {
        const std::lock_guard hold(guard_);
        open_ = !closed_;
    }
    // False until the gate is opened, and once it is closed.
    bool Enter() {
        const std::lock_guard hold(guard_);
        if (!open_) return false;
        ++inside_;
        return true;
    }
    void Leave() {
        const std::lock_guard hold(guard_);
        if (--inside_ == 0) empty_.notify_all();
    }
    void Close() {
        const std::lock_guard hold(guard_);
        open_ = false;
        closed_ = true;
    }
    // True when no call is inside, false when one still is at `deadline`.
    bool AwaitEmpty(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock hold(guard_);
        return empty_.wait_until(hold, deadline, [this] { return inside_ == 0; });
    }

  private:
    std::mutex guard_;
    std::condition_variable empty_;
    u32 inside_ = 0;
    bool open_ = false;
    bool closed_ = false;
};

// One call's stay inside.
class GatePass {
  public:
    explicit GatePass(CallGate& gate) : gate_(gate), entered_(gate.Enter()) {}
    ~GatePass() {
        if (entered_) gate_.Leave();
    }
    GatePass(const GatePass&) = delete;
    GatePass& operator=(const GatePass&) = delete;

    explicit operator bool() const { return entered_; }

  private:
    CallGate& gate_;
    const bool entered_;
};

}  // namespace vardel

// Holds one thread at a place that a test chose, until the test lets it go on.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vardel::test {

class Gate {
  public:
    // The place: the first to come after Arm waits here for Open, all others pass.
    void Pass() {
        std::unique_lock hold(guard_);
        if (!armed_) return;
        armed_ = false;
        inside_ = true;
        changed_.notify_all();
        changed_.wait(hold, [&] { return open_; });
        inside_ = false;
    }

    void Arm() {
        std::lock_guard hold(guard_);
        armed_ = true;
        open_ = false;
    }
    // True when a thread is held, after at most ten seconds.
    bool AwaitHeld() {
        std::unique_lock hold(guard_);
        return changed_.wait_for(hold, std::chrono::seconds(10), [&] { return inside_; });
    }
    void Open() {
        std::lock_guard hold(guard_);
        open_ = true;
        armed_ = false;
        changed_.notify_all();
    }

  private:
    std::mutex guard_;
    std::condition_variable changed_;
    bool armed_ = false;
    bool inside_ = false;
    bool open_ = false;
};

}  // namespace vardel::test

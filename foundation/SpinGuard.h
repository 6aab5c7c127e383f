// A guard of one byte for sections of a few instructions: copying a fixed-size record in or out.
//
// Never held across a call that can wait. Waiters yield after a short spin, so a holder that lost its processor
// costs a time slice and no more. Meets the Lockable requirements: use it with std::lock_guard.
#pragma once

#include <atomic>
#include <thread>

namespace vardel {

class SpinGuard {
  public:
    void lock() noexcept {
        for (int tries = 0; taken_.exchange(true, std::memory_order_acquire); ++tries)
            if (tries > 32) std::this_thread::yield();
    }
    bool try_lock() noexcept { return !taken_.exchange(true, std::memory_order_acquire); }
    void unlock() noexcept { taken_.store(false, std::memory_order_release); }

  private:
    std::atomic<bool> taken_{false};
};

}  // namespace vardel

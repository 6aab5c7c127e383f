// Safe freeing of what other threads may still be looking at, without any lock for those who look.
//
// A reader holds a ReadPin while it follows pointers inside a shared container. Whoever takes something out of a
// container retires it: it is freed once every thread that held a pin at that moment has let go of it. Pins nest;
// an outermost one costs two stores, and a locked instruction where the system can't put a barrier into all threads
// (ThreadBarrier.h). A pin held for long only delays freeing.
//
// Source of the scheme: K. Fraser, "Practical lock-freedom" (2004), section 5.2.3, epoch-based reclamation.
#pragma once

#include <atomic>

#include "platform/Types.h"

namespace vardel {

namespace detail {

// One a thread that ever read; slots of ended threads are used again and never freed.
struct alignas(64) ReaderSlot {
    std::atomic<u64> pinnedEpoch{0};  // 0: not inside
    std::atomic<bool> taken{true};
    bool fenced = true;  // the pins carry the barrier; else whoever frees puts one into all threads
    u32 depth = 0;       // of the owning thread alone
    ReaderSlot* next = nullptr;
};

extern constinit std::atomic<u64> reclaimEpoch;
extern constinit thread_local ReaderSlot* slotOfThread;  // null until the thread's first pin
ReaderSlot* TakeSlotForThread();

}  // namespace detail

class ReadPin {
  public:
    ReadPin() : slot_(detail::slotOfThread ? *detail::slotOfThread : *detail::TakeSlotForThread()) {
        if (slot_.depth++ == 0) Enter();
    }
    ~ReadPin() {
        if (--slot_.depth == 0) slot_.pinnedEpoch.store(0, std::memory_order_release);
    }
    ReadPin(const ReadPin&) = delete;
    ReadPin& operator=(const ReadPin&) = delete;

  private:
    // The pin must be seen by whoever frees before this thread looks at anything: its store is followed by a barrier,
    // or, where only the compiler is kept from moving the looks, by the one that the freeing thread puts in.
    void Enter() {
        const u64 epoch = detail::reclaimEpoch.load();
        if (slot_.fenced) {
            slot_.pinnedEpoch.store(epoch);
        } else {
            slot_.pinnedEpoch.store(epoch, std::memory_order_relaxed);
            std::atomic_signal_fence(std::memory_order_seq_cst);
        }
    }

    detail::ReaderSlot& slot_;
};

using FreeFunction = void (*)(void* object);

// Hands `object`, which no new reader can reach any more, over to be freed by `release(object)`. Any thread.
void Retire(void* object, FreeFunction release);

template <class T>
void RetireObject(T* object) {
    if (object) Retire(object, [](void* p) { delete static_cast<T*>(p); });
}

// Frees at once whatever no pinned reader can hold. For tests and the end of the program.
void FreeRetired();

// How many retired objects still wait.
std::size_t RetiredCount();

}  // namespace vardel

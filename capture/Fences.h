// The nine named events that fence the lists of VardelData, as one-way fences.
//
// A taker (who walks or removes) resets the event, works and sets it again, without waiting first unless told; a
// feeder (who adds) waits at most 30000 ms and then adds, whatever the wait gave. It never resets nor sets. This is
// the protocol of the program, not what memory safety rests on: the containers keep themselves whole.
#pragma once

#include <array>
#include <atomic>

#include "platform/Events.h"

namespace vardel {

// In the order of the handles in VardelData.
enum class Fence { ArpMap, NewEntries, MacSpoofs, Shares, WmiAccess, NetRes, SysLog, Notify, VendorMap };
constexpr std::size_t kFenceCount = 9;
constexpr u32 kFenceTimeoutMs = 30000;

class Fences {
  public:
    explicit Fences(Events& events) : events_(events) {}
    ~Fences() { CloseAll(); }
    Fences(const Fences&) = delete;
    Fences& operator=(const Fences&) = delete;

    static const char* Name(Fence fence);

    // Creates all nine, manual-reset and signalled. False when one that the program can't do without is missing;
    // the two of the inspection queues may be.
    bool CreateAll();
    void CloseAll();

    // The feeder's step. A fence that doesn't exist lets pass at once.
    void WaitToFeed(Fence fence) { events_.Wait(Handle(fence), kFenceTimeoutMs); }
    // The taker's two steps.
    void Raise(Fence fence) { events_.Reset(Handle(fence)); }
    void Lower(Fence fence) { events_.Set(Handle(fence)); }

    EventHandle Handle(Fence fence) const { return handles_[static_cast<std::size_t>(fence)]; }

  private:
    Events& events_;
    std::array<std::atomic<EventHandle>, kFenceCount> handles_{};
};

// A taker's stay inside.
class FenceTaken {
  public:
    FenceTaken(Fences& fences, Fence fence) : fences_(fences), fence_(fence) { fences_.Raise(fence_); }
    ~FenceTaken() { fences_.Lower(fence_); }
    FenceTaken(const FenceTaken&) = delete;
    FenceTaken& operator=(const FenceTaken&) = delete;

  private:
    Fences& fences_;
    Fence fence_;
};

}  // namespace vardel

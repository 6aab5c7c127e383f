// Feeder: hands the frames of batches to the two packet handlers, as the capture thread does, and takes the
// time that the handlers need.
#pragma once

#include <chrono>

#include "capture/FrameLookAhead.h"
#include "tools/vardel_replay/FrameBatch.h"

namespace vardel::replay {

struct FrameCounts {
    u64 read = 0;  // all frames of the savefiles, repeats included
    u64 arp = 0;   // handed to the ARP handler
    u64 ip = 0;    // handed to the IP handler
};

class Feeder {
  public:
    // With `drain` the lists that the periodic tick empties are emptied after every 1,000 frames read.
    Feeder(VardelData& data, bool drain) : data_(data), drain_(drain) {}

    void Feed(const FrameBatch& batch);

    FrameCounts Counts() const { return {read_, arp_.packetCount, ip_.packetCount}; }
    // Neither reading nor draining is in it.
    double HandlerSeconds() const { return std::chrono::duration<double>(handlerTime_).count(); }

  private:
    static constexpr u32 kFramesBetweenDrains = 1000;

    void RunHandlers(const FrameBatch& batch, std::size_t from, std::size_t to);
    void Drain();

    VardelData& data_;
    const bool drain_;
    VardelARPImpl arp_;
    VardelIPImpl ip_;
    FrameLookAhead lookAhead_{arp_, ip_, data_};
    u64 read_ = 0;
    u32 untilDrain_ = kFramesBetweenDrains;
    std::chrono::steady_clock::duration handlerTime_{};
};

}  // namespace vardel::replay

// FrameLookAhead: hands a run of frames that are all in memory already to their handlers, in their order, and
// has the memory that the coming frames will touch on its way meanwhile.
//
// With tens of thousands of hosts a frame waits for memory twice, for its place in the host table and for the
// host's record, and that is most of its time. Here the waits of many frames pass side by side: a group's
// places are asked for, a group later its records, and a group later it is handled. Only the handling does or
// finds anything. When Dispatch returns all its frames are handled. Used on the thread that feeds the frames.
#pragma once

#include <array>

#include "capture/FrameDispatch.h"

namespace vardel {

// A frame, its bytes running from the Ethernet header on. Both outlive its handling; neither is null.
struct HeldFrame {
    const pcap_pkthdr* header;
    const u8* bytes;
};

class FrameLookAhead {
  public:
    FrameLookAhead(VardelARPImpl& arp, VardelIPImpl& ip, VardelData& data)
        : arp_(arp), ip_(ip), data_(data) {}
    FrameLookAhead(const FrameLookAhead&) = delete;
    FrameLookAhead& operator=(const FrameLookAhead&) = delete;

    // `frameAt(index)` gives the HeldFrame of each index below `count`.
    template <class FrameAt>
    void Dispatch(std::size_t count, FrameAt&& frameAt) {
        if (data_.arpMap.Count() < kFewHosts) {
            for (std::size_t at = 0; at < count; ++at) {
                const HeldFrame frame = frameAt(at);
                DispatchFrame(frame.header, frame.bytes, arp_, ip_, &data_);
            }
            return;
        }
        for (std::size_t at = 0; at < count; ++at) Take(frameAt(at));
        for (std::size_t step = 0; step < kSteps; ++step) Advance();
    }

  private:
    // Fewer hosts than this stay in a processor's own cache, where there is nothing to wait for.
    static constexpr u32 kFewHosts = 2048;
    // As many frames as a processor can wait for at once: three cache lines each.
    static constexpr std::size_t kGroupFrames = 8;
    static constexpr std::size_t kSteps = 3;

    struct Coming {
        HeldFrame frame;
        bool isArp;
        VardelARPImpl::Sender sender;  // of an ARP frame
    };
    struct Group {
        std::array<Coming, kGroupFrames> frames;
        std::size_t count = 0;
    };

    void Take(const HeldFrame& frame) {
        Group& group = groups_[newest_];
        group.frames[group.count].frame = frame;
        if (++group.count == kGroupFrames) Advance();
    }
    void Advance();
    void FetchPlaces(Group& group) const;
    void FetchRecords(const Group& group) const;
    void Handle(const Group& group);

    VardelARPImpl& arp_;
    VardelIPImpl& ip_;
    VardelData& data_;
    std::array<Group, kSteps> groups_;  // in a ring; the newest is being filled
    std::size_t newest_ = 0;
};

}  // namespace vardel

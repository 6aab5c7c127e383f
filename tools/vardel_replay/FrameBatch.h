// FrameBatch: a run of frames from a savefile, copied out of the capture library's buffer.
//
// Frames that the capture filter lets pass are kept with their position among all frames read, so that
// whoever counts frames counts the others too. Used by one thread at a time; a batch that was cleared keeps
// its memory.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "platform/CaptureLibrary.h"

namespace vardel::replay {

class FrameBatch {
  public:
    struct Frame {
        pcap_pkthdr header;
        u32 start;     // of its bytes in the batch
        u32 position;  // among the frames read in this batch, from 0
    };

    // Few enough to stay in a processor's own cache, enough that handing a batch over costs nothing beside
    // its frames.
    static constexpr u32 kMaxFrames = 512;
    static constexpr std::size_t kMaxBytes = 1u << 20;

    bool IsFull() const { return read_ >= kMaxFrames || bytes_.size() >= kMaxBytes; }

    // Counts a frame that was read and that the filter refused.
    void Skip() { ++read_; }
    // Counts a frame that was read and keeps its header->caplen bytes.
    void Keep(const pcap_pkthdr& header, const u8* bytes) {
        frames_.push_back({header, static_cast<u32>(bytes_.size()), read_++});
        bytes_.insert(bytes_.end(), bytes, bytes + header.caplen);
    }

    u32 ReadCount() const { return read_; }
    std::span<const Frame> Frames() const { return frames_; }
    const u8* Bytes(const Frame& frame) const { return bytes_.data() + frame.start; }

    // The index of the first kept frame at `position` or behind it.
    std::size_t IndexFrom(u32 position) const {
        const auto at =
            std::lower_bound(frames_.begin(), frames_.end(), position,
                             [](const Frame& frame, u32 wanted) { return frame.position < wanted; });
        return static_cast<std::size_t>(at - frames_.begin());
    }

    void Clear() {
        frames_.clear();
        bytes_.clear();
        read_ = 0;
    }

  private:
    std::vector<Frame> frames_;
    std::vector<u8> bytes_;
    u32 read_ = 0;
};

}  // namespace vardel::replay

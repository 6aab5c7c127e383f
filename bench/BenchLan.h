// What the benchmarks share: frames held in one block of memory, as a capture library's buffer holds them, and the
// shared state that the handlers fill, with the system's real events behind its fences.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "capture/VardelARPImpl.h"
#include "capture/VardelData.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::bench {

constexpr u32 kFrameSize = 60;
constexpr i64 kStartSecond = 1'700'000'000;

using Address = u32;  // host order

inline Address ConsecutiveAddress(u32 index) { return 0x0a000000u + index; }  // 10.0.0.0 and on

// `count` different addresses in no order and with no neighbours.
inline std::vector<Address> SpreadAddresses(u32 count) {
    std::vector<Address> addresses(count);
    // An odd factor makes a permutation of all addresses, so none comes twice.
    for (u32 i = 0; i < count; ++i) addresses[i] = (i + 1) * 2654435761u;
    return addresses;
}

inline std::vector<Address> ConsecutiveAddresses(u32 count) {
    std::vector<Address> addresses(count);
    for (u32 i = 0; i < count; ++i) addresses[i] = ConsecutiveAddress(i + 1);
    return addresses;
}

// Writes a 60-byte ARP request of `sender` at the MAC 02:00 followed by `mac`.
inline void WriteArpFrame(u8* frame, Address sender, u32 mac) {
    static constexpr u8 kHead[] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 2, 0, 0, 0, 0, 0, 8, 6, 0, 1, 8, 0, 6, 4, 0, 1};
    std::memset(frame, 0, kFrameSize);
    std::memcpy(frame, kHead, sizeof kHead);
    const u8 hardware[] = {2,
                           0,
                           static_cast<u8>(mac >> 24),
                           static_cast<u8>(mac >> 16),
                           static_cast<u8>(mac >> 8),
                           static_cast<u8>(mac)};
    std::memcpy(frame + 6, hardware, sizeof hardware);
    std::memcpy(frame + 22, hardware, sizeof hardware);
    for (int i = 0; i < 4; ++i) frame[28 + i] = static_cast<u8>(sender >> (24 - 8 * i));
    std::memcpy(frame + 38, frame + 28, 4);
}

// Frames of one size, one behind the other, each with its capture header.
class FrameBlock {
  public:
    FrameBlock(u32 count, u32 frameSize)
        : frameSize_(frameSize), bytes_(std::size_t{count} * frameSize), headers_(count) {
        // 100,000 frames a second, so that most frames share their second with the one before.
        for (u32 i = 0; i < count; ++i)
            headers_[i] = {{static_cast<long>(kStartSecond + i / 100'000), 0}, frameSize, frameSize};
    }
    u32 Count() const { return static_cast<u32>(headers_.size()); }
    u8* Frame(u32 index) { return bytes_.data() + std::size_t{index} * frameSize_; }
    const pcap_pkthdr* Header(u32 index) const { return &headers_[index]; }

  private:
    u32 frameSize_;
    std::vector<u8> bytes_;
    std::vector<pcap_pkthdr> headers_;
};

// One frame of each of `addresses`, then frames of hosts drawn at random, each host with a MAC of its own. Traffic
// follows no order that a processor could foretell.
inline FrameBlock ArpFramesOf(const std::vector<Address>& addresses, u32 count) {
    FrameBlock block(count, kFrameSize);
    const u32 hosts = static_cast<u32>(addresses.size());
    std::mt19937 random(1);
    for (u32 i = 0; i < count; ++i) {
        const u32 host = i < hosts ? i : static_cast<u32>(random() % hosts);
        WriteArpFrame(block.Frame(i), addresses[host], host);
    }
    return block;
}

// The shared state with its fences, and a vendor for the MACs of the frames unless told otherwise.
struct BenchLan {
    explicit BenchLan(bool knowsVendors = true) : data(system.services) {
        data.fences.CreateAll();
        if (knowsVendors)
            for (u32 octet = 0; octet < 256; ++octet) {
                char prefix[9];
                std::snprintf(prefix, sizeof prefix, "02:00:%02x", octet);
                data.vendors.Insert(prefix, std::make_unique<TcString>("Example Networks Inc."));
            }
    }
    test::TestServices system;
    VardelData data;
};

}  // namespace vardel::bench

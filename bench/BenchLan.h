// What the benchmarks share: frames held in one block of memory, as a capture library's buffer holds them,
// and the shared state that the handlers fill, with the system's real events behind its fences.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "bench/BenchFrames.h"
#include "capture/VardelARPImpl.h"
#include "capture/VardelData.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::bench {

constexpr i64 kStartSecond = 1'700'000'000;
constexpr u32 kFramesPerSecond =
    100'000;  // of the frames' own time, so that most share their second with the last

inline std::string AddressText(Address address) {
    u8 octets[4];
    WriteAddress(octets, address);
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", octets[0], octets[1], octets[2], octets[3]);
    return text;
}

// Frames of one size, one behind the other, each with its capture header.
class FrameBlock {
  public:
    FrameBlock(u32 count, u32 frameSize)
        : frameSize_(frameSize), bytes_(std::size_t{count} * frameSize), headers_(count) {
        for (u32 i = 0; i < count; ++i)
            headers_[i] = {{static_cast<long>(kStartSecond + i / kFramesPerSecond), 0}, frameSize, frameSize};
    }
    u32 Count() const { return static_cast<u32>(headers_.size()); }
    u8* Frame(u32 index) { return bytes_.data() + std::size_t{index} * frameSize_; }
    const pcap_pkthdr* Header(u32 index) const { return &headers_[index]; }

  private:
    u32 frameSize_;
    std::vector<u8> bytes_;
    std::vector<pcap_pkthdr> headers_;
};

// One frame of each of `addresses`, then frames of hosts drawn at random, each host with a MAC of its own.
// Traffic follows no order that a processor could foretell.
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
        if (!knowsVendors) return;
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

// Frames that the benchmarks and the capture generator put together, and the addresses that they come from.
#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace vardel::bench {

constexpr u32 kFrameSize = 60;  // the shortest that a wire carries

using Address = u32;  // host order

// 10.0.0.1 and on.
inline std::vector<Address> ConsecutiveAddresses(u32 count) {
    std::vector<Address> addresses(count);
    for (u32 i = 0; i < count; ++i) addresses[i] = 0x0a000001u + i;
    return addresses;
}

// `count` different addresses in no order and with no neighbours: an odd factor makes a permutation of all
// addresses.
inline std::vector<Address> SpreadAddresses(u32 count) {
    std::vector<Address> addresses(count);
    for (u32 i = 0; i < count; ++i) addresses[i] = (i + 1) * 2654435761u;
    return addresses;
}

inline void WriteAddress(u8* bytes, Address address) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<u8>(address >> (24 - 8 * i));
}

// The MAC 02:00 followed by the four octets of `number`.
inline void WriteMac(u8* bytes, u32 number) {
    bytes[0] = 2;
    bytes[1] = 0;
    WriteAddress(bytes + 2, number);
}

// A 60-byte ARP request of `sender` at the MAC of `mac`.
inline void WriteArpFrame(u8* frame, Address sender, u32 mac) {
    static constexpr u8 kHead[] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0, 0, 0, 0, 0,
                                   0,    8,    6,    0,    1,    8,    0, 6, 4, 0, 1};
    std::memset(frame, 0, kFrameSize);
    std::memcpy(frame, kHead, sizeof kHead);
    WriteMac(frame + 6, mac);
    WriteMac(frame + 22, mac);
    WriteAddress(frame + 28, sender);
    WriteAddress(frame + 38, 0x0a0000feu);
}

// An IPv4 frame of `size` bytes (60 at least) with ports and `payload` behind an eight-byte transport header.
inline void WriteIpFrame(u8* frame, u32 size, u8 protocol, Address source, u16 sourcePort, u16 targetPort,
                         std::string_view payload = {}) {
    const auto put16 = [&](u32 at, u32 value) {
        frame[at] = static_cast<u8>(value >> 8);
        frame[at + 1] = static_cast<u8>(value);
    };
    std::memset(frame, 0, size);
    WriteMac(frame, 0xfe);
    WriteMac(frame + 6, source);
    put16(12, 0x0800);
    frame[14] = 0x45;
    put16(16, size - 14);
    frame[22] = 64;
    frame[23] = protocol;
    WriteAddress(frame + 26, source);
    WriteAddress(frame + 30, 0x0a0000feu);
    put16(34, sourcePort);
    put16(36, targetPort);
    put16(38, size - 34);
    std::memcpy(frame + 42, payload.data(), payload.size());
}

constexpr u8 kTcp = 6;
constexpr u8 kUdp = 17;

}  // namespace vardel::bench

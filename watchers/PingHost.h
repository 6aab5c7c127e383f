// PingHost: one ICMP echo request to a host, and whether anything came back within a second.
//
// Blocks the calling thread for as long. Runs on the main thread alone, one host after another, as the counters of the
// process want it.
#pragma once

#include <array>

#include "platform/Services.h"

namespace vardel {

enum class PingResult : u32 { Answered = 0, NoSocket = 1, UnknownName = 2, TimedOut = 3 };

// An ICMP echo request (RFC 792) with 40 bytes of data, from its type on; the system puts the IP header in front.
constexpr std::size_t kEchoRequestSize = 48;
using EchoRequest = std::array<u8, kEchoRequestSize>;

// Identifier and sequence take the low 16 bits of each counter, least significant byte first, which is not the network's
// order; both are wanted. `ticks` are milliseconds.
EchoRequest FormEchoRequest(u32 identifier, u32 sequence, u32 ticks);

// Values of the next request; each sending takes them and adds 1. They go on over all hosts.
struct EchoCounters {
    u32 identifier = 1;
    u32 sequence = 1;
};

// `address` is a host's address or name. Any datagram that reaches the socket within the second counts as the answer,
// an ICMP error and another host's reply too, and whatever its content.
PingResult PingHost(const char* address, Services& services, EchoCounters& counters);
// With the counters of the process.
PingResult PingHost(const char* address, Services& services);

}  // namespace vardel

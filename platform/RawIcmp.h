// Raw ICMP sockets over IPv4, in the few steps of one echo request and its answer.
//
// Needs the right to open raw sockets (an administrator; root or CAP_NET_RAW). Without it Linux gives a datagram
// socket of ICMP instead, where its administrator allows those ("net.ipv4.ping_group_range"): there the kernel puts
// its own identifier and checksum into the request, an answer comes without its IP header, and only what answers
// this very request arrives.
#pragma once

#include <span>

#include "platform/Types.h"

namespace vardel {

using IcmpSocket = std::intptr_t;
constexpr IcmpSocket kNoIcmpSocket = -1;

enum class IcmpWait { Readable, TimedOut, Failed };

class RawIcmp {
  public:
    virtual ~RawIcmp() = default;

    // A new socket, owned by the caller and closed once; kNoIcmpSocket on failure.
    virtual IcmpSocket Open() = 0;
    virtual void Close(IcmpSocket icmp) = 0;

    // Sends an ICMP message to an address in network byte order; the system puts the IP header in front. A failure
    // shows only in that no answer comes.
    virtual void Send(IcmpSocket icmp, u32 address, std::span<const u8> message) = 0;

    // Waits at most timeoutMs until a datagram lies ready (with the datagram socket of Linux also an ICMP error).
    virtual IcmpWait Wait(IcmpSocket icmp, u32 timeoutMs) = 0;

    // Takes one datagram, IP header included, cut to the buffer. Gives its bytes, or -1.
    virtual int Receive(IcmpSocket icmp, std::span<u8> buffer) = 0;
};

RawIcmp& SystemRawIcmp();

}  // namespace vardel

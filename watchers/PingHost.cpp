#include "watchers/PingHost.h"

namespace vardel {

namespace {

constexpr u32 kTimeoutMs = 1000;
constexpr std::size_t kAnswerSize = 324;  // bytes
constexpr u8 kEchoRequestType = 8;
// Where the fields lie.
constexpr std::size_t kTypeAt = 0, kChecksumAt = 2, kIdentifierAt = 4, kSequenceAt = 6, kTimeAt = 12, kPadAt = 16;
constexpr u8 kFirstPadByte = 0x20;

// Closed with the scope, unless it was left open.
class OpenSocket {
  public:
    explicit OpenSocket(RawIcmp& icmp) : icmp_(icmp), descriptor_(icmp.Open()) {}
    ~OpenSocket() {
        if (descriptor_ != kNoIcmpSocket) icmp_.Close(descriptor_);
    }
    OpenSocket(const OpenSocket&) = delete;
    OpenSocket& operator=(const OpenSocket&) = delete;

    IcmpSocket Get() const { return descriptor_; }
    void LeaveOpen() { descriptor_ = kNoIcmpSocket; }

  private:
    RawIcmp& icmp_;
    IcmpSocket descriptor_;
};

void PutLow16(EchoRequest& packet, std::size_t at, u32 value) {
    packet[at] = static_cast<u8>(value);
    packet[at + 1] = static_cast<u8>(value >> 8);
}

// RFC 1071, summed over words as they lie in memory: the sum comes out in the same byte order as they have.
u16 InternetChecksum(const EchoRequest& packet) {
    u32 sum = 0;
    for (std::size_t at = 0; at < packet.size(); at += 2) sum += packet[at] | static_cast<u32>(packet[at + 1]) << 8;
    sum = (sum >> 16) + (sum & 0xffff);
    sum += sum >> 16;
    return static_cast<u16>(~sum);
}

PingResult AwaitAnswer(RawIcmp& icmp, IcmpSocket descriptor) {
    switch (icmp.Wait(descriptor, kTimeoutMs)) {
        case IcmpWait::Failed: return PingResult::NoSocket;
        case IcmpWait::TimedOut: return PingResult::TimedOut;
        case IcmpWait::Readable: break;
    }
    // Wanted: taken, and neither its source nor its kind looked at.
    std::array<u8, kAnswerSize> answer{};
    icmp.Receive(descriptor, answer);
    return PingResult::Answered;
}

}  // namespace

EchoRequest FormEchoRequest(u32 identifier, u32 sequence, u32 ticks) {
    EchoRequest packet{};
    packet[kTypeAt] = kEchoRequestType;
    PutLow16(packet, kIdentifierAt, identifier);
    PutLow16(packet, kSequenceAt, sequence);
    PutLow16(packet, kTimeAt, ticks);
    PutLow16(packet, kTimeAt + 2, ticks >> 16);
    for (std::size_t at = kPadAt; at < packet.size(); ++at)
        packet[at] = static_cast<u8>(kFirstPadByte + (at - kPadAt));
    PutLow16(packet, kChecksumAt, InternetChecksum(packet));
    return packet;
}

PingResult PingHost(const char* address, Services& services, EchoCounters& counters) {
    OpenSocket descriptor(services.rawIcmp);
    if (descriptor.Get() == kNoIcmpSocket) return PingResult::NoSocket;
    u32 target = 0;
    if (!services.resolver.HostByName(address, target)) {
        // Wanted: on this path alone the socket is never closed.
        descriptor.LeaveOpen();
        return PingResult::UnknownName;
    }
    const EchoRequest packet =
        FormEchoRequest(counters.identifier++, counters.sequence++, services.clock.TickCount());
    services.rawIcmp.Send(descriptor.Get(), target, packet);
    return AwaitAnswer(services.rawIcmp, descriptor.Get());
}

PingResult PingHost(const char* address, Services& services) {
    static EchoCounters counters;
    return PingHost(address, services, counters);
}

}  // namespace vardel

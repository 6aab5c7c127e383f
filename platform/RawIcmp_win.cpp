#include "platform/RawIcmp.h"

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

SOCKET Descriptor(IcmpSocket icmp) {
    return static_cast<SOCKET>(icmp);
}

class WindowsRawIcmp : public RawIcmp {
  public:
    IcmpSocket Open() override {
        const SOCKET descriptor = socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
        return descriptor == INVALID_SOCKET ? kNoIcmpSocket : static_cast<IcmpSocket>(descriptor);
    }
    void Close(IcmpSocket icmp) override {
        if (icmp != kNoIcmpSocket) closesocket(Descriptor(icmp));
    }
    void Send(IcmpSocket icmp, u32 address, std::span<const u8> message) override {
        sockaddr_in target{};
        target.sin_family = AF_INET;
        target.sin_addr.s_addr = address;
        sendto(Descriptor(icmp), reinterpret_cast<const char*>(message.data()), static_cast<int>(message.size()),
               0, reinterpret_cast<const sockaddr*>(&target), sizeof target);
    }
    IcmpWait Wait(IcmpSocket icmp, u32 timeoutMs) override {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(Descriptor(icmp), &readable);
        timeval limit{static_cast<long>(timeoutMs / 1000), static_cast<long>(timeoutMs % 1000) * 1000};
        const int ready = select(0, &readable, nullptr, nullptr, &limit);
        if (ready == SOCKET_ERROR) return IcmpWait::Failed;
        return ready == 0 ? IcmpWait::TimedOut : IcmpWait::Readable;
    }
    int Receive(IcmpSocket icmp, std::span<u8> buffer) override {
        sockaddr_in source{};
        int sourceSize = sizeof source;
        const int size = recvfrom(Descriptor(icmp), reinterpret_cast<char*>(buffer.data()),
                                  static_cast<int>(buffer.size()), 0, reinterpret_cast<sockaddr*>(&source),
                                  &sourceSize);
        // A datagram that is longer than the buffer fills it and is told as a failure.
        if (size == SOCKET_ERROR) return WSAGetLastError() == WSAEMSGSIZE ? static_cast<int>(buffer.size()) : -1;
        return size;
    }
};

}  // namespace

RawIcmp& SystemRawIcmp() {
    static WindowsRawIcmp icmp;
    return icmp;
}

}  // namespace vardel

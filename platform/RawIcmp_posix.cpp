#include "platform/RawIcmp.h"

#include <linux/filter.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>

namespace vardel {

namespace {

int Descriptor(IcmpSocket icmp) {
    return static_cast<int>(icmp);
}

// Three seconds after a packet for a neighbour that answers no ARP the kernel tells so itself, to every raw socket,
// as "host unreachable" from this machine to this machine. No host has answered then; with several silent hosts in a
// row the word about the first would count for the fourth. (Filter programs: Linux, Documentation/networking/
// filter.rst; they see the datagram from its IP header on.)
void LeaveOutOwnErrors(int descriptor) {
    constexpr unsigned kSource = 12, kDestination = 16;  // in the IP header
    constexpr unsigned kTake = 0xffffffff, kDrop = 0;
    sock_filter steps[] = {
        BPF_STMT(BPF_LDX | BPF_B | BPF_MSH, 0),  // X = length of the IP header
        BPF_STMT(BPF_LD | BPF_B | BPF_IND, 0),   // A = ICMP type
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, ICMP_DEST_UNREACH, 0, 5),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kSource),
        BPF_STMT(BPF_MISC | BPF_TAX, 0),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kDestination),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_X, 0, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, kDrop),
        BPF_STMT(BPF_RET | BPF_K, kTake),
    };
    const sock_fprog program{sizeof steps / sizeof *steps, steps};
    setsockopt(descriptor, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program);
}

int OpenDatagramSocket() {
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_ICMP);
    // An ICMP error counts as an answer here too; this kind of socket tells of one only on request (ip(7)).
    const int on = 1;
    if (descriptor >= 0) setsockopt(descriptor, IPPROTO_IP, IP_RECVERR, &on, sizeof on);
    return descriptor;
}

class PosixRawIcmp : public RawIcmp {
  public:
    IcmpSocket Open() override {
        const int descriptor = socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
        if (descriptor >= 0) {
            LeaveOutOwnErrors(descriptor);
            return descriptor;
        }
        return errno == EPERM || errno == EACCES ? OpenDatagramSocket() : kNoIcmpSocket;
    }
    void Close(IcmpSocket icmp) override {
        if (icmp != kNoIcmpSocket) close(Descriptor(icmp));
    }
    void Send(IcmpSocket icmp, u32 address, std::span<const u8> message) override {
        sockaddr_in target{};
        target.sin_family = AF_INET;
        target.sin_addr.s_addr = address;
        [[maybe_unused]] const auto sent = sendto(Descriptor(icmp), message.data(), message.size(), 0,
                                                  reinterpret_cast<const sockaddr*>(&target), sizeof target);
    }
    // poll() where others have select(), which can't take descriptors of 1024 and up.
    IcmpWait Wait(IcmpSocket icmp, u32 timeoutMs) override {
        using namespace std::chrono;
        const auto deadline = steady_clock::now() + milliseconds(timeoutMs);
        for (;;) {
            const auto left = ceil<milliseconds>(deadline - steady_clock::now());
            pollfd waited{Descriptor(icmp), POLLIN, 0};
            const int ready = poll(&waited, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
            if (ready < 0 && errno == EINTR) continue;
            if (ready < 0 || (waited.revents & POLLNVAL)) return IcmpWait::Failed;
            return ready == 0 ? IcmpWait::TimedOut : IcmpWait::Readable;
        }
    }
    int Receive(IcmpSocket icmp, std::span<u8> buffer) override {
        ssize_t size;
        do size = recv(Descriptor(icmp), buffer.data(), buffer.size(), MSG_DONTWAIT);
        while (size < 0 && errno == EINTR);
        return static_cast<int>(size);
    }
};

}  // namespace

RawIcmp& SystemRawIcmp() {
    static PosixRawIcmp icmp;
    return icmp;
}

}  // namespace vardel

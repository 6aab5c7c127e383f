// live_sender INTERFACE HOSTS FRAMES RATE: sends ARP frames of HOSTS hosts in turn, FRAMES in all, RATE a second.
//
// Prints how many were sent and how long it took. A frame that the interface's queue refuses is tried again.
#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "bench/BenchFrames.h"

namespace vardel::bench {
namespace {

constexpr u32 kBatch = 64;

[[noreturn]] void Fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

int OpenSocket(const char* interface) {
    const int descriptor = socket(AF_PACKET, SOCK_RAW, 0);
    if (descriptor < 0) Fail("socket");
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ARP);
    address.sll_ifindex = static_cast<int>(if_nametoindex(interface));
    if (address.sll_ifindex == 0) Fail(interface);
    if (bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) Fail("bind");
    return descriptor;
}

// A batch of frames, ready to go in one call of the system.
struct Batch {
    Batch() {
        for (u32 i = 0; i < kBatch; ++i) {
            parts[i] = {frames[i].data(), kFrameSize};
            messages[i] = {};
            messages[i].msg_hdr.msg_iov = &parts[i];
            messages[i].msg_hdr.msg_iovlen = 1;
        }
    }
    std::array<std::array<u8, kFrameSize>, kBatch> frames;
    std::array<iovec, kBatch> parts;
    std::array<mmsghdr, kBatch> messages;
};

void SendBatch(int descriptor, Batch& batch, u32 count) {
    for (u32 sent = 0; sent < count;) {
        const int result = sendmmsg(descriptor, &batch.messages[sent], count - sent, 0);
        if (result > 0) sent += static_cast<u32>(result);
        else if (errno != ENOBUFS && errno != EAGAIN && errno != EINTR) Fail("sendmmsg");
    }
}

int Run(const char* interface, u32 hosts, u32 frames, u32 rate) {
    using Clock = std::chrono::steady_clock;
    const int descriptor = OpenSocket(interface);
    const auto addresses = ConsecutiveAddresses(hosts);
    Batch batch;
    const auto start = Clock::now();
    for (u32 sent = 0; sent < frames;) {
        const u32 count = frames - sent < kBatch ? frames - sent : kBatch;
        for (u32 i = 0; i < count; ++i) {
            const u32 host = (sent + i) % hosts;
            WriteArpFrame(batch.frames[i].data(), addresses[host], host);
        }
        // A sender that was held up does not catch up in one burst: it goes on at most one batch late.
        std::this_thread::sleep_until(start + std::chrono::nanoseconds(u64{1'000'000'000} * sent / rate));
        SendBatch(descriptor, batch, count);
        sent += count;
    }
    std::printf("%u %.3f\n", frames, std::chrono::duration<double>(Clock::now() - start).count());
    close(descriptor);
    return 0;
}

}  // namespace
}  // namespace vardel::bench

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: live_sender INTERFACE HOSTS FRAMES RATE\n", stderr);
        return 2;
    }
    const auto number = [&](int at) { return static_cast<vardel::u32>(std::strtoul(argv[at], nullptr, 10)); };
    return vardel::bench::Run(argv[1], number(2), number(3), number(4));
}

// live_capture INTERFACE FRAMES SECONDS: captures as the capture thread does, with the program's own opening of the
// interface, filter and handlers, until FRAMES ARP frames were handled or SECONDS have passed.
//
// Prints "ready", and at the end what the handlers got and what the capture library counted (pcap_stats).
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "bench/BenchLan.h"
#include "capture/FrameDispatch.h"
#include "platform/CaptureDevice_posix.h"

namespace vardel::bench {
namespace {

constexpr int kSnapLength = 65536;
constexpr std::chrono::milliseconds kReadTimeout{1000};

int Run(const char* interface, u64 frames, int seconds) {
    char errors[kPcapErrorBufferSize] = "";
    const auto device = OpenLiveDevice(interface, {kSnapLength, true, kReadTimeout}, errors);
    if (!device) {
        std::fprintf(stderr, "%s: %s\n", interface, errors);
        return 1;
    }
    bpf_program filter{};
    if (device->Compile(filter, "arp or rarp or ip", 1, 0xFFFF0000) < 0 ||
        pcap_setfilter(device->Native(), &filter) < 0) {
        std::fprintf(stderr, "%s: %s\n", interface, pcap_geterr(device->Native()));
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);

    BenchLan lan;
    VardelARPImpl arp;
    VardelIPImpl ip;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (arp.packetCount < frames && std::chrono::steady_clock::now() < deadline) {
        pcap_pkthdr* header = nullptr;
        const u8* frame = nullptr;
        const int result = device->Next(&header, &frame);
        if (result < 0) break;
        if (result > 0) DispatchFrame(header, frame, arp, ip, &lan.data);
    }
    pcap_stat counts{};
    pcap_stats(device->Native(), &counts);
    std::printf("handled %llu received %u dropped %u dropped by the interface %u hosts %u\n",
                static_cast<unsigned long long>(arp.packetCount), counts.ps_recv, counts.ps_drop, counts.ps_ifdrop,
                lan.data.arpMap.Count());
    return 0;
}

}  // namespace
}  // namespace vardel::bench

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: live_capture INTERFACE FRAMES SECONDS\n", stderr);
        return 2;
    }
    return vardel::bench::Run(argv[1], std::strtoull(argv[2], nullptr, 10), std::atoi(argv[3]));
}

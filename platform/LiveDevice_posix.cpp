// A live interface. libpcap hands frames over in blocks; its own read time-out never fires on a silent link,
// so the descriptor is polled here and libpcap is only asked without blocking.
#include <poll.h>

#include <algorithm>
#include <cstdio>

#include "platform/CaptureDevice_posix.h"

namespace vardel {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How long the kernel may gather frames before it hands a block over. Short enough for an alert, and long
// enough that a trickle of frames doesn't use up the blocks while a handler waits for a name server.
constexpr milliseconds kHandOver{200};
constexpr int kBufferBytes = 8 << 20;
// Frames that the kernel still gathers when the time-out falls due are waited for this long, once.
constexpr milliseconds kGatheringGrace = 3 * kHandOver;
// A descriptor can't tell that an interface that went down is now gone; libpcap has to be asked for it.
constexpr milliseconds kLongestPoll{50};

class LiveDevice : public pcap_handle {
  public:
    LiveDevice(pcap_t* pcap, milliseconds readTimeout) : pcap_(pcap), readTimeout_(readTimeout) {}
    ~LiveDevice() override { pcap_close(pcap_); }

    pcap_t* Native() override { return pcap_; }

    int Next(pcap_pkthdr** header, const u8** frame) override {
        int result = TryNext(header, frame);
        if (result != 0) return result;
        const u32 receivedBefore = Received();
        result = NextUntil(Clock::now() + readTimeout_, header, frame);
        if (result != 0 || Received() == receivedBefore) return result;
        return NextUntil(Clock::now() + kGatheringGrace, header, frame);
    }

  private:
    int TryNext(pcap_pkthdr** header, const u8** frame) {
        ::pcap_pkthdr* native = nullptr;
        const int result = pcap_next_ex(pcap_, &native, frame);
        *header = reinterpret_cast<pcap_pkthdr*>(native);
        return result;
    }

    int NextUntil(Clock::time_point deadline, pcap_pkthdr** header, const u8** frame) {
        for (;;) {
            const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
            if (left.count() <= 0) return 0;
            Poll(left);
            const int result = TryNext(header, frame);
            if (result != 0) return result;
        }
    }

    void Poll(milliseconds left) {
        if (pcap_get_required_select_timeout(pcap_)) left = std::min(left, kLongestPoll);
        // A device without a descriptor (-1) is left out by poll, which then only sleeps.
        pollfd watched{pcap_get_selectable_fd(pcap_), POLLIN, 0};
        if (watched.fd < 0) left = std::min(left, kLongestPoll);
        poll(&watched, 1, static_cast<int>(left.count()));
    }

    // Frames that reached the interface's buffer so far, handed over or not.
    u32 Received() {
        pcap_stat counts{};
        return pcap_stats(pcap_, &counts) == 0 ? counts.ps_recv : 0;
    }

    pcap_t* const pcap_;
    const milliseconds readTimeout_;
};

}  // namespace

std::unique_ptr<pcap_handle> OpenLiveDevice(const char* name, const CaptureOptions& options, char* errors) {
    char why[PCAP_ERRBUF_SIZE] = "";
    pcap_t* pcap = pcap_create(name, why);
    if (!pcap) {
        std::snprintf(errors, kPcapErrorBufferSize, "%s", why);
        return nullptr;
    }
    auto device = std::make_unique<LiveDevice>(pcap, options.readTimeout);
    pcap_set_snaplen(pcap, options.snapLength);
    pcap_set_promisc(pcap, options.promiscuous);
    pcap_set_timeout(pcap, static_cast<int>(kHandOver.count()));
    pcap_set_buffer_size(pcap, kBufferBytes);
    if (pcap_activate(pcap) < 0) {
        std::snprintf(errors, kPcapErrorBufferSize, "%s", pcap_geterr(pcap));
        return nullptr;
    }
    if (pcap_setnonblock(pcap, 1, why) != 0) {
        std::snprintf(errors, kPcapErrorBufferSize, "%s", why);
        return nullptr;
    }
    return device;
}

}  // namespace vardel

#include "capture/CaptureLoop.h"

#include "capture/EventMap.h"
#include "capture/FrameDispatch.h"
#include "capture/VardelData.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

constexpr int kSnapLength = 65536;
constexpr int kPromiscuous = 1;
constexpr int kReadTimeoutMs = 1000;
constexpr u32 kRetryMs = 1000;
constexpr int kLinkTypeEthernet = 1;
constexpr char kFilter[] = "arp or rarp or ip";
constexpr u32 kFilterNetMask = 0xffff0000;

}  // namespace

// An opened adapter, closed with its scope. The compiled filter has no entry point to be freed by.
class CaptureLoop::Connection {
  public:
    Connection(const CaptureEntryPoints& capture, pcap_handle* handle) : capture_(capture), handle_(handle) {}
    ~Connection() {
        VARDEL_TRACE("Vardel", "SnifferThread", "Closing connection...");
        if (capture_.close) capture_.close(handle_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

  private:
    const CaptureEntryPoints& capture_;
    pcap_handle* const handle_;
};

CaptureLoop::CaptureLoop(const ThreadParams& params, const CaptureEntryPoints& capture)
    : params_(params),
      capture_(capture),
      events_(params.data->services.events),
      neverSignalled_(events_.Create("DoNothingEvent", false, false)) {}

CaptureLoop::~CaptureLoop() {
    events_.Close(neverSignalled_);
}

void CaptureLoop::Run() {
    VardelData& data = *params_.data;
    while (!params_.stop) {
        if (!data.capturing) {
            SleepOneSecond();
            continue;
        }
        const TcString interfaceName(data.interfaceName);
        AnnounceStart(interfaceName);
        if (interfaceName.IsEmpty())
            StopForWantOfInterface();
        else
            CaptureFrom(interfaceName);
    }
}

void CaptureLoop::AnnounceStart(const TcString& interfaceName) {
    if (announced_) return;
    PostEvent(EventKind::CaptureStarted, interfaceName);
    announced_ = true;
}

// The one way in which capture ends by itself.
void CaptureLoop::StopForWantOfInterface() {
    if (params_.data->capturing && announced_) {
        announced_ = false;
        PostEvent(EventKind::CaptureStoppedNoInterface);
    }
    params_.data->capturing = 0;
}

// One connection, from its opening to its closing. An adapter that can't be opened is tried again after a
// second, for ever and without a word; one that opens and isn't fit is tried again at once, and that is
// wanted.
void CaptureLoop::CaptureFrom(const TcString& interfaceName) {
    pcap_handle* handle = nullptr;
    if (capture_.open) {
        VARDEL_TRACE("Vardel", "SnifferThread", "Connecting...");
        handle =
            capture_.open(interfaceName, kSnapLength, kPromiscuous, kReadTimeoutMs, nullptr, errorBuffer_);
    }
    if (!handle) {
        SleepOneSecond();
        return;
    }
    VARDEL_TRACE("Vardel", "SnifferThread", "Connected...");
    const Connection connection(capture_, handle);
    params_.arp->interfaceName = interfaceName;
    if (!IsEthernet(handle) || !SetFilter(handle)) return;
    VARDEL_TRACE("Vardel", "SnifferThread", "Start loop...");
    ReadFrames(handle);
}

bool CaptureLoop::IsEthernet(pcap_handle* handle) {
    VARDEL_TRACE("Vardel", "SnifferThread", "Get datalink...");
    if (!capture_.datalink || capture_.datalink(handle) != kLinkTypeEthernet) return false;
    VARDEL_TRACE("Vardel", "SnifferThread", "Datalink ok...");
    return true;
}

bool CaptureLoop::SetFilter(pcap_handle* handle) {
    VARDEL_TRACE("Vardel", "SnifferThread", "Compile interface...");
    pcap_filter program{};
    if (!capture_.compile || capture_.compile(handle, &program, kFilter, 1, kFilterNetMask) < 0) return false;
    VARDEL_TRACE("Vardel", "SnifferThread", "Interface compiled...");
    VARDEL_TRACE("Vardel", "SnifferThread", "Setting filter...");
    if (!capture_.setfilter || capture_.setfilter(handle, &program) < 0) return false;
    VARDEL_TRACE("Vardel", "SnifferThread", "Setting filter ok...");
    return true;
}

// A read time-out (0) ends the connection like an error does, and that is wanted: see the header.
void CaptureLoop::ReadFrames(pcap_handle* handle) {
    int result = 0;
    while (capture_.next_ex) {
        pcap_pkthdr* header = nullptr;
        const u8* frame = nullptr;
        result = capture_.next_ex(handle, &header, &frame);
        if (result < 1 || !MayGoOn()) break;
        if (header && frame) DispatchFrame(header, frame, *params_.arp, *params_.ip, params_.data);
    }
    VARDEL_TRACE_INT("Vardel", "SnifferThread", "PcapNext Result: ", result);
}

// Asked after each frame. Only here is a stop by the user told as an event: on a quiet network the read
// time-out comes first, and neither this stop nor the next start gets one. That is wanted.
bool CaptureLoop::MayGoOn() {
    if (params_.stop) {
        VARDEL_TRACE("Vardel", "SnifferThread", "App is going home...");
        return false;
    }
    if (params_.data->capturing) return true;
    if (announced_) {
        PostEvent(EventKind::CaptureStopped);
        announced_ = false;
    }
    return false;
}

void CaptureLoop::SleepOneSecond() {
    SleepUnlessStopped(params_, events_, neverSignalled_, kRetryMs);
}

}  // namespace vardel

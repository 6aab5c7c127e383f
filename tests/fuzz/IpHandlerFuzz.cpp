// The handler of IP frames on any frames, under any settings: it must come through, and agree with its
// literal twin.
//
// Input: settings, the state of the one known host (the sender of the first frame), then frames by their
// length. From some frame on a machine may run out of memory: what the frame was to do is lost, so from then
// on the handler must only come through.
#include <optional>

#include "foundation/Reclaim.h"
#include "foundation/TcTrace.h"
#include "tests/fuzz/FailingMemory.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/unit/support/LiteralIp.h"
#include "tests/unit/support/OwnDataFolder.h"
#include "tests/unit/support/Twins.h"

using namespace vardel;
using namespace vardel::test;

namespace {

constexpr std::size_t kMostFrames = 16;

// Tracing to a file of the process's own, which begins anew each time.
class Tracing {
  public:
    explicit Tracing(bool on) : on_(on) {
        static const OwnDataFolder folder;
        if (on_) TcTrace::SetupTracing(1, 1);
    }
    ~Tracing() {
        if (on_) TcTrace::SetupTracing(0, 0);
    }
    Tracing(const Tracing&) = delete;
    Tracing& operator=(const Tracing&) = delete;

  private:
    const bool on_;
};

class FuzzedLan {
  public:
    explicit FuzzedLan(FuzzInput& input) : input_(input) {
        static const auto texts = TwinTexts();
        state_.texts = texts;
        state_.documents = lan_.system.http.documents = {
            {"http://a", "<friendlyName> TV: x</friendlyName><presentationURL> http://a/ </presentationURL>"}};
        TakeSettings();
        TakeHost();
    }

    void Run() {
        const Tracing tracing(isTraced_);
        for (std::size_t count = 0; count < kMostFrames && !input_.IsEmpty(); ++count) {
            const Frame frame = input_.Block();
            if (count == 0) AddHost(SourceOf(frame));
            Say(frame, memoryFails_ && count == failingFrame_);
        }
        // Also what was half done must be whole enough to be looked at.
        const std::string difference = Difference(lan_, state_);
        if (!memoryFails_) MustBeEmpty(difference);
    }

  private:
    void TakeSettings() {
        VardelSettings& real = lan_.data.settings;
        LiteralSettings& twin = state_.settings;
        const u8 flags = input_.Byte();
        real.Syslog = static_cast<u8>(twin.syslog = flags & 1 ? 0 : 1);
        real.SyslogNotification = static_cast<u8>(twin.syslogNotification = flags >> 1 & 1);
        real.SyslogNotificationType = twin.syslogNotificationType = flags >> 2 & 3;
        real.SyslogMaxEntries = twin.syslogMaxEntries = flags >> 4 & 3;
        real.SyslogNotificationLevel = twin.syslogNotificationLevel = input_.Below(10);
        real.SyslogNotificationFacility = twin.syslogNotificationFacility =
            static_cast<i32>(input_.Below(26)) - 1;
        if (flags & 0x40) {
            state_.notificationWords = {"err", "x"};
            lan_.data.ParseNotificationWords("err,x");
        }
        isTraced_ = flags & 0x80;
    }

    void TakeHost() {
        hostFlags_ = input_.Byte();
        memoryFails_ = hostFlags_ & 0x80;
        if (!memoryFails_) return;
        failingFrame_ = input_.Below(kMostFrames);
        allowed_ = input_.Byte();
    }

    void AddHost(const std::string& address) {
        if (hostFlags_ & 1) return;
        HostRecord& host = lan_.Knows(address);
        LiteralHost& twin = *(state_.arpMap[address] = state_.NewHost());
        static const char* const kLabels[] = {"", " ", "a label that was there before"};
        twin.ip = address;
        twin.isLocal = hostFlags_ >> 1 & 1;
        twin.nameUnresolved = hostFlags_ >> 2 & 1;
        twin.os = kLabels[(hostFlags_ >> 3 & 15) % 3];
        host.isLocal = static_cast<u8>(twin.isLocal);
        host.nameUnresolved = static_cast<u8>(twin.nameUnresolved);
        host.os = twin.os.c_str();
    }

    static std::string SourceOf(const Frame& frame) {
        std::string address;
        for (std::size_t i = 26; i < 30; ++i)
            address += (i > 26 ? "." : "") + std::to_string(ByteAt(frame, i));
        return address;
    }

    void Say(const Frame& frame, bool memoryFails) {
        WatchedLan::HandOver(frame, WatchedLan::kNow, [&](const pcap_pkthdr* header, const u8* bytes) {
            std::optional<FailingMemory> memory;
            if (memoryFails) memory.emplace(allowed_);
            lan_.ip.PacketReceived(header, bytes, &lan_.data);
        });
        literal_.PacketReceived(&frame, &state_);
    }

    FuzzInput& input_;
    WatchedLan lan_;
    LiteralState state_;
    LiteralIp literal_;
    bool isTraced_ = false;
    u8 hostFlags_ = 0;
    bool memoryFails_ = false;
    std::size_t failingFrame_ = 0;
    u32 allowed_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
    FuzzInput input(data, size);
    FuzzedLan(input).Run();
    FreeRetired();
    return 0;
}

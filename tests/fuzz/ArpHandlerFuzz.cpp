// The ARP handler on any frames, under any settings and with any names: it must come through, and agree with
// its literal twin.
//
// Input: settings, what the resolver says, then steps: a frame by its length, or what another thread does to
// the sender of the frame before. Few hosts stand at a time, so that frames meet known ones. A frame may also
// meet a machine whose memory runs out: what it was to do is lost in part, so from then on the handler must
// only come through.
#include <cstring>

#include "foundation/Reclaim.h"
#include "tests/fuzz/FailingMemory.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/unit/support/LiteralArp.h"
#include "tests/unit/support/Twins.h"

using namespace vardel;
using namespace vardel::test;

namespace {

constexpr std::size_t kMostSteps = 32;

class FuzzedLan {
  public:
    explicit FuzzedLan(FuzzInput& input) : input_(input) {
        static const auto texts = TwinTexts();
        state.texts = texts;
        TakeSettings();
        TakeNames();
    }

    void Step() {
        const u8 kind = static_cast<u8>(input_.Below(8));
        if (kind >= 5)
            SayFrame();
        else if (kind == 4)
            SayFrameWithoutMemory();
        else if (kind == 0)
            List(lan.data.settings.trustedHosts, state.settings.trustedHosts);
        else if (kind == 1)
            List(lan.data.settings.distrustedHosts, state.settings.distrustedHosts);
        else if (kind == 2)
            AddVendor();
        else
            TouchHost();
    }

    // Looks at everything on both sides; also what was half done must be whole enough for that.
    void Judge() {
        const std::string difference = Difference(lan, state);
        if (comparable_) MustBeEmpty(difference);
    }

    WatchedLan lan;
    LiteralState state;

  private:
    void TakeSettings() {
        const u8 flags = input_.Byte();
        lan.data.settings.ShareSearch = static_cast<u8>(state.settings.shareSearch = flags & 1);
        lan.data.settings.UseWMI = static_cast<u8>(state.settings.useWmi = flags >> 1 & 1);
        if (flags & 4) state.localHostName = "local";
        lan.data.localHostName = state.localHostName.c_str();
    }

    void TakeNames() {
        static const char* const kNames[] = {"", "local", "other"};
        const u8 flags = input_.Byte();
        LiteralResolver& names = state.resolver;
        if (flags & 1) names.canonicalNames = {"10.0.0.1", "canonical"};
        names.requiredName = kNames[(flags >> 1 & 3) % 3];
        names.hostByAddress = kNames[(flags >> 3 & 3) % 3];
        names.shortName = kNames[(flags >> 5 & 3) % 3];
        lan.system.resolver.canonicalNames = names.canonicalNames;
        lan.system.resolver.requiredName = names.requiredName;
        lan.system.resolver.hostByAddress = names.hostByAddress;
        lan.system.resolver.shortName = names.shortName;
    }

    // Mostly a little later than the frame before; the clock of the capturing machine may also say anything.
    Frame NextFrame() {
        const u8 step = input_.Byte();
        seconds_ = step == 255 ? input_.Signed32() : seconds_ + step;
        Frame frame = input_.Block();
        sender_.clear();
        for (std::size_t i = 28; i < 32; ++i)
            sender_ += (i > 28 ? "." : "") + std::to_string(ByteAt(frame, i));
        return frame;
    }

    void SayFrame() {
        const Frame frame = NextFrame();
        WatchedLan::HandOver(frame, seconds_, [&](const pcap_pkthdr* header, const u8* bytes) {
            lan.arp.PacketReceived(header, bytes, &lan.data);
        });
        literal_.PacketReceived(seconds_, &frame, &state);
    }

    void SayFrameWithoutMemory() {
        comparable_ = false;
        const u8 allowed = input_.Byte();
        WatchedLan::HandOver(NextFrame(), seconds_, [&](const pcap_pkthdr* header, const u8* bytes) {
            const FailingMemory memory(allowed);
            lan.arp.PacketReceived(header, bytes, &lan.data);
        });
    }

    void List(ListedHostTable& table, std::map<std::string, LiteralListedHost>& twin) {
        if (sender_.empty() || twin.count(sender_)) return;
        const u8 flags = input_.Byte();
        ListedHost listed{};
        std::strcpy(listed.ipAddress, sender_.c_str());
        if (flags & 1) std::strcpy(listed.hostName, "typed");
        if (flags & 2) std::strcpy(listed.macAddress, "aa:bb:cc:dd:ee:ff");
        twin[sender_] = {listed.hostName, listed.macAddress, ""};
        table.Insert(sender_.c_str(), std::make_unique<GuardedRecord<ListedHost>>(listed));
    }

    void AddVendor() {
        static const char* const kVendors[] = {"", "Acme"};
        const std::string prefix = input_.Flag() ? "02:00:00" : "00:00:00";
        const char* vendor = kVendors[input_.Below(2)];
        if (state.vendors.emplace(prefix, vendor).second)
            lan.data.vendors.Insert(prefix.c_str(), std::make_unique<TcString>(vendor));
    }

    void TouchHost() {
        const auto found = state.arpMap.find(sender_);
        if (found == state.arpMap.end() || !found->second || !lan.FindHost(sender_)) return;
        HostRecord& host = lan.Host(sender_);
        LiteralHost& twin = *found->second;
        switch (input_.Below(5)) {
            case 0:
                host.shareScanBusy = static_cast<u8>(twin.shareScanBusy = 1 - twin.shareScanBusy);
                break;
            case 1:
                host.mac = (twin.mac = "").c_str();
                break;
            case 2:
                host.hostName = (twin.hostName = "renamed").c_str();
                break;
            case 3:
                lan.data.DeleteHost(sender_.c_str());
                state.arpMap.erase(found);
                break;
            default:
                lan.data.DeleteHost(sender_.c_str());
                lan.data.arpMap.Insert(sender_.c_str(), nullptr);
                found->second = nullptr;
        }
    }

    FuzzInput& input_;
    LiteralArp literal_;
    std::string sender_;  // of the frame before
    i64 seconds_ = WatchedLan::kNow;
    bool comparable_ = true;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
    FuzzInput input(data, size);
    {
        FuzzedLan fuzzed(input);
        for (std::size_t steps = 0; steps < kMostSteps && !input.IsEmpty(); ++steps) fuzzed.Step();
        fuzzed.Judge();
    }
    FreeRetired();
    return 0;
}

// The ARP handler against its literal twin, over random frames, lists, vendor tables and names.
#include <gtest/gtest.h>

#include <cstring>
#include <iostream>

#include "tests/unit/support/LiteralArp.h"
#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u64 kFrames = 1'000'000;
constexpr u64 kFramesALan = 200;

const std::vector<std::string> kAddresses = {"10.0.0.1", "10.0.0.2",        "10.0.0.30", "192.168.100.200",
                                             "0.0.0.1",  "255.255.255.255", "0.0.0.0"};
const std::vector<std::string> kMacs = {"02:00:00:00:00:01", "02:00:00:00:00:02", "00:11:22:aa:bb:cc",
                                        "ff:ff:ff:ff:ff:ff"};
const std::vector<std::string> kPrefixes = {"02:00:00", "00:11:22", "ff:ff:ff"};
const std::vector<std::string> kNames = {"", "host", "local", "10.0.0.1", std::string(300, 'n')};

void Copy(const std::string& text, char* field, std::size_t size) {
    std::memset(field, 0, size);
    text.copy(field, size - 1);
}

void DrawListed(Chance& chance, ListedHostTable& table, std::map<std::string, LiteralListedHost>& twin) {
    for (const std::string& address : kAddresses) {
        if (!chance.OneIn(3)) continue;
        LiteralListedHost expected{chance.Of<const char*>({"", "typed by the user"}),
                                   chance.Of<const char*>({"", "aa:bb:cc:dd:ee:ff"}), "before"};
        ListedHost listed{};
        Copy(address, listed.ipAddress, sizeof listed.ipAddress);
        Copy(expected.hostName, listed.hostName, sizeof listed.hostName);
        Copy(expected.macAddress, listed.macAddress, sizeof listed.macAddress);
        Copy(expected.lastPacket, listed.lastPacket, sizeof listed.lastPacket);
        table.Insert(address.c_str(), std::make_unique<GuardedRecord<ListedHost>>(listed));
        twin[address] = expected;
    }
}

void DrawResolver(Chance& chance, ScriptedResolver& real, LiteralResolver& twin) {
    twin.canonicalNames.clear();
    for (u32 count = chance.Below(3); count > 0; --count)
        twin.canonicalNames.push_back(chance.Of<const char*>({"10.0.0.1", "10.0.0.2", "canonical.name"}));
    twin.requiredName = chance.Of(kNames);
    twin.hostByAddress = chance.Of(kNames);
    twin.shortName = chance.Of(kNames);
    real.canonicalNames = twin.canonicalNames;
    real.requiredName = twin.requiredName;
    real.hostByAddress = twin.hostByAddress;
    real.shortName = twin.shortName;
    real.calls.clear();
}

void DrawSettings(Chance& chance, WatchedLan& lan, LiteralState& state) {
    lan.data.settings.ShareSearch = static_cast<u8>(state.settings.shareSearch = chance.OneIn(2));
    lan.data.settings.UseWMI = static_cast<u8>(state.settings.useWmi = chance.OneIn(2));
}

void DrawVendor(Chance& chance, WatchedLan& lan, LiteralState& state) {
    const std::string prefix = chance.Of(kPrefixes);
    const std::string vendor = chance.Of<const char*>({"", "Acme", "A maker whose name needs the heap"});
    if (state.vendors.emplace(prefix, vendor).second)
        lan.data.vendors.Insert(prefix.c_str(), std::make_unique<TcString>(vendor.c_str()));
}

// A record that the adapter discovery made: trusted, and perhaps without a MAC.
void AddLocal(Chance& chance, WatchedLan& lan, LiteralState& state) {
    const std::string address = chance.Of(kAddresses);
    if (state.arpMap.count(address)) return;
    LiteralHost& twin = *(state.arpMap[address] = state.NewHost());
    HostRecord& host = lan.Knows(address);
    twin.ip = address;
    twin.mac = chance.Of<const char*>({"", "02:00:00:00:00:01"});
    twin.hostName = "local";
    twin.vendorUnknown = chance.OneIn(2);
    twin.trustState = 1;
    twin.isLocal = 1;
    host.mac = twin.mac.c_str();
    host.hostName = "local";
    host.vendorUnknown = static_cast<u8>(twin.vendorUnknown);
    host.trustState = TrustState::Trusted;
    host.isLocal = 1;
}

// What other threads do to a host between two frames.
void TouchHost(Chance& chance, WatchedLan& lan, LiteralState& state) {
    const std::string address = chance.Of(kAddresses);
    const auto found = state.arpMap.find(address);
    if (found == state.arpMap.end() || !found->second) return;
    HostRecord& host = lan.Host(address);
    LiteralHost& twin = *found->second;
    switch (chance.Below(5)) {
        case 0:
            host.shareScanBusy = static_cast<u8>(twin.shareScanBusy = !twin.shareScanBusy);
            break;
        case 1:
            host.greyedOut = static_cast<u8>(twin.greyedOut = 1);
            break;
        case 2:
            host.rowDirty = static_cast<u8>(twin.rowDirty = 0);
            break;
        case 3:
            host.hostName = (twin.hostName = chance.Of(kNames)).c_str();
            break;
        default:
            lan.data.DeleteHost(address.c_str());
            state.arpMap.erase(found);
    }
}

void Drain(WatchedLan& lan, LiteralState& state) {
    lan.data.newEntries.Clear();
    lan.data.macSpoofs.Clear();
    lan.data.netResWork.Clear();
    lan.data.wmiWork.ClearTo(lan.data.wmiWork.TakeMark(), [](WmiWorkItem* item) { delete item; });
    state.newEntries.clear();
    state.macSpoofs.clear();
    state.netResWork.clear();
    state.wmiWork.clear();
}

struct Reached {
    u64 newHosts = 0, spoofs = 0, shares = 0;
};

void RunOneLan(Chance& chance, Reached& reached) {
    WatchedLan lan;
    LiteralState state;
    LiteralArp literal;
    state.texts = TwinTexts();
    state.localHostName = chance.Of<const char*>({"", "local"});
    lan.data.localHostName = state.localHostName.c_str();
    DrawListed(chance, lan.data.settings.trustedHosts, state.settings.trustedHosts);
    DrawListed(chance, lan.data.settings.distrustedHosts, state.settings.distrustedHosts);
    if (chance.OneIn(2)) AddLocal(chance, lan, state);
    if (chance.OneIn(8) && !state.arpMap.count("10.0.0.2")) {
        lan.data.arpMap.Insert("10.0.0.2", nullptr);
        state.arpMap["10.0.0.2"] = nullptr;
    }
    i64 seconds = 86'400 + chance.Below(2'000'000'000);
    for (u64 i = 0; i < kFramesALan; ++i) {
        if (i == 0 || chance.OneIn(12)) DrawResolver(chance, lan.system.resolver, state.resolver);
        if (i == 0 || chance.OneIn(12)) DrawSettings(chance, lan, state);
        if (chance.OneIn(24)) DrawVendor(chance, lan, state);
        if (chance.OneIn(8)) TouchHost(chance, lan, state);
        seconds += chance.OneIn(4) ? chance.Below(100) : 0;
        Frame frame = ArpFrame{.ip = chance.Of(kAddresses),
                               .mac = chance.Of(kMacs),
                               .operation = static_cast<u16>(chance.Below(5)),
                               .etherType = chance.OneIn(4) ? kRarpEtherType : kArpEtherType};
        if (chance.OneIn(8)) Mutate(frame, 14, chance);
        const std::size_t spoofs = state.macSpoofs.size(), shares = state.netResWork.size();
        lan.Says(frame, seconds);
        literal.PacketReceived(seconds, &frame, &state);
        reached.spoofs += state.macSpoofs.size() - spoofs;
        reached.shares += state.netResWork.size() - shares;
        if (chance.OneIn(24)) {
            ASSERT_EQ(Difference(lan, state), "") << "frame " << i;
        }
        if (chance.OneIn(48)) Drain(lan, state);
    }
    ASSERT_EQ(Difference(lan, state), "");
    ASSERT_EQ(lan.arp.packetCount, literal.packetCount);
    reached.newHosts += state.events.size();
}

TEST(ArpTwin, AgreesOverRandomFrames) {
    Chance chance(19821126);
    const u64 lans = TwinRounds(kFrames) / kFramesALan;
    Reached reached;
    for (u64 i = 0; i < lans; ++i) {
        RunOneLan(chance, reached);
        ASSERT_FALSE(HasFatalFailure()) << "network " << i;
    }
    const u64 frames = lans * kFramesALan;
    std::cout << "[ twins    ] " << frames << " frames, " << reached.newHosts << " new hosts, "
              << reached.spoofs << " spoofs, " << reached.shares << " queued for shares\n";
    EXPECT_GT(reached.newHosts, frames / 50);
    EXPECT_GT(reached.spoofs, frames / 5);
    EXPECT_GT(reached.shares, frames / 5);
}

}  // namespace
}  // namespace vardel::test

#include "capture/VardelARPImpl.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "platform/Clock.h"
#include "tests/unit/support/Lan.h"
#include "tests/unit/support/SampleFile.h"
#include "tests/unit/support/Savefile.h"

namespace vardel::test {
namespace {

using Texts = std::vector<std::string>;

std::string LocalTimeOfDay(std::time_t moment) {
    char text[20];
    std::strftime(text, sizeof text, "%H:%M:%S", std::localtime(&moment));
    return text;
}

class ArpHandler : public LanTest {};

TEST_F(ArpHandler, MakesAHostOfAnyKindOfArpFrame) {
    Says(ArpFrame{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    Says(ArpReply{.ip = "10.0.0.6", .mac = "00:11:22:33:44:66"});
    Says(ArpFrame{.ip = "10.0.0.7", .mac = "00:11:22:33:44:77", .targetIp = "10.0.0.7"});
    Says(RarpRequest{.ip = "10.0.0.8", .mac = "00:11:22:33:44:88"});
    EXPECT_EQ(data.arpMap.Count(), 4u);
    EXPECT_STREQ(Host("10.0.0.8").mac.GetContent(), "00:11:22:33:44:88");
    EXPECT_EQ(arp.packetCount, 4u);
}

TEST_F(ArpHandler, WritesAddressesWithoutLeadingZerosAndInLowerCase) {
    Says(ArpReply{.ip = "1.20.3.255", .mac = "0A:0B:00:FF:09:E0"});
    HostRecord& host = Host("1.20.3.255");
    EXPECT_STREQ(host.ip.GetContent(), "1.20.3.255");
    EXPECT_STREQ(host.mac.GetContent(), "0a:0b:00:ff:09:e0");
    Says(ArpReply{.ip = "255.255.255.255", .mac = "ff:ff:ff:ff:ff:ff"});
    EXPECT_STREQ(Host("255.255.255.255").ip.GetContent(), "255.255.255.255");
}

TEST_F(ArpHandler, FillsANewHost) {
    SaysAt(1'700'000'000, ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    const HostRecord& host = Host("10.0.0.5");
    EXPECT_EQ(host.lastSeen, 1'700'000'000);
    EXPECT_EQ(host.lastSeenText.GetContent(), LocalTimeOfDay(1'700'000'000));
    EXPECT_STREQ(host.vendor.GetContent(), "Unknown vendor");
    EXPECT_EQ(host.vendorUnknown, 1);
    EXPECT_STREQ(host.hostName.GetContent(), "Hostname not available");
    EXPECT_EQ(host.nameUnresolved, 1);
    EXPECT_EQ(host.trustState, TrustState::Unknown);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_EQ(host.greyedOut, 0);
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(host.isLocal, 0);
}

TEST_F(ArpHandler, AnnouncesANewHostOnce) {
    system.resolver.requiredName = "printer";
    Says(ArpReply{.ip = "10.0.0.5"});
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Addresses(data.newEntries), Texts{"10.0.0.5"});
    EXPECT_EQ(Events(), (std::vector<Event>{{5, "printer", "10.0.0.5", ""}}));
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

TEST_F(ArpHandler, DropsAProbeButCountsIt) {
    Says(ArpProbe{});
    EXPECT_TRUE(data.arpMap.IsEmpty());
    EXPECT_EQ(arp.packetCount, 1u);
    EXPECT_TRUE(Events().empty());
}

TEST_F(ArpHandler, CountsCallsWithMissingArguments) {
    const Frame frame = ArpReply{};
    pcap_pkthdr header{{0, 0}, 60, 60};
    EXPECT_EQ(arp.PacketReceived(nullptr, frame.data(), &data), 0u);
    EXPECT_EQ(arp.PacketReceived(&header, nullptr, &data), 0u);
    EXPECT_EQ(arp.PacketReceived(&header, frame.data(), nullptr), 0u);
    EXPECT_EQ(arp.packetCount, 3u);
    EXPECT_TRUE(data.arpMap.IsEmpty());
}

TEST_F(ArpHandler, ReadsBytesBehindTheEndOfAShortFrameAsZero) {
    Frame frame = ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"};
    frame.resize(30);  // ends within the sender's protocol address
    frame.shrink_to_fit();
    Says(frame);
    EXPECT_EQ(data.arpMap.Count(), 1u);
    EXPECT_NE(Find("10.0.0.0"), nullptr);
    frame.resize(28);
    frame.shrink_to_fit();
    Says(frame);
    EXPECT_EQ(data.arpMap.Count(), 1u) << "an address of zeros makes no host";
}

TEST_F(ArpHandler, AnyPrefixOfAFrameIsHarmless) {
    const Frame whole = ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"};
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const Frame prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        pcap_pkthdr header{{0, 0}, static_cast<u32>(length), 60};
        static const u8 nothing = 0;
        arp.PacketReceived(&header, length ? prefix.data() : &nothing, &data);
    }
    EXPECT_NE(Find("10.0.0.5"), nullptr);
    EXPECT_NE(Find("10.0.0.0"), nullptr);
    EXPECT_NE(Find("10.0.0.0"), Find("10.0.0.5"));
}

TEST_F(ArpHandler, KeepsTheFirstMacWhenAnotherClaimsTheAddress) {
    SaysAt(100, ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    SaysAt(200, ArpReply{.ip = "10.0.0.5", .mac = "66:66:66:66:66:66"});
    EXPECT_STREQ(Host("10.0.0.5").mac.GetContent(), "00:11:22:33:44:55");
    EXPECT_EQ(Addresses(data.macSpoofs), Texts{"10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").lastSeen, 200) << "the time moves on for the spoofed frame as well";
    SaysAt(300, ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    SaysAt(400, ArpReply{.ip = "10.0.0.5", .mac = "66:66:66:66:66:66"});
    EXPECT_EQ(Addresses(data.macSpoofs), (Texts{"10.0.0.5", "10.0.0.5"}));
    EXPECT_EQ(Host("10.0.0.5").lastSeen, 400);
}

TEST_F(ArpHandler, OneMacMayClaimManyAddresses) {
    for (const char* ip : {"10.0.0.5", "10.0.0.6", "10.0.0.7"}) Says(ArpReply{.ip = ip, .mac = "00:11:22:33:44:55"});
    EXPECT_EQ(data.arpMap.Count(), 3u);
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

TEST_F(ArpHandler, ALocalRecordWithoutMacTakesTheFirstOneSeen) {
    auto record = std::make_unique<HostRecord>();
    record->ip = "10.0.0.9";
    record->isLocal = 1;
    data.arpMap.Insert("10.0.0.9", data.Adopt(std::move(record)));
    Vendor("00:11:22", "Example Cards");
    Says(ArpReply{.ip = "10.0.0.9", .mac = "00:11:22:33:44:55"});
    EXPECT_STREQ(Host("10.0.0.9").mac.GetContent(), "00:11:22:33:44:55");
    EXPECT_STREQ(Host("10.0.0.9").vendor.GetContent(), "Example Cards");
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
    EXPECT_TRUE(data.newEntries.IsEmpty()) << "a local host is never new";
}

TEST_F(ArpHandler, LeavesAKeyWithoutRecordAlone) {
    data.arpMap.Insert("10.0.0.5", nullptr);
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(data.arpMap.Count(), 1u);
    EXPECT_TRUE(Events().empty());
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(ArpHandler, RefreshesAKnownHost) {
    SaysAt(100, ArpReply{.ip = "10.0.0.5"});
    Host("10.0.0.5").greyedOut = 1;
    SaysAt(7300, ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").lastSeen, 7300);
    EXPECT_EQ(Host("10.0.0.5").lastSeenText.GetContent(), LocalTimeOfDay(7300));
    EXPECT_EQ(Host("10.0.0.5").greyedOut, 0);
    EXPECT_EQ(Host("10.0.0.5").rowDirty, 1);
}

TEST_F(ArpHandler, TellsTheTimeOfAFirstFrameFromTheSecondBefore1970) {
    for (const ReadFrame& saved : FramesOf(Sample("frames/second_before_1970.pcap")))
        SaysAt(saved.second, saved.frame);
    char time[kTimeOfDaySize];
    FormatTimeOfDay(-1, time);
    EXPECT_EQ(Host("10.0.0.1").lastSeen, -1);
    EXPECT_STREQ(Host("10.0.0.1").lastSeenText.GetContent(), time);
}

TEST_F(ArpHandler, TakesTheVendorOfTheThreeLeadingOctets) {
    Vendor("00:11:22", "Example Cards");
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    EXPECT_STREQ(Host("10.0.0.5").vendor.GetContent(), "Example Cards");
    EXPECT_EQ(Host("10.0.0.5").vendorUnknown, 0);
    EXPECT_STREQ(Host("10.0.0.5").mac.GetContent(), "00:11:22:33:44:55") << "only the working text is cut";
}

TEST_F(ArpHandler, FillsAnUnknownVendorOnceTheTableIsThere) {
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    EXPECT_STREQ(Host("10.0.0.5").vendor.GetContent(), "Unknown vendor");
    Vendor("00:11:22", "Example Cards");
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    EXPECT_STREQ(Host("10.0.0.5").vendor.GetContent(), "Example Cards");
    EXPECT_EQ(Host("10.0.0.5").vendorUnknown, 0);
}

TEST_F(ArpHandler, AnEmptyOrMissingVendorTextStaysUnknown) {
    Vendor("00:11:22", "");
    data.vendors.Insert("00:11:33", std::unique_ptr<TcString>());
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    Says(ArpReply{.ip = "10.0.0.6", .mac = "00:11:33:33:44:55"});
    for (const char* ip : {"10.0.0.5", "10.0.0.6"}) {
        EXPECT_STREQ(Host(ip).vendor.GetContent(), "Unknown vendor");
        EXPECT_EQ(Host(ip).vendorUnknown, 1);
    }
}

TEST_F(ArpHandler, AKnownVendorStaysWhenTheTableLosesIt) {
    Vendor("00:11:22", "Example Cards");
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    data.vendors.Clear();
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    EXPECT_STREQ(Host("10.0.0.5").vendor.GetContent(), "Example Cards");
}

TEST_F(ArpHandler, ASpoofedFrameLeavesAnUnknownVendorAlone) {
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    Vendor("66:66:66", "Attacker's Cards");
    Vendor("00:11:22", "Example Cards");
    Says(ArpReply{.ip = "10.0.0.5", .mac = "66:66:66:66:66:66"});
    EXPECT_STREQ(Host("10.0.0.5").vendor.GetContent(), "Unknown vendor");
}

TEST_F(ArpHandler, FirstSightFillsOnlyEmptyFieldsOfAListedHost) {
    system.resolver.requiredName = "printer";
    List(data.settings.trustedHosts, "10.0.0.5", "my printer", "");
    List(data.settings.trustedHosts, "10.0.0.6", "", "aa:aa:aa:aa:aa:aa");
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    Says(ArpReply{.ip = "10.0.0.6", .mac = "00:11:22:33:44:66"});
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.5").hostName, "my printer");
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.5").macAddress, "00:11:22:33:44:55");
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.6").hostName, "printer");
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.6").macAddress, "aa:aa:aa:aa:aa:aa");
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Trusted);
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.5").lastPacket,
                 Host("10.0.0.5").lastSeenText.GetContent());
}

TEST_F(ArpHandler, TheSecondFrameOverwritesTheNameOfAListedHostAndNeverItsMac) {
    system.resolver.requiredName = "printer";
    List(data.settings.distrustedHosts, "10.0.0.5", "my printer", "aa:aa:aa:aa:aa:aa");
    SaysAt(100, ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Distrusted);
    SaysAt(200, ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    const ListedHost listed = Listed(data.settings.distrustedHosts, "10.0.0.5");
    EXPECT_STREQ(listed.hostName, "printer");
    EXPECT_STREQ(listed.macAddress, "aa:aa:aa:aa:aa:aa");
    EXPECT_STREQ(listed.lastPacket, Host("10.0.0.5").lastSeenText.GetContent());
}

TEST_F(ArpHandler, AnAddressInBothTablesIsDistrusted) {
    List(data.settings.trustedHosts, "10.0.0.5");
    List(data.settings.distrustedHosts, "10.0.0.5");
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Distrusted);
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Distrusted);
}

TEST_F(ArpHandler, AnAddressThatLeftTheTableKeepsItsState) {
    List(data.settings.trustedHosts, "10.0.0.5");
    Says(ArpReply{.ip = "10.0.0.5"});
    data.settings.trustedHosts.Clear();
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Trusted);
}

TEST_F(ArpHandler, AnAddressThatJoinsATableIsMarkedByItsNextFrame) {
    Says(ArpReply{.ip = "10.0.0.5"});
    List(data.settings.trustedHosts, "10.0.0.5");
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(Host("10.0.0.5").trustState, TrustState::Trusted);
}

TEST_F(ArpHandler, AnOverlongNameIsCutToTheListedField) {
    system.resolver.requiredName = std::string(400, 'n');
    List(data.settings.trustedHosts, "10.0.0.5");
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(std::string(Listed(data.settings.trustedHosts, "10.0.0.5").hostName), std::string(259, 'n'));
    EXPECT_STREQ(Listed(data.settings.trustedHosts, "10.0.0.5").macAddress, Host("10.0.0.5").mac.GetContent());
}

TEST_F(ArpHandler, QueuesANewHostForInspectionWhenAsked) {
    Says(ArpReply{.ip = "10.0.0.4"});
    data.settings.UseWMI = 1;
    Says(ArpReply{.ip = "10.0.0.5"});
    Says(ArpReply{.ip = "10.0.0.6"});
    Says(ArpReply{.ip = "10.0.0.5"});
    Texts served;
    while (auto item = data.wmiWork.TakeBack()) {
        served.push_back((*item)->host->ip.GetContent());
        EXPECT_EQ((*item)->isLocal, 0);
        EXPECT_EQ((*item)->accountKey, 0u);
        delete *item;
    }
    EXPECT_EQ(served, (Texts{"10.0.0.5", "10.0.0.6"})) << "once each, served in arrival order";
}

TEST_F(ArpHandler, QueuesEveryFrameForTheShareSearchWhenAsked) {
    Says(ArpReply{.ip = "10.0.0.4"});
    EXPECT_TRUE(data.netResWork.IsEmpty());
    data.settings.ShareSearch = 1;
    Says(ArpReply{.ip = "10.0.0.5"});
    Says(ArpReply{.ip = "10.0.0.5"});
    Says(ArpReply{.ip = "10.0.0.4"});
    EXPECT_EQ(Addresses(data.netResWork), (Texts{"10.0.0.4", "10.0.0.5", "10.0.0.5"}));
    EXPECT_EQ((*data.netResWork.TakeBack())->ip, "10.0.0.5");
}

TEST_F(ArpHandler, DoesNotQueueAHostWhileItsSharesAreScanned) {
    data.settings.ShareSearch = 1;
    Says(ArpReply{.ip = "10.0.0.5"});
    Host("10.0.0.5").shareScanBusy = 1;
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_EQ(data.netResWork.Count(), 1u);
}

TEST_F(ArpHandler, ADeletedHostIsNewAgainAndItsRecordStaysValid) {
    Says(ArpReply{.ip = "10.0.0.5"});
    HostRecord* first = Find("10.0.0.5");
    EXPECT_TRUE(data.DeleteHost("10.0.0.5"));
    EXPECT_FALSE(data.DeleteHost("10.0.0.5"));
    EXPECT_EQ(Find("10.0.0.5"), nullptr);
    Says(ArpReply{.ip = "10.0.0.5"});
    EXPECT_NE(Find("10.0.0.5"), first);
    EXPECT_EQ(Addresses(data.newEntries), (Texts{"10.0.0.5", "10.0.0.5"}));
    EXPECT_STREQ(first->ip.GetContent(), "10.0.0.5");
    EXPECT_EQ(Events().size(), 2u);
}

TEST_F(ArpHandler, ClearingTheNewEntriesLeavesTheHosts) {
    Says(ArpReply{.ip = "10.0.0.5"});
    Says(ArpReply{.ip = "10.0.0.6"});
    data.newEntries.Clear();
    EXPECT_EQ(data.arpMap.Count(), 2u);
}

TEST_F(ArpHandler, WorksBeforeTheFencesExist) {
    data.fences.CloseAll();
    data.settings.UseWMI = 1;
    data.settings.ShareSearch = 1;
    Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
    Says(ArpReply{.ip = "10.0.0.5", .mac = "66:66:66:66:66:66"});
    EXPECT_EQ(data.newEntries.Count(), 1u);
    EXPECT_EQ(data.macSpoofs.Count(), 1u);
    EXPECT_EQ(data.netResWork.Count(), 2u);
}

}  // namespace
}  // namespace vardel::test

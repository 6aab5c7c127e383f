#include "capture/AdapterDiscovery.h"

#include <gtest/gtest.h>

#include "capture/EventMap.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

namespace {

const std::vector<u8> kMask24 = {255, 255, 255, 0};
const std::vector<u8> kMask16 = {255, 255, 0, 0};
const std::vector<u8> kNoIp = {0, 0, 0, 0};
const std::vector<u8> kMac = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0xef};

class AdapterDiscovery : public testing::Test {
  protected:
    u32 Find() { return FindAdapters(data, capture.EntryPoints()); }

    const AdapterRecord& Adapter(u32 index) {
        static const AdapterRecord none;
        const auto found = data.adapters.find(index);
        EXPECT_NE(found, data.adapters.end()) << "no adapter " << index;
        return found == data.adapters.end() ? none : *found->second;
    }
    HostRecord* Host(const char* ip) { return data.arpMap.FindValue(ip); }

    TestServices system;
    VardelData data{system.services};
    ScriptedCapture capture;
};

std::string Text(const TcString& text) {
    return text.GetContent();
}

}  // namespace

TEST_F(AdapterDiscovery, GivesNoneWithoutItsEntryPoint) {
    capture.devices = {{.name = "eth0"}};
    CaptureEntryPoints entries = capture.EntryPoints();
    entries.findalldevs_ex = nullptr;
    EXPECT_EQ(FindAdapters(data, entries), 0u);
    EXPECT_TRUE(data.adapters.empty());
}

TEST_F(AdapterDiscovery, GivesNoneWhereTheListFails) {
    capture.devices = {{.name = "eth0"}};
    capture.findResult = -1;
    EXPECT_EQ(Find(), 0u);
    EXPECT_EQ(capture.listsFreed, 0);
}

TEST_F(AdapterDiscovery, FreesAnEmptyListToo) {
    EXPECT_EQ(Find(), 0u);
    EXPECT_EQ(capture.listsFreed, 1);
    EXPECT_EQ(capture.source, "rpcap://");
}

TEST_F(AdapterDiscovery, TakesNameDescriptionAndMac) {
    capture.devices = {{.name = "rpcap://\\Device\\NPF_{AA}", .description = "Network adapter", .mac = kMac}};
    EXPECT_EQ(Find(), 1u);
    EXPECT_EQ(Text(Adapter(1).deviceName), "\\Device\\NPF_{AA}");
    EXPECT_EQ(Text(Adapter(1).description), "Network adapter");
    EXPECT_EQ(Text(Adapter(1).macAddress), "00:1a:2b:3c:4d:ef");
    EXPECT_EQ(capture.adapterNames, std::vector<std::string>{"\\Device\\NPF_{AA}"});
    EXPECT_EQ(capture.adaptersOpen, 0);
    EXPECT_EQ(capture.listsFreed, 1);
}

TEST_F(AdapterDiscovery, DropsEightCharactersAtTheStartWhereverThePrefixStands) {
    capture.devices = {{.name = "12345678rpcap://tail"}};
    Find();
    EXPECT_EQ(Text(Adapter(1).deviceName), "rpcap://tail");
}

TEST_F(AdapterDiscovery, TakesTheFriendlyNameOfTheConnection) {
    const std::string network = "SYSTEM\\CurrentControlSet\\Control\\Network";
    system.machineConfig.keys = {network, network + "\\{4D36}", network + "\\{4D36}\\{AA}",
                                 network + "\\{4D36}\\{AA}\\Connection"};
    system.machineConfig.values[network + "\\{4D36}\\{AA}\\Connection|Name"] = "Local Area Connection";
    capture.devices = {{.name = "rpcap://\\Device\\NPF_{AA}"}, {.name = "rpcap://\\Device\\NPF_Loopback"}};
    Find();
    EXPECT_EQ(Text(Adapter(1).friendlyName), "Local Area Connection");
    EXPECT_EQ(Text(Adapter(2).friendlyName), "");
}

TEST_F(AdapterDiscovery, CountsANamelessDeviceInTheIndexButNotInTheResult) {
    capture.devices = {{.name = "eth0"}, {.name = ""}, {.name = "eth1"}};
    data.interfaceName = "eth1";
    EXPECT_EQ(Find(), 2u);
    EXPECT_EQ(data.adapters.size(), 2u);
    EXPECT_EQ(Text(Adapter(1).deviceName), "eth0");
    EXPECT_EQ(Text(Adapter(3).deviceName), "eth1");
    EXPECT_EQ(data.adapterIndex, 3u);
}

TEST_F(AdapterDiscovery, LeavesTheMacEmptyWhereTheAdapterDoesNotOpenOrAnswer) {
    capture.devices = {{.name = "shut", .mac = kMac, .opens = false}, {.name = "mute"}};
    Find();
    EXPECT_TRUE(Adapter(1).macAddress.IsEmpty());
    EXPECT_TRUE(Adapter(2).macAddress.IsEmpty());
    EXPECT_EQ(capture.adaptersOpen, 0);
}

TEST_F(AdapterDiscovery, LeavesTheMacEmptyWithoutTheAdapterLibrary) {
    capture.devices = {{.name = "eth0", .mac = kMac}};
    CaptureEntryPoints entries = capture.EntryPoints();
    entries.PacketOpenAdapter = nullptr;
    EXPECT_EQ(FindAdapters(data, entries), 1u);
    EXPECT_TRUE(Adapter(1).macAddress.IsEmpty());
}

TEST_F(AdapterDiscovery, GivesADeviceWithoutAddressesZerosAndNoHost) {
    system.resolver.shortName = "me";
    capture.devices = {{.name = "eth0"}};
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "0.0.0.0");
    EXPECT_EQ(Text(Adapter(1).netMask), "0.0.0.0");
    EXPECT_TRUE(Adapter(1).hostName.IsEmpty());
    EXPECT_TRUE(data.arpMap.IsEmpty());
    EXPECT_TRUE(data.localHostName.IsEmpty());
}

TEST_F(AdapterDiscovery, MakesATrustedLocalHostOfAUsableAddress) {
    system.resolver.shortName = "me";
    capture.devices = {{.name = "eth0", .addresses = {{{192, 168, 1, 20}, kMask24}}, .mac = kMac}};
    const u32 events = TheEventMap().Count();
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "192.168.1.20");
    EXPECT_EQ(Text(Adapter(1).netMask), "255.255.255.0");
    EXPECT_EQ(Text(Adapter(1).hostName), "me");
    EXPECT_EQ(Text(data.localHostName), "me");
    HostRecord* host = Host("192.168.1.20");
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(Text(host->ip), "192.168.1.20");
    EXPECT_EQ(Text(host->mac), "00:1a:2b:3c:4d:ef");
    EXPECT_EQ(Text(host->hostName), "me");
    EXPECT_EQ(host->isLocal, 1);
    EXPECT_EQ(host->trustState, TrustState::Trusted);
    EXPECT_EQ(host->vendorUnknown, 1);
    EXPECT_TRUE(host->vendor.IsEmpty());
    EXPECT_TRUE(data.newEntries.IsEmpty());
    EXPECT_EQ(TheEventMap().Count(), events);
}

TEST_F(AdapterDiscovery, AsksTheResolverForTheShortName) {
    capture.devices = {{.name = "eth0", .addresses = {{{192, 168, 1, 20}, kMask24}}}};
    Find();
    EXPECT_EQ(system.resolver.calls, std::vector<std::string>{"short 0"});
    ASSERT_NE(Host("192.168.1.20"), nullptr);
    EXPECT_TRUE(Host("192.168.1.20")->hostName.IsEmpty());
}

TEST_F(AdapterDiscovery, MakesNoHostOfADeviceWithOnlyZeroAddresses) {
    capture.devices = {{.name = "eth0", .addresses = {{kNoIp, kMask24}, {kNoIp, kMask16}}},
                       {.name = "eth1", .addresses = {{kNoIp, kMask16}}}};
    EXPECT_EQ(Find(), 2u);
    EXPECT_EQ(data.adapters.size(), 2u);
    EXPECT_EQ(Text(Adapter(1).ipAddress), "0.0.0.0");
    EXPECT_EQ(Text(Adapter(1).netMask), "255.255.255.0");
    EXPECT_TRUE(data.arpMap.IsEmpty());
}

TEST_F(AdapterDiscovery, GivesTheSecondAddressTheMaskOfTheFirst) {
    capture.devices = {{.name = "eth0", .addresses = {{kNoIp, kMask16}, {{10, 0, 0, 5}, kMask24}}}};
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "10.0.0.5");
    EXPECT_EQ(Text(Adapter(1).netMask), "255.255.0.0");
    EXPECT_NE(Host("10.0.0.5"), nullptr);
}

TEST_F(AdapterDiscovery, LeavesTheMaskEmptyWhereTheFirstEntryHasNone) {
    capture.devices = {{.name = "eth0", .addresses = {{kNoIp, {}}, {{10, 0, 0, 5}, kMask24}}}};
    Find();
    EXPECT_TRUE(Adapter(1).netMask.IsEmpty());
}

TEST_F(AdapterDiscovery, StopsAtTheFirstUsableAddress) {
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}, {{10, 0, 0, 6}, kMask24}}}};
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "10.0.0.5");
    EXPECT_EQ(data.arpMap.Count(), 1u);
}

TEST_F(AdapterDiscovery, TakesAnAddressOfAnotherFamilyForNone) {
    constexpr u16 kFamilyIPv6 = 23;
    capture.devices = {
        {.name = "eth0", .addresses = {{{9, 9, 9, 9}, {9, 9, 9, 9}, kFamilyIPv6}, {{10, 0, 0, 5}, kMask24}}}};
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "10.0.0.5");
    EXPECT_EQ(Text(Adapter(1).netMask), "0.0.0.0");
}

TEST_F(AdapterDiscovery, TakesAnEntryWithoutAnAddressAsUsable) {
    capture.devices = {{.name = "eth0", .addresses = {{{}, kMask24}, {{10, 0, 0, 5}, kMask24}}}};
    Find();
    EXPECT_TRUE(Adapter(1).ipAddress.IsEmpty());
    EXPECT_NE(Host(""), nullptr);
    EXPECT_EQ(Host("10.0.0.5"), nullptr);
}

TEST_F(AdapterDiscovery, TakesAnEntryWithoutAnAddressBehindAZeroOneForZero) {
    capture.devices = {{.name = "eth0", .addresses = {{kNoIp, kMask24}, {{}, kMask16}, {{10, 0, 0, 5}, {}}}}};
    Find();
    EXPECT_EQ(Text(Adapter(1).ipAddress), "10.0.0.5");
    EXPECT_EQ(data.arpMap.Count(), 1u);
}

TEST_F(AdapterDiscovery, NamesTheMachineAfterTheFirstUsableAdapter) {
    struct NamingResolver : ScriptedResolver {
        bool NameOfAddress(u32 address, u16, NameLookup, std::string& name) override {
            u8 bytes[4];
            std::memcpy(bytes, &address, sizeof bytes);
            name = "host" + std::to_string(bytes[3]);
            return true;
        }
    } resolver;
    Services named = system.services.With(resolver);
    VardelData own(named);
    capture.devices = {{.name = "eth0", .addresses = {{kNoIp, kMask24}}},
                       {.name = "eth1", .addresses = {{{10, 0, 0, 5}, kMask24}}},
                       {.name = "eth2", .addresses = {{{10, 0, 0, 6}, kMask24}}}};
    EXPECT_EQ(FindAdapters(own, capture.EntryPoints()), 3u);
    EXPECT_EQ(Text(own.localHostName), "host5");
    EXPECT_EQ(Text(own.arpMap.FindValue("10.0.0.6")->hostName), "host6");
}

TEST_F(AdapterDiscovery, MarksTheChosenAdapter) {
    data.interfaceName = "eth1";
    capture.devices = {{.name = "rpcap://eth0", .mac = {1, 2, 3, 4, 5, 6}},
                       {.name = "rpcap://eth1", .mac = kMac}};
    Find();
    EXPECT_EQ(data.adapterIndex, 2u);
    EXPECT_EQ(Text(data.localMac), "00:1a:2b:3c:4d:ef");
}

TEST_F(AdapterDiscovery, LeavesTheIndexAtZeroWhereTheChosenAdapterIsGone) {
    data.interfaceName = "eth9";
    capture.devices = {{.name = "eth0", .mac = kMac}};
    Find();
    EXPECT_EQ(data.adapterIndex, 0u);
    EXPECT_TRUE(data.localMac.IsEmpty());
    EXPECT_EQ(Text(data.interfaceName), "eth9");
}

TEST_F(AdapterDiscovery, QueuesLocalHostsForInspectionAsTheSettingsSay) {
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}}}};
    data.settings.UseWMI = 1;
    data.settings.ShareSearch = 1;
    Find();
    HostRecord* host = Host("10.0.0.5");
    const auto item = data.wmiWork.TakeBack();
    ASSERT_TRUE(item.has_value());
    const std::unique_ptr<WmiWorkItem> owned(*item);
    EXPECT_EQ(owned->host, host);
    EXPECT_EQ(owned->isLocal, 1);
    EXPECT_EQ(owned->accountKey, 0u);
    EXPECT_EQ(data.netResWork.TakeBack(), host);
    EXPECT_TRUE(data.wmiWork.IsEmpty());
    EXPECT_TRUE(data.netResWork.IsEmpty());
}

TEST_F(AdapterDiscovery, ServesTheInspectionQueuesInOrderOfTheAdapters) {
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}}},
                       {.name = "eth1", .addresses = {{{10, 0, 0, 6}, kMask24}}}};
    data.settings.UseWMI = 0;
    data.settings.ShareSearch = 1;
    Find();
    EXPECT_EQ(data.netResWork.TakeBack(), Host("10.0.0.5"));
    EXPECT_EQ(data.netResWork.TakeBack(), Host("10.0.0.6"));
    EXPECT_TRUE(data.wmiWork.IsEmpty());
}

TEST_F(AdapterDiscovery, QueuesNothingWithTheSettingsOff) {
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}}}};
    data.settings.UseWMI = 0;
    data.settings.ShareSearch = 0;
    Find();
    EXPECT_TRUE(data.wmiWork.IsEmpty());
    EXPECT_TRUE(data.netResWork.IsEmpty());
}

TEST_F(AdapterDiscovery, FillsInTheVendorWhereTheTableIsThere) {
    data.vendors.Insert("00:1a:2b", std::make_unique<TcString>("Ace Cards"));
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}}, .mac = kMac},
                       {.name = "eth1", .addresses = {{{10, 0, 0, 6}, kMask24}}, .mac = {9, 9, 9, 9, 9, 9}},
                       {.name = "eth2", .addresses = {{{10, 0, 0, 7}, kMask24}}}};
    Find();
    EXPECT_EQ(Text(Host("10.0.0.5")->vendor), "Ace Cards");
    EXPECT_EQ(Host("10.0.0.5")->vendorUnknown, 0);
    EXPECT_EQ(Text(Host("10.0.0.6")->vendor), "Unknown vendor");
    EXPECT_TRUE(Host("10.0.0.7")->vendor.IsEmpty());
}

TEST_F(AdapterDiscovery, KeepsTheFirstRecordWhereTwoAdaptersShareAnAddress) {
    capture.devices = {{.name = "eth0", .addresses = {{{10, 0, 0, 5}, kMask24}}, .mac = kMac},
                       {.name = "eth1", .addresses = {{{10, 0, 0, 5}, kMask24}}, .mac = {9, 9, 9, 9, 9, 9}}};
    EXPECT_EQ(Find(), 2u);
    EXPECT_EQ(data.arpMap.Count(), 1u);
    EXPECT_EQ(Text(Host("10.0.0.5")->mac), "00:1a:2b:3c:4d:ef");
}

}  // namespace vardel::test

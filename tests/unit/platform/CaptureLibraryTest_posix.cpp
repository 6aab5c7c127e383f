#include "platform/CaptureLibrary.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstring>
#include <string>

#include "tests/unit/support/SystemCapture.h"

namespace vardel::test {

TEST(PosixCaptureLibrary, HasAllTwelveEntryPoints) {
    const CaptureEntryPoints entries = SystemEntryPoints();
    EXPECT_NE(entries.findalldevs_ex, nullptr);
    EXPECT_NE(entries.freealldevs, nullptr);
    EXPECT_NE(entries.close, nullptr);
    EXPECT_NE(entries.next_ex, nullptr);
    EXPECT_NE(entries.setfilter, nullptr);
    EXPECT_NE(entries.compile, nullptr);
    EXPECT_NE(entries.datalink, nullptr);
    EXPECT_NE(entries.open, nullptr);
    EXPECT_NE(entries.PacketGetVersion, nullptr);
    EXPECT_NE(entries.PacketCloseAdapter, nullptr);
    EXPECT_NE(entries.PacketRequest, nullptr);
    EXPECT_NE(entries.PacketOpenAdapter, nullptr);
}

TEST(PosixCaptureLibrary, KnowsNoOtherModuleOrEntryPoint) {
    CaptureModules& modules = SystemCaptureModules();
    EXPECT_EQ(modules.Load("other.dll"), nullptr);
    const ModuleHandle capture = modules.Load("wpcap.dll");
    ASSERT_NE(capture, nullptr);
    EXPECT_EQ(modules.Find(capture, "pcap_other"), nullptr);
    EXPECT_EQ(modules.Find(capture, "PacketRequest"), nullptr);
}

TEST(PosixCaptureLibrary, TellsTheLibrarysVersion) {
    EXPECT_NE(std::string(SystemEntryPoints().PacketGetVersion()).find("libpcap"), std::string::npos);
}

TEST(PosixCaptureLibrary, ListsTheMachinesInterfacesWithInternetAddressesOnly) {
    const CaptureEntryPoints capture = SystemEntryPoints();
    pcap_interface* devices = nullptr;
    char errors[kPcapErrorBufferSize] = "";
    ASSERT_EQ(capture.findalldevs_ex("rpcap://", nullptr, &devices, errors), 0) << errors;
    bool hasLoopback = false;
    for (const pcap_interface* device = devices; device; device = device->next) {
        if (std::strcmp(device->name, "lo") == 0) hasLoopback = true;
        for (const pcap_address* address = device->addresses; address; address = address->next) {
            const int family = address->addr ? address->addr->sa_family : AF_INET;
            EXPECT_TRUE(family == AF_INET || family == AF_INET6) << device->name << " has family " << family;
        }
    }
    EXPECT_TRUE(hasLoopback);
    capture.freealldevs(devices);
}

TEST(PosixCaptureLibrary, FreesAnEmptyList) {
    SystemEntryPoints().freealldevs(nullptr);
}

TEST(PosixCaptureLibrary, OpensNoAdapterThatIsNotThere) {
    EXPECT_EQ(SystemEntryPoints().PacketOpenAdapter("vardel-no-such"), nullptr);
}

TEST(PosixCaptureLibrary, TellsNoMacOfAnInterfaceThatIsNotEthernet) {
    const CaptureEntryPoints capture = SystemEntryPoints();
    packet_adapter* loopback = capture.PacketOpenAdapter("lo");
    ASSERT_NE(loopback, nullptr);
    PacketRequestBlock block{0x01010102, 6, {}, {}};
    EXPECT_EQ(capture.PacketRequest(loopback, 0, &block), 0);
    capture.PacketCloseAdapter(loopback);
}

TEST(PosixCaptureLibrary, SaysWhyAnInterfaceCannotBeOpened) {
    char errors[kPcapErrorBufferSize] = "";
    EXPECT_EQ(SystemEntryPoints().open("rpcap://vardel-no-such", 65536, 1, 1000, nullptr, errors), nullptr);
    EXPECT_STRNE(errors, "");
}

}  // namespace vardel::test

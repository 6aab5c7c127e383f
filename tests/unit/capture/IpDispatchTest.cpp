#include <gtest/gtest.h>

#include <string>

#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

const std::string kHostIp = "10.0.0.7";

class IpDispatch : public testing::Test {
  protected:
    IpDispatch() : host(lan.Knows(kHostIp)) { lan.data.settings.Syslog = 1; }
    void ExpectNothingLearned() {
        EXPECT_EQ(host.osFromBrowse, 0);
        EXPECT_TRUE(host.os.IsEmpty());
        EXPECT_EQ(lan.data.syslogs.Count(), 0u);
        EXPECT_EQ(lan.data.arpMap.Count(), 1u);
        EXPECT_TRUE(lan.SeenEvents().empty());
    }

    WatchedLan lan;
    HostRecord& host;
};

TEST_F(IpDispatch, CountsEveryFrame) {
    lan.Says(TcpFrame{});
    lan.Says(UdpFrame{});
    lan.Says(SyslogDatagram{});
    lan.Says(Frame(10));
    lan.Says(Frame());
    EXPECT_EQ(lan.ip.packetCount, 5u);
}

TEST_F(IpDispatch, CountsNoFrameThatIsNotWhole) {
    const Frame frame = UdpFrame{};
    pcap_pkthdr header{};
    header.caplen = header.len = static_cast<u32>(frame.size());
    EXPECT_EQ(lan.ip.PacketReceived(nullptr, frame.data(), &lan.data), 0u);
    EXPECT_EQ(lan.ip.PacketReceived(&header, nullptr, &lan.data), 0u);
    EXPECT_EQ(lan.ip.PacketReceived(&header, frame.data(), nullptr), 0u);
    EXPECT_EQ(lan.ip.packetCount, 0u);
    EXPECT_EQ(lan.ip.PacketReceived(&header, frame.data(), &lan.data), 0u);
    EXPECT_EQ(lan.ip.packetCount, 1u);
}

TEST_F(IpDispatch, LooksAtUdpAlone) {
    const Frame syslog = SyslogDatagram{.sourceIp = kHostIp};
    const std::string body(syslog.begin() + 34, syslog.end());
    for (int protocol : {0, 1, 2, 6, 16, 18, 255})
        lan.Says(IpFrame{.sourceIp = kHostIp, .protocol = static_cast<u8>(protocol), .body = body});
    ExpectNothingLearned();
    lan.Says(IpFrame{.sourceIp = kHostIp, .body = body});
    EXPECT_EQ(lan.MessagesOf(kHostIp).size(), 1u);
}

TEST_F(IpDispatch, OrdinaryTrafficLeadsNowhere) {
    lan.Says(TcpFrame{.sourceIp = kHostIp, .sourcePort = 138, .destinationPort = 514, .payload = "<13>x"});
    lan.Says(UdpFrame{.sourceIp = kHostIp, .sourcePort = 53, .destinationPort = 40000, .payload = "<13>x"});
    lan.Says(UdpFrame{.sourceIp = kHostIp, .sourcePort = 514, .destinationPort = 40000, .payload = "<13>x"});
    lan.Says(UdpFrame{.sourceIp = kHostIp, .destinationPort = 513, .payload = "<13>x"});
    lan.Says(UdpFrame{.sourceIp = kHostIp, .destinationPort = 515, .payload = "<13>x"});
    ExpectNothingLearned();
}

TEST_F(IpDispatch, AnAnnouncementNeedsBothPorts) {
    NetBiosDatagram datagram{.sourceIp = kHostIp, .block = BrowseBlock{}};
    datagram.sourcePort = 137;
    lan.Says(datagram);
    datagram.sourcePort = 138;
    for (int port : {137, 139}) {
        datagram.destinationPort = static_cast<u16>(port);
        lan.Says(datagram);
    }
    ExpectNothingLearned();
    datagram.destinationPort = 138;
    lan.Says(datagram);
    EXPECT_EQ(host.osFromBrowse, 1);
}

TEST_F(IpDispatch, SyslogIsKnownByItsDestinationWhateverTheSource) {
    for (int port : {1, 138, 514, 1900, 22936, 65535})
        lan.Says(SyslogDatagram{.sourceIp = kHostIp, .sourcePort = static_cast<u16>(port)});
    EXPECT_EQ(lan.MessagesOf(kHostIp).size(), 6u);
}

TEST_F(IpDispatch, ADatagramFromPort138ToPort514IsSyslog) {
    lan.Says(SyslogDatagram{.sourceIp = kHostIp, .message = "<13>from 138", .sourcePort = 138});
    ASSERT_EQ(lan.MessagesOf(kHostIp).size(), 1u);
    EXPECT_EQ(host.osFromBrowse, 0);
}

TEST_F(IpDispatch, PortsAreComparedWhole) {
    lan.Says(UdpFrame{.sourceIp = kHostIp, .destinationPort = 0x0302, .payload = "<13>x"});
    lan.Says(UdpFrame{.sourceIp = kHostIp, .destinationPort = 0x0202 ^ 0x0001, .payload = "<13>x"});
    ExpectNothingLearned();
    lan.Says(UdpFrame{.sourceIp = kHostIp, .destinationPort = 0x0202, .payload = "<13>x"});
    EXPECT_EQ(lan.MessagesOf(kHostIp).size(), 1u);
}

TEST_F(IpDispatch, ADatagramNeverMakesAHost) {
    lan.Says(BrowseAnnouncement{.sourceIp = "10.0.0.99"});
    lan.Says(SyslogDatagram{.sourceIp = "10.0.0.99"});
    EXPECT_EQ(lan.FindHost("10.0.0.99"), nullptr);
}

// The IP header's own length and the fragment's offset are not looked at.
TEST_F(IpDispatch, TakesTheIpHeaderToBe20BytesLong) {
    Frame frame = SyslogDatagram{.sourceIp = kHostIp};
    frame[14] = 0x4f;
    lan.Says(frame);
    frame[14] = 0x65;
    lan.Says(frame);
    frame[20] = 0x1f;
    lan.Says(frame);
    EXPECT_EQ(lan.MessagesOf(kHostIp).size(), 3u);
}

TEST_F(IpDispatch, WritesTheSourceAddressWithoutLeadingZeros) {
    for (const char* address : {"0.0.0.0", "255.255.255.255", "1.20.255.0"}) {
        lan.Says(SyslogDatagram{.sourceIp = address});
        EXPECT_EQ(lan.MessagesOf(address).size(), 1u) << address;
    }
}

}  // namespace
}  // namespace vardel::test

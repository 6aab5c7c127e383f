#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

using Steps = std::vector<std::string>;

std::string Receiving(const std::string& message) {
    return "VardelIPImpl::Receiving packet: " + message;
}

class IpTrace : public testing::Test {
  protected:
    IpTrace() { lan.data.settings.Syslog = 1; }
    TracedLines traced;
    WatchedLan lan;
};

TEST_F(IpTrace, TellsWhatIsNoUdp) {
    lan.Says(TcpFrame{});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("must be an IP packet")}));
}

TEST_F(IpTrace, TellsWhatIsUdpAndLeadsNowhere) {
    lan.Says(UdpFrame{});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("is an UDP packet"), Receiving("no related UDP packet")}));
}

TEST_F(IpTrace, TellsWhereAnAnnouncementComesFrom) {
    lan.Says(BrowseAnnouncement{.sourceIp = "10.1.2.3"});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("is an UDP packet"), Receiving("seems to be NetBIOS"),
                                     "VardelIPImpl::Receiving packet - SMB from: 10.1.2.3"}));
}

TEST_F(IpTrace, SaysNoMoreOfAnAnnouncementThatFailsItsChecks) {
    lan.Says(NetBiosDatagram{.block = BrowseBlock{.command = 0}});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("is an UDP packet"), Receiving("seems to be NetBIOS")}));
}

TEST_F(IpTrace, TellsWhereASyslogMessageComesFrom) {
    lan.Says(SyslogDatagram{.sourceIp = "10.1.2.3"});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("is an UDP packet"), Receiving("seems to be SysLog"),
                                     "VardelIPImpl::Receiving packet - SysLog from: 10.1.2.3"}));
}

TEST_F(IpTrace, SaysNoMoreOfASyslogMessageWithoutText) {
    lan.Says(SyslogDatagram{.message = "<13>"});
    lan.data.settings.Syslog = 0;
    lan.Says(SyslogDatagram{});
    const Steps each{Receiving("is an UDP packet"), Receiving("seems to be SysLog")};
    Steps both = each;
    both.insert(both.end(), each.begin(), each.end());
    EXPECT_EQ(traced.Steps(), both);
}

// Devices that speak of themselves are no unrelated datagrams.
TEST_F(IpTrace, CallsNeitherSsdpNorADeviceAnnouncementUnrelated) {
    lan.Says(UdpFrame{.sourcePort = 1900});
    lan.Says(UdpFrame{.destinationPort = 1900});
    lan.Says(UdpFrame{.sourcePort = 138, .destinationPort = 1900});
    lan.Says(UdpFrame{.sourcePort = 22936, .payload = std::string(320, 'x')});
    EXPECT_EQ(traced.Steps(), Steps(4, Receiving("is an UDP packet")));
}

TEST_F(IpTrace, CallsADeviceAnnouncementOfAnotherLengthUnrelated) {
    for (std::size_t size : {319u, 321u, 0u})
        lan.Says(UdpFrame{.sourcePort = 22936, .payload = std::string(size, 'x')});
    lan.Says(UdpFrame{.destinationPort = 22936, .payload = std::string(320, 'x')});
    Steps expected;
    for (int i = 0; i < 4; ++i) {
        expected.push_back(Receiving("is an UDP packet"));
        expected.push_back(Receiving("no related UDP packet"));
    }
    EXPECT_EQ(traced.Steps(), expected);
}

TEST_F(IpTrace, CallsADatagramToPort138FromAnotherPortUnrelated) {
    lan.Says(UdpFrame{.sourcePort = 137, .destinationPort = 138});
    EXPECT_EQ(traced.Steps(), (Steps{Receiving("is an UDP packet"), Receiving("no related UDP packet")}));
}

// A wait that ends as a failed allocation does.
class ThrowingEvents : public Events {
  public:
    EventHandle Create(const char*, bool, bool) override { return nullptr; }
    void Close(EventHandle) override {}
    bool Set(EventHandle) override { return false; }
    bool Reset(EventHandle) override { return false; }
    WaitResult Wait(EventHandle, u32) override { throw std::bad_alloc(); }
    WaitResult WaitEither(EventHandle, EventHandle, u32) override { throw std::bad_alloc(); }
};

TEST(IpTraceOfFailure, TellsThatASyslogMessageWasDropped) {
    TracedLines traced;
    ThrowingEvents events;
    WatchedLan lan(&events);
    lan.data.settings.Syslog = 1;
    lan.data.settings.SyslogNotification = 1;
    lan.Says(SyslogDatagram{.sourceIp = "10.1.2.3", .message = "<0>x"});
    const Steps steps = traced.Steps();
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.back(), Receiving("SysLog - error textlen"));
    EXPECT_TRUE(lan.MessagesOf("10.1.2.3").empty());
}

}  // namespace
}  // namespace vardel::test

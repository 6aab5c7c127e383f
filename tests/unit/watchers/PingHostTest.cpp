#include "watchers/PingHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

constexpr u32 kNasAddress = 0x0500000a;  // 10.0.0.5 in network byte order

class PingHostTest : public testing::Test {
  protected:
    PingHostTest() { system.resolver.addresses["10.0.0.5"] = kNasAddress; }
    PingResult Ping(const char* address = "10.0.0.5") { return PingHost(address, system.services, counters); }
    static u32 Identifier(const std::vector<u8>& message) { return message[4] | message[5] << 8; }
    static u32 Sequence(const std::vector<u8>& message) { return message[6] | message[7] << 8; }

    test::TestServices system;
    test::ScriptedRawIcmp& icmp = system.rawIcmp;
    EchoCounters counters;
};

TEST(EchoRequest, HasTheseBytes) {
    const EchoRequest expected = {0x08, 0x00, 0x98, 0xd2, 0x34, 0x12, 0x34, 0x12, 0x00, 0x00, 0x00, 0x00,
                                  0x01, 0x02, 0x03, 0x04, 0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27,
                                  0x28, 0x29, 0x2a, 0x2b, 0x2c, 0x2d, 0x2e, 0x2f, 0x30, 0x31, 0x32, 0x33,
                                  0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3a, 0x3b, 0x3c, 0x3d, 0x3e, 0x3f};
    EXPECT_EQ(FormEchoRequest(0x1234, 0x1234, 0x04030201), expected);
}

TEST(EchoRequest, SumsUpToAllOnesWithItsChecksum) {
    std::mt19937 random(1);
    for (int round = 0; round < 100'000; ++round) {
        const auto packet = FormEchoRequest(static_cast<u32>(random()), static_cast<u32>(random()),
                                            static_cast<u32>(random()));
        u32 sum = 0;
        for (std::size_t at = 0; at < packet.size(); at += 2) sum += static_cast<u32>(packet[at] << 8 | packet[at + 1]);
        while (sum >> 16) sum = (sum & 0xffff) + (sum >> 16);
        ASSERT_EQ(sum, 0xffffu);
    }
}

TEST(EchoRequest, TakesTheLowHalvesOfTheCounters) {
    const EchoRequest packet = FormEchoRequest(0xffff1234, 0xabcd5678, 0);
    EXPECT_EQ(packet[4], 0x34);
    EXPECT_EQ(packet[5], 0x12);
    EXPECT_EQ(packet[6], 0x78);
    EXPECT_EQ(packet[7], 0x56);
}

TEST_F(PingHostTest, GivesZeroWhenADatagramArrives) {
    icmp.answer = IcmpWait::Readable;
    EXPECT_EQ(Ping(), PingResult::Answered);
    EXPECT_EQ(static_cast<u32>(PingResult::Answered), 0u);
    EXPECT_EQ(icmp.receiveSizes, std::vector<std::size_t>{324});
    EXPECT_EQ(icmp.open, 0);
}

TEST_F(PingHostTest, SendsOneRequestToTheResolvedAddressAndWaitsASecond) {
    system.clock.ticks = 0x04030201;
    counters = {0x1234, 0x1234};
    Ping();
    ASSERT_EQ(icmp.sent.size(), 1u);
    EXPECT_EQ(icmp.sent[0].address, kNasAddress);
    const EchoRequest expected = FormEchoRequest(0x1234, 0x1234, 0x04030201);
    EXPECT_EQ(icmp.sent[0].message, std::vector<u8>(expected.begin(), expected.end()));
    EXPECT_EQ(icmp.waits, std::vector<u32>{1000});
}

TEST_F(PingHostTest, GivesOneWithoutASocketAndAsksNothing) {
    icmp.refuses = true;
    EXPECT_EQ(Ping(), PingResult::NoSocket);
    EXPECT_EQ(static_cast<u32>(PingResult::NoSocket), 1u);
    EXPECT_TRUE(system.resolver.calls.empty());
    EXPECT_TRUE(icmp.sent.empty());
    EXPECT_EQ(counters.identifier, 1u);
}

TEST_F(PingHostTest, GivesOneWhenTheWaitFailsAndClosesTheSocket) {
    icmp.answer = IcmpWait::Failed;
    EXPECT_EQ(Ping(), PingResult::NoSocket);
    EXPECT_EQ(icmp.opened, 1);
    EXPECT_EQ(icmp.open, 0);
    EXPECT_TRUE(icmp.receiveSizes.empty());
}

TEST_F(PingHostTest, GivesTwoForANameWithoutAnAddressAndLeavesTheSocketOpen) {
    EXPECT_EQ(Ping("no-such-host"), PingResult::UnknownName);
    EXPECT_EQ(static_cast<u32>(PingResult::UnknownName), 2u);
    EXPECT_EQ(system.resolver.calls, std::vector<std::string>{"name no-such-host"});
    EXPECT_EQ(icmp.open, 1);
    EXPECT_TRUE(icmp.sent.empty());
    EXPECT_EQ(counters.identifier, 1u);
    EXPECT_EQ(counters.sequence, 1u);
}

TEST_F(PingHostTest, GivesThreeAfterASilentSecondAndClosesTheSocket) {
    EXPECT_EQ(Ping(), PingResult::TimedOut);
    EXPECT_EQ(static_cast<u32>(PingResult::TimedOut), 3u);
    EXPECT_EQ(icmp.open, 0);
    EXPECT_TRUE(icmp.receiveSizes.empty());
}

// What it is, and even whether it can be had, makes no difference.
TEST_F(PingHostTest, CountsAnyDatagramAsTheAnswer) {
    icmp.answer = IcmpWait::Readable;
    icmp.receiveResult = -1;
    EXPECT_EQ(Ping(), PingResult::Answered);
    icmp.receiveResult = 3;
    EXPECT_EQ(Ping(), PingResult::Answered);
    EXPECT_EQ(icmp.open, 0);
}

TEST_F(PingHostTest, ClosesTheSocketWhenSomethingThrows) {
    icmp.onSend = [](u32) { throw std::runtime_error("no"); };
    EXPECT_THROW(Ping(), std::runtime_error);
    EXPECT_EQ(icmp.opened, 1);
    EXPECT_EQ(icmp.open, 0);
}

TEST_F(PingHostTest, CountsFromOneOverAllHosts) {
    system.resolver.addresses["10.0.0.6"] = 0x0600000a;
    Ping("10.0.0.5");
    Ping("10.0.0.6");
    Ping("10.0.0.5");
    ASSERT_EQ(icmp.sent.size(), 3u);
    for (u32 i = 0; i < 3; ++i) {
        EXPECT_EQ(Identifier(icmp.sent[i].message), i + 1);
        EXPECT_EQ(Sequence(icmp.sent[i].message), i + 1);
    }
}

TEST_F(PingHostTest, WrapsIdentifierAndSequenceInThePacketWhileTheCountersGoOn) {
    for (int i = 0; i < 65537; ++i) Ping();
    EXPECT_EQ(Identifier(icmp.sent[65534].message), 65535u);
    EXPECT_EQ(Identifier(icmp.sent[65535].message), 0u);
    EXPECT_EQ(Identifier(icmp.sent[65536].message), 1u);
    EXPECT_EQ(Sequence(icmp.sent[65536].message), 1u);
    EXPECT_EQ(counters.identifier, 65538u);
    EXPECT_EQ(counters.sequence, 65538u);
}

TEST_F(PingHostTest, UsesTheCountersOfTheProcess) {
    PingHost("10.0.0.5", system.services);
    PingHost("10.0.0.5", system.services);
    ASSERT_EQ(icmp.sent.size(), 2u);
    EXPECT_EQ(Identifier(icmp.sent[0].message), Sequence(icmp.sent[0].message));
    EXPECT_EQ(Identifier(icmp.sent[1].message), Identifier(icmp.sent[0].message) + 1);
}

}  // namespace
}  // namespace vardel

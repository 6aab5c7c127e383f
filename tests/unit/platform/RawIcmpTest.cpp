// The system's own sockets, on loopback alone. What other hosts answer is tested in a network of its own.
#include "platform/RawIcmp.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/Process.h"
#include "platform/Services.h"
#include "watchers/PingHost.h"

namespace vardel {
namespace {

class RawIcmpTest : public testing::Test {
  protected:
    void SetUp() override { SystemProcess().StartNetwork(); }
    void TearDown() override { SystemProcess().StopNetwork(); }
    RawIcmp& icmp = SystemRawIcmp();
};

constexpr IcmpSocket kNeverOpened = 999'999;

TEST_F(RawIcmpTest, WaitForWhatIsNoSocketFails) { EXPECT_EQ(icmp.Wait(kNeverOpened, 10), IcmpWait::Failed); }

TEST_F(RawIcmpTest, NothingIsReceivedFromWhatIsNoSocket) {
    std::array<u8, 16> buffer{};
    EXPECT_EQ(icmp.Receive(kNeverOpened, buffer), -1);
}

TEST_F(RawIcmpTest, ClosingNoSocketIsHarmless) { icmp.Close(kNoIcmpSocket); }

// Whoever may open a socket finds this machine alive; whoever may not is told so.
TEST_F(RawIcmpTest, ThisMachineAnswersWhereASocketMayBeOpened) {
    const IcmpSocket trial = icmp.Open();
    const bool allowed = trial != kNoIcmpSocket;
    icmp.Close(trial);
    EXPECT_EQ(PingHost("127.0.0.1", SystemServices()), allowed ? PingResult::Answered : PingResult::NoSocket);
}

TEST_F(RawIcmpTest, WaitOnASilentSocketEndsAfterItsTime) {
    const IcmpSocket silent = icmp.Open();
    if (silent == kNoIcmpSocket) {
        EXPECT_EQ(PingHost("127.0.0.1", SystemServices()), PingResult::NoSocket);
        return;
    }
    // Traffic of others may come in; then it isn't silent.
    const u32 before = SystemClock().TickCount();
    if (icmp.Wait(silent, 60) == IcmpWait::TimedOut) {
        EXPECT_GE(SystemClock().TickCount() - before, 40u);
    }
    icmp.Close(silent);
}

}  // namespace
}  // namespace vardel

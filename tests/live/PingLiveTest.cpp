// The echo of real hosts: one that answers, some that don't, and one that answers with an ICMP error.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "capture/EventMap.h"
#include "platform/TreeSettingsStore.h"
#include "tests/live/OtherHost.h"
#include "tests/live/OwnNetwork.h"
#include "tests/unit/support/SettingsFixture.h"
#include "watchers/HostWatch.h"
#include "watchers/PingHost.h"

namespace vardel::test {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr char kAnswering[] = "10.77.0.2";
constexpr char kSilent[] = "10.77.0.99";
constexpr char kBehindARouter[] = "10.78.0.1";  // the router says that it can't be reached
constexpr char kPeer[] = "vcap1";

std::unique_ptr<OtherHost> other;

std::string Run(const std::string& command) { return std::system(command.c_str()) == 0 ? "" : command; }

// Empty, or what could not be done.
std::string BuildLan() {
    other = std::make_unique<OtherHost>();
    if (!other->Takes(kPeer)) return "no second machine";
    for (const char* command : {"ip link set lo up", "ip link set vcap0 arp on up", "ip address add 10.77.0.1/24 dev vcap0",
                                "ip route add 10.78.0.0/16 via 10.77.0.2"})
        if (std::string failed = Run(command); !failed.empty()) return failed;
    for (const char* command :
         {"ip link set lo up", "ip link set vcap1 arp on up", "ip address add 10.77.0.2/24 dev vcap1",
          "echo 1 > /proc/sys/net/ipv4/ip_forward", "ip route add unreachable 10.78.0.0/16"})
        if (!other->Runs(command)) return command;
    return "";
}

std::set<std::string> Descriptors() {
    std::set<std::string> open;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        open.insert(entry.path().filename().string() + " " + std::filesystem::read_symlink(entry.path()).string());
    return open;
}
// What the process holds, but for the look itself.
std::size_t OpenSockets() {
    std::size_t sockets = 0;
    for (const std::string& open : Descriptors()) sockets += open.find(" socket:") != std::string::npos;
    return sockets;
}

// The calling thread without the right to raw sockets.
class WithoutRawSockets {
  public:
    WithoutRawSockets() {
        syscall(SYS_capget, &header_, had_);
        __user_cap_data_struct without[2] = {had_[0], had_[1]};
        without[0].effective &= ~(1u << CAP_NET_RAW);
        taken_ = syscall(SYS_capset, &header_, without) == 0;
    }
    ~WithoutRawSockets() { syscall(SYS_capset, &header_, had_); }
    bool Taken() const { return taken_; }

  private:
    __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct had_[2] = {};
    bool taken_ = false;
};

// To the group that the test runs as; a new network allows them to nobody.
bool AllowPingSockets() { return Run("echo '0 0' > /proc/sys/net/ipv4/ping_group_range").empty(); }

class PingLive : public testing::Test {
  protected:
    PingResult Ping(const char* address) {
        const auto start = Clock::now();
        const PingResult result = PingHost(address, SystemServices(), counters);
        took = Clock::now() - start;
        return result;
    }
    EchoCounters counters;
    Clock::duration took{};
};

}  // namespace

TEST_F(PingLive, HostThatAnswersIsThere) {
    const std::size_t before = OpenSockets();
    EXPECT_EQ(Ping(kAnswering), PingResult::Answered);
    EXPECT_LT(took, milliseconds(1000));
    EXPECT_EQ(Ping("127.0.0.1"), PingResult::Answered);
    EXPECT_EQ(OpenSockets(), before);
}

TEST_F(PingLive, HostThatIsSilentForASecondIsNot) {
    const std::size_t before = OpenSockets();
    EXPECT_EQ(Ping(kSilent), PingResult::TimedOut);
    EXPECT_GE(took, milliseconds(1000));
    EXPECT_LT(took, milliseconds(3000));
    EXPECT_EQ(OpenSockets(), before);
}

TEST_F(PingLive, ErrorOfARouterCountsAsAnAnswer) { EXPECT_EQ(Ping(kBehindARouter), PingResult::Answered); }

TEST_F(PingLive, UnrelatedIcmpCountsAsAnAnswer) {
    // Another machine's echo requests, for some seconds.
    ASSERT_TRUE(other->Runs("/usr/bin/python3 -c 'import socket, time\n"
                            "icmp = socket.socket(socket.AF_INET, socket.SOCK_RAW, socket.IPPROTO_ICMP)\n"
                            "for i in range(60):\n"
                            "    icmp.sendto(bytes([8, 0, 0xf7, 0xff, 0, 0, 0, 0]), (\"10.77.0.1\", 0))\n"
                            "    time.sleep(0.05)\n' & echo $! > /dev/null"));
    PingResult result = PingResult::TimedOut;
    // Python takes its time to start.
    for (int round = 0; round < 5 && result != PingResult::Answered; ++round) result = Ping(kSilent);
    EXPECT_EQ(result, PingResult::Answered);
    EXPECT_TRUE(other->Runs("sleep 4"));
}

// The kernel's own word that a neighbour can't be found comes three seconds late, when another host is being asked.
TEST_F(PingLive, SeveralSilentHostsInARowAreAllSilent) {
    for (int last = 101; last <= 106; ++last)
        EXPECT_EQ(Ping(("10.77.0." + std::to_string(last)).c_str()), PingResult::TimedOut) << last;
}

TEST_F(PingLive, HostWithoutARouteIsSilent) { EXPECT_EQ(Ping("203.0.113.1"), PingResult::TimedOut); }

TEST_F(PingLive, UnknownNameLeavesItsSocketOpen) {
    const auto before = Descriptors();
    EXPECT_EQ(Ping("no-such-host.invalid"), PingResult::UnknownName);
    std::vector<std::string> left;
    for (const std::string& open : Descriptors())
        if (!before.count(open) && open.find("socket:") != std::string::npos) left.push_back(open);
    ASSERT_EQ(left.size(), 1u);
    close(std::stoi(left[0]));
}

TEST_F(PingLive, WithoutTheRightToRawSocketsAPingSocketDoesWhereThoseAreAllowed) {
    const std::size_t before = OpenSockets();
    {
        const WithoutRawSockets now;
        ASSERT_TRUE(now.Taken());
        EXPECT_EQ(Ping(kAnswering), PingResult::NoSocket);
        ASSERT_TRUE(AllowPingSockets());
        EXPECT_EQ(Ping(kAnswering), PingResult::Answered);
        EXPECT_EQ(Ping(kSilent), PingResult::TimedOut);
        EXPECT_EQ(Ping(kBehindARouter), PingResult::Answered);
    }
    EXPECT_EQ(OpenSockets(), before);
}

TEST(HostWatchLive, TellsOfAHostThatGoesAwayAndComesBack) {
    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    TheEventMap().Clear();
    VardelData data(SystemServices());
    data.settings.WatchVisualization = 0;
    Add(data.settings.watchedHosts, kAnswering, Watched(kAnswering, 1));
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->ip = kAnswering;
    data.arpMap.Insert(kAnswering, host);
    const auto online = [&] { return data.settings.watchedHosts.FindValue(kAnswering)->Read().online; };

    CheckWatchedHosts(data, nullptr);
    EXPECT_EQ(online(), 1);
    ASSERT_TRUE(other->Runs("ip link set vcap1 down"));
    CheckWatchedHosts(data, nullptr);
    EXPECT_EQ(online(), 0);
    EXPECT_EQ(host->offline, 1);
    ASSERT_TRUE(other->Runs("ip link set vcap1 up"));
    for (int round = 0; round < 10 && !online(); ++round) CheckWatchedHosts(data, nullptr);
    EXPECT_EQ(online(), 1);
    EXPECT_EQ(host->offline, 0);
}

}  // namespace vardel::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string why = vardel::test::EnterOwnNetwork();
    if (why.empty()) why = vardel::test::BuildLan();
    if (!why.empty()) {
        std::fprintf(stderr, "the echo of hosts can't be tested here: %s\n", why.c_str());
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    vardel::test::other.reset();
    return result;
}

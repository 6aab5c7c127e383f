// ARP requests on the wire of a network namespace of the test's own: two adapters joined by a cable, the test listens
// at the other end.
#include "platform/ArpRequests.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/if_ether.h>
#include <poll.h>
#include <sys/socket.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/unit/support/OwnNamespace_posix.h"

namespace vardel {
namespace {

using test::InOwnNamespace;
using test::kGood;
using test::ShellRuns;

constexpr int kFrameTimeoutMs = 10000;
constexpr int kSilenceMs = 300;

// No IPv6, so that the cable is silent.
bool LayOutNetwork() {
    return ShellRuns("ip link add vardeltest0 type veth peer name vardeltest1") &&
           ShellRuns("for i in 0 1; do echo 1 >/proc/sys/net/ipv6/conf/vardeltest$i/disable_ipv6; done 2>/dev/null; true") &&
           ShellRuns("ip link set vardeltest0 address 02:00:00:00:00:01 up") && ShellRuns("ip link set vardeltest1 arp off up") &&
           ShellRuns("ip address add 192.0.2.1/24 dev vardeltest0");
}

// ARP frames that arrive at the other end.
class Listener {
  public:
    Listener() : descriptor_(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ETH_P_ARP))) {
        sockaddr_ll place{};
        place.sll_family = AF_PACKET;
        place.sll_protocol = htons(ETH_P_ARP);
        place.sll_ifindex = static_cast<int>(if_nametoindex("vardeltest1"));
        if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) Close();
    }
    ~Listener() { Close(); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    // Empty when none comes in time.
    std::vector<unsigned char> Next(int timeoutMs) const {
        pollfd readable{descriptor_, POLLIN, 0};
        std::vector<unsigned char> frame(2048);
        const ssize_t size = poll(&readable, 1, timeoutMs) == 1 ? recv(descriptor_, frame.data(), frame.size(), 0) : 0;
        frame.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return frame;
    }

  private:
    void Close() {
        if (descriptor_ >= 0) close(descriptor_);
        descriptor_ = -1;
    }
    int descriptor_;
};

// From 02:00:00:00:00:01 and 192.0.2.1 to everybody: who has 192.0.2.77?
const unsigned char kRequest[] = {
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0,    0, 0, 0, 1, 0x08, 0x06,  // Ethernet
    0,    1,    0x08, 0,    6,    4,    0,    1,                             // request, IPv4 over Ethernet
    0x02, 0,    0,    0,    0,    1,    192,  0,    2, 1,                    // sender
    0,    0,    0,    0,    0,    0,    192,  0,    2, 77};                  // target

bool IsRequest(const std::vector<unsigned char>& frame) {
    return frame.size() >= sizeof kRequest && std::memcmp(frame.data(), kRequest, sizeof kRequest) == 0;
}

TEST(ArpRequestsPosix, ARequestGoesOut) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] {
        if (!LayOutNetwork()) return 2;
        const Listener listener;
        if (!listener.IsOpen()) return 3;
        SystemArpRequests().Ask("192.0.2.77");
        return IsRequest(listener.Next(kFrameTimeoutMs)) ? kGood : 4;
    }));
}

// The kernel knows every client that talks to this machine and would ask no more.
TEST(ArpRequestsPosix, ARequestGoesOutAlsoForAnAddressThatTheKernelKnows) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] {
        if (!LayOutNetwork()) return 2;
        if (!ShellRuns("ip neighbour add 192.0.2.77 lladdr 02:00:00:00:00:07 nud permanent dev vardeltest0")) return 3;
        const Listener listener;
        SystemArpRequests().Ask("192.0.2.77");
        return IsRequest(listener.Next(kFrameTimeoutMs)) ? kGood : 4;
    }));
}

TEST(ArpRequestsPosix, NothingGoesOutForWhatIsNoNeighbour) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] {
        if (!LayOutNetwork()) return 2;
        if (!ShellRuns("ip route add 198.51.100.0/24 via 192.0.2.254 && ip route add unreachable 203.0.113.0/24")) return 3;
        const Listener listener;
        if (!listener.IsOpen()) return 4;
        for (const char* address : {"198.51.100.1", "203.0.113.1", "192.0.2.1", "127.0.0.1", "10.9.9.9", "192.0.2.255",
                                    "255.255.255.255", "224.0.0.1", "a.b.c.d", "...", ""})
            SystemArpRequests().Ask(address);
        if (!listener.Next(kSilenceMs).empty()) return 5;
        // The line itself is good.
        SystemArpRequests().Ask("192.0.2.77");
        return IsRequest(listener.Next(kFrameTimeoutMs)) ? kGood : 6;
    }));
}

TEST(ArpRequestsPosix, NothingGoesOutWhereAnInterfaceDoesWithoutArp) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] {
        if (!LayOutNetwork() || !ShellRuns("ip link set vardeltest0 arp off")) return 2;
        const Listener listener;
        SystemArpRequests().Ask("192.0.2.77");
        return listener.Next(kSilenceMs).empty() ? kGood : 3;
    }));
}

TEST(ArpRequestsPosix, WithoutTheRightNothingGoesOutAndNothingIsSaid) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] {
        if (!LayOutNetwork()) return 2;
        const Listener listener;
        if (!test::DropAllRights()) return 3;
        SystemArpRequests().Ask("192.0.2.77");
        return listener.Next(kSilenceMs).empty() ? kGood : 4;
    }));
}

}  // namespace
}  // namespace vardel

// The flush of the kernel's neighbour table, only ever in a network namespace of the test's own.
#include "platform/ArpCache.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "tests/unit/support/OwnNamespace_posix.h"

namespace vardel {
namespace {

using test::DropAllRights;
using test::InOwnNamespace;
using test::kGood;
using test::ShellRuns;

int CountNeighbours(const char* family) {
    const std::string command =
        std::string("ip ") + family + " neighbour show nud all dev vardeltest0 | grep -c lladdr";
    FILE* output = popen(command.c_str(), "r");
    int count = -1;
    if (output && fscanf(output, "%d", &count) != 1) count = -1;
    if (output) pclose(output);
    return count;
}

// Two adapters joined by a cable, with neighbours of each kind on the first.
bool LayOutNeighbours() {
    return ShellRuns("ip link add vardeltest0 type veth peer name vardeltest1") &&
           ShellRuns("ip link set vardeltest0 up") && ShellRuns("ip link set vardeltest1 up") &&
           ShellRuns("ip address add 192.0.2.1/24 dev vardeltest0") &&
           ShellRuns("ip neighbour add 192.0.2.2 lladdr 02:00:00:00:00:02 nud permanent dev vardeltest0") &&
           ShellRuns("ip neighbour add 192.0.2.3 lladdr 02:00:00:00:00:03 nud reachable dev vardeltest0") &&
           ShellRuns("ip neighbour add 192.0.2.4 lladdr 02:00:00:00:00:04 nud stale dev vardeltest0") &&
           ShellRuns("ip -6 neighbour add 2001:db8::2 lladdr 02:00:00:00:00:05 nud stale dev vardeltest0");
}

TEST(ArpCachePosix, FlushesTheInterfaceOfTheNumberAlone) {
    const int result = InOwnNamespace([] {
        if (!LayOutNeighbours()) return 2;
        if (!ShellRuns("ip link add vardeltest2 type veth peer name vardeltest3") ||
            !ShellRuns("ip link set vardeltest2 up") || !ShellRuns("ip link set vardeltest3 up") ||
            !ShellRuns("ip address add 198.51.100.1/24 dev vardeltest2") ||
            !ShellRuns("ip neighbour add 198.51.100.2 lladdr 02:00:00:00:00:06 nud stale dev vardeltest2"))
            return 3;
        const u32 first = if_nametoindex("vardeltest0"), other = if_nametoindex("vardeltest2");
        if (SystemArpCache().CountInterfaces() < std::max(first, other)) return 4;
        SystemArpCache().FlushInterface(other);
        if (CountNeighbours("-4") != 3) return 5;
        SystemArpCache().FlushInterface(other + 1000);
        if (CountNeighbours("-4") != 3) return 6;
        SystemArpCache().FlushInterface(first);
        return CountNeighbours("-4") == 0 ? kGood : 7;
    });
    EXPECT_GOOD_IF_GRANTED(result);
}

TEST(ArpCachePosix, EveryInterfaceOfTheProgramIsWithinTheCount) {
    EXPECT_GE(SystemArpCache().CountInterfaces(), if_nametoindex("lo"));
    EXPECT_GE(SystemArpCache().CountInterfaces(), 1u);
}

TEST(ArpCachePosix, FlushEmptiesTheTableOfIpv4AndLeavesThatOfIpv6) {
    const int result = InOwnNamespace([] {
        if (!LayOutNeighbours()) return 2;
        if (CountNeighbours("-4") != 3) return 3;
        const int before = CountNeighbours("-6");
        SystemArpCache().Flush();
        if (CountNeighbours("-4") != 0) return 4;
        return before >= 1 && CountNeighbours("-6") == before ? kGood : 5;
    });
    EXPECT_GOOD_IF_GRANTED(result);
}

TEST(ArpCachePosix, FlushEmptiesALargeTable) {
    const int result = InOwnNamespace([] {
        if (!LayOutNeighbours()) return 2;
        // One command for all of them; more than one reply of the kernel can hold.
        if (!ShellRuns(
                "ip address add 198.18.0.1/16 dev vardeltest0 && for a in 0 1 2; do for b in $(seq 2 251); "
                "do "
                "echo neighbour add 198.18.$a.$b lladdr 02:00:00:01:00:01 nud stale dev vardeltest0; done; "
                "done"
                " | ip -batch -"))
            return 3;
        if (CountNeighbours("-4") != 753) return 4;
        SystemArpCache().Flush();
        return CountNeighbours("-4") == 0 ? kGood : 5;
    });
    EXPECT_GOOD_IF_GRANTED(result);
}

TEST(ArpCachePosix, WithoutTheRightTheTableStaysAndNothingIsSaid) {
    const int result = InOwnNamespace([] {
        if (!LayOutNeighbours()) return 2;
        if (!DropAllRights()) return 3;
        SystemArpCache().Flush();
        return CountNeighbours("-4") == 3 ? kGood : 4;
    });
    EXPECT_GOOD_IF_GRANTED(result);
}

TEST(ArpCachePosix, AnEmptyTableIsNoFailure) {
    EXPECT_GOOD_IF_GRANTED(InOwnNamespace([] { return SystemArpCache().Flush(), kGood; }));
}

}  // namespace
}  // namespace vardel

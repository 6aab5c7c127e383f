#include "tests/live/OwnNetwork.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace vardel::test {

namespace {

constexpr char kPeer[] = "vcap1";

bool Run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

void WriteTo(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return;
    [[maybe_unused]] const auto written = write(file, text.data(), text.size());
    close(file);
}

// Root inside is whoever started the test.
bool EnterWithUserNamespace() {
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
    WriteTo("/proc/self/setgroups", "deny");
    WriteTo("/proc/self/uid_map", "0 " + user + " 1");
    WriteTo("/proc/self/gid_map", "0 " + group + " 1");
    return true;
}

}  // namespace

std::string EnterOwnNetwork() {
    if (unshare(CLONE_NEWNET) != 0 && !EnterWithUserNamespace())
        return std::string("no network namespace can be made: ") + std::strerror(errno);
    // No IPv6, so that the interfaces are silent but for the test's frames.
    WriteTo("/proc/sys/net/ipv6/conf/default/disable_ipv6", "1");
    return BringInterface() ? "" : "no veth pair can be made";
}

bool BringInterface() {
    const std::string watched = kWatched, peer = kPeer;
    return Run("ip link add " + watched + " type veth peer name " + peer) &&
           Run("ip link set " + watched + " arp off up") && Run("ip link set " + peer + " arp off up");
}

bool TakeInterfaceAway() {
    return Run(std::string("ip link delete ") + kWatched);
}

bool SwitchInterface(bool on) {
    return Run(std::string("ip link set ") + kWatched + (on ? " up" : " down"));
}

// One socket for all frames: closing one makes the kernel wait for everybody on the network path.
bool Send(const Frame& frame) {
    static const int link = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
    sockaddr_ll target{};
    target.sll_family = AF_PACKET;
    target.sll_ifindex = static_cast<int>(if_nametoindex(kPeer));
    const auto sent = sendto(link, frame.data(), frame.size(), 0, reinterpret_cast<const sockaddr*>(&target),
                             sizeof target);
    return sent == static_cast<ssize_t>(frame.size());
}

}  // namespace vardel::test

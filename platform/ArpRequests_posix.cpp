// The route to the address is asked of the kernel over netlink; the request itself goes out through a packet socket.
// The kernel's own resolution serves only where it doesn't know the address yet, and a client that talks to this
// machine is always known to it.
#include "platform/ArpRequests.h"

#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/if_ether.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>

#include "platform/Netlink_posix.h"

namespace vardel {

namespace {

using HardwareAddress = std::array<u8, ETH_ALEN>;

struct Way {
    u32 interfaceIndex = 0;
    u32 source = 0;  // this machine's address there, network byte order
};

// False unless it is a machine of a directly attached network.
bool ReadRoute(const char* payload, std::size_t size, Way& way) {
    rtmsg message;
    if (size < sizeof message) return false;
    std::memcpy(&message, payload, sizeof message);
    const std::size_t start = NLMSG_ALIGN(sizeof message);
    if (message.rtm_family != AF_INET || message.rtm_type != RTN_UNICAST || size < start) return false;
    u32 gateway;
    const auto find = [&](unsigned type, u32& value) {
        return FindAttribute(payload + start, size - start, type, value);
    };
    return !find(RTA_GATEWAY, gateway) && find(RTA_OIF, way.interfaceIndex) && find(RTA_PREFSRC, way.source);
}

bool FindWay(u32 address, Way& way) {
    struct {
        nlmsghdr header;
        rtmsg message;
        rtattr attribute;
        u32 address;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = NLM_F_REQUEST;
    request.message.rtm_family = AF_INET;
    request.message.rtm_dst_len = 32;
    request.attribute.rta_type = RTA_DST;
    request.attribute.rta_len = sizeof request.attribute + sizeof request.address;
    request.address = address;
    NetlinkSocket netlink;
    if (!netlink.IsOpen() || !netlink.Send(&request, sizeof request)) return false;
    bool found = false;
    ForEachMessage(netlink.Receive(), [&](const nlmsghdr& header, const char* payload, std::size_t size) {
        if (header.nlmsg_type != RTM_NEWROUTE) return header.nlmsg_type != NLMSG_ERROR;
        found = ReadRoute(payload, size, way);
        return false;
    });
    return found;
}

// The request of RFC 826 as it follows the Ethernet header.
struct ArpPacket {
    u16 hardwareType, protocolType;
    u8 hardwareSize, protocolSize;
    u16 operation;
    u8 senderHardware[6], senderProtocol[4], targetHardware[6], targetProtocol[4];
};
static_assert(sizeof(ArpPacket) == 28);

class PacketSocket {
  public:
    PacketSocket() : descriptor_(socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~PacketSocket() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    PacketSocket(const PacketSocket&) = delete;
    PacketSocket& operator=(const PacketSocket&) = delete;

    // False where the interface is down, does without ARP or is no Ethernet.
    bool HardwareAddressOf(u32 interfaceIndex, HardwareAddress& address) const {
        ifreq request{};
        if (descriptor_ < 0 || !if_indextoname(interfaceIndex, request.ifr_name)) return false;
        if (ioctl(descriptor_, SIOCGIFFLAGS, &request) != 0) return false;
        if (!(request.ifr_flags & IFF_UP) || (request.ifr_flags & (IFF_NOARP | IFF_LOOPBACK))) return false;
        if (ioctl(descriptor_, SIOCGIFHWADDR, &request) != 0) return false;
        if (request.ifr_hwaddr.sa_family != ARPHRD_ETHER) return false;
        std::memcpy(address.data(), request.ifr_hwaddr.sa_data, address.size());
        return true;
    }
    void Broadcast(u32 interfaceIndex, const ArpPacket& packet) const {
        sockaddr_ll target{};
        target.sll_family = AF_PACKET;
        target.sll_protocol = htons(ETH_P_ARP);
        target.sll_ifindex = static_cast<int>(interfaceIndex);
        target.sll_halen = ETH_ALEN;
        std::fill_n(target.sll_addr, ETH_ALEN, static_cast<u8>(0xFF));
        sendto(descriptor_, &packet, sizeof packet, 0, reinterpret_cast<const sockaddr*>(&target), sizeof target);
    }

  private:
    int descriptor_;
};

ArpPacket Request(const HardwareAddress& own, u32 source, u32 target) {
    ArpPacket packet{};
    packet.hardwareType = htons(ARPHRD_ETHER);
    packet.protocolType = htons(ETH_P_IP);
    packet.hardwareSize = ETH_ALEN;
    packet.protocolSize = sizeof target;
    packet.operation = htons(ARPOP_REQUEST);
    std::memcpy(packet.senderHardware, own.data(), own.size());
    std::memcpy(packet.senderProtocol, &source, sizeof source);
    std::memcpy(packet.targetProtocol, &target, sizeof target);
    return packet;
}

class PosixArpRequests : public ArpRequests {
  public:
    void Ask(const char* dottedAddress) override {
        const u32 address = inet_addr(dottedAddress);
        Way way;
        if (address == INADDR_NONE || !FindWay(address, way)) return;
        const PacketSocket packets;
        HardwareAddress own;
        if (packets.HardwareAddressOf(way.interfaceIndex, own))
            packets.Broadcast(way.interfaceIndex, Request(own, way.source, address));
    }
};

}  // namespace

ArpRequests& SystemArpRequests() {
    static PosixArpRequests requests;
    return requests;
}

}  // namespace vardel

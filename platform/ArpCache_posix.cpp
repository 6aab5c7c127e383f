// The kernel's neighbour table of IPv4, listed and emptied over a routing netlink socket (rtnetlink(7)).
// Permanent entries go too, as they do with "arp -d" on Windows; what needs no ARP (loopback, multicast) is
// left.
#include "platform/ArpCache.h"

#include <linux/neighbour.h>
#include <net/if.h>

#include <algorithm>

#include "platform/Netlink_posix.h"

namespace vardel {

namespace {

struct Neighbour {
    int interfaceIndex;
    u32 address;  // network byte order
};

void CollectNeighbour(const char* payload, std::size_t size, std::vector<Neighbour>& neighbours) {
    ndmsg message;
    if (size < sizeof message) return;
    std::memcpy(&message, payload, sizeof message);
    if (message.ndm_family != AF_INET || (message.ndm_state & NUD_NOARP)) return;
    u32 address;
    const std::size_t attributes = NLMSG_ALIGN(sizeof message);
    if (size < attributes || !FindAttribute(payload + attributes, size - attributes, NDA_DST, address)) return;
    neighbours.push_back({message.ndm_ifindex, address});
}

std::vector<Neighbour> ListNeighbours(NetlinkSocket& netlink) {
    struct {
        nlmsghdr header;
        ndmsg message;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETNEIGH;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.message.ndm_family = AF_INET;
    std::vector<Neighbour> neighbours;
    if (!netlink.Send(&request, sizeof request)) return neighbours;
    for (;;) {
        const std::vector<char> datagram = netlink.Receive();
        if (datagram.empty()) return neighbours;
        const bool goesOn =
            ForEachMessage(datagram, [&](const nlmsghdr& header, const char* payload, std::size_t size) {
                if (header.nlmsg_type == RTM_NEWNEIGH) CollectNeighbour(payload, size, neighbours);
                return header.nlmsg_type != NLMSG_DONE && header.nlmsg_type != NLMSG_ERROR;
            });
        if (!goesOn) return neighbours;
    }
}

// The kernel's answer to one request: 0, or a negative error number.
int Acknowledgement(NetlinkSocket& netlink) {
    int result = -EIO;
    ForEachMessage(netlink.Receive(), [&](const nlmsghdr& header, const char* payload, std::size_t size) {
        if (header.nlmsg_type != NLMSG_ERROR || size < sizeof result) return true;
        std::memcpy(&result, payload, sizeof result);  // nlmsgerr begins with the error
        return false;
    });
    return result;
}

int DeleteNeighbour(NetlinkSocket& netlink, const Neighbour& neighbour) {
    struct {
        nlmsghdr header;
        ndmsg message;
        rtattr attribute;
        u32 address;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_DELNEIGH;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_ACK;
    request.message.ndm_family = AF_INET;
    request.message.ndm_ifindex = neighbour.interfaceIndex;
    request.attribute.rta_type = NDA_DST;
    request.attribute.rta_len = sizeof request.attribute + sizeof request.address;
    request.address = neighbour.address;
    return netlink.Send(&request, sizeof request) ? Acknowledgement(netlink) : -EIO;
}

class PosixArpCache : public ArpCache {
  public:
    void Flush() override {
        FlushIf([](const Neighbour&) { return true; });
    }
    u32 CountInterfaces() override {
        u32 highest = 0;
        struct if_nameindex* const all = if_nameindex();
        for (const struct if_nameindex* each = all; each && each->if_index != 0; ++each)
            highest = std::max(highest, each->if_index);
        if (all) if_freenameindex(all);
        return highest;
    }
    void FlushInterface(u32 index) override {
        char name[IF_NAMESIZE];
        if (!if_indextoname(index, name)) return;
        FlushIf([index](const Neighbour& neighbour) { return static_cast<u32>(neighbour.interfaceIndex) == index; });
    }

  private:
    template <class Unwanted>
    void FlushIf(Unwanted&& unwanted) {
        NetlinkSocket netlink;
        if (!netlink.IsOpen()) return;
        for (const Neighbour& neighbour : ListNeighbours(netlink)) {
            if (!unwanted(neighbour)) continue;
            const int result = DeleteNeighbour(netlink, neighbour);
            // Without the right none can be deleted; an entry that went by itself is no failure.
            if (result == -EPERM || result == -EIO) return;
        }
    }
};

}  // namespace

ArpCache& SystemArpCache() {
    static PosixArpCache cache;
    return cache;
}

}  // namespace vardel

// Asking the kernel over a routing netlink socket (rtnetlink(7)), and reading its answers within their bounds.
//
// A socket belongs to one thread.
#pragma once

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/Types.h"

namespace vardel {

class NetlinkSocket {
  public:
    NetlinkSocket() : descriptor_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {
        // The kernel answers at once; the limit is for a reply that got lost.
        const timeval limit{1, 0};
        if (descriptor_ >= 0) setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    ~NetlinkSocket() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    NetlinkSocket(const NetlinkSocket&) = delete;
    NetlinkSocket& operator=(const NetlinkSocket&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    bool Send(const void* message, std::size_t size) {
        return send(descriptor_, message, size, 0) == static_cast<ssize_t>(size);
    }
    // The next datagram; empty on failure.
    std::vector<char> Receive() {
        constexpr std::size_t kReplySize = 64 * 1024;
        std::vector<char> datagram(kReplySize);
        ssize_t size;
        do size = recv(descriptor_, datagram.data(), datagram.size(), 0);
        while (size < 0 && errno == EINTR);
        datagram.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return datagram;
    }

  private:
    int descriptor_;
};

// Calls `visit(header, payload, size)` for each message of a datagram, while it gives true. False when it gave false.
template <class Visit>
bool ForEachMessage(const std::vector<char>& datagram, Visit visit) {
    std::size_t at = 0;
    while (datagram.size() - at >= sizeof(nlmsghdr)) {
        nlmsghdr header;
        std::memcpy(&header, datagram.data() + at, sizeof header);
        if (header.nlmsg_len < sizeof header || header.nlmsg_len > datagram.size() - at) break;
        const char* payload = datagram.data() + at + sizeof header;
        if (!visit(header, payload, header.nlmsg_len - sizeof header)) return false;
        const std::size_t step = NLMSG_ALIGN(header.nlmsg_len);
        if (step > datagram.size() - at) break;
        at += step;
    }
    return true;
}

// The attribute of that type; false, and `value` untouched, when there is none of 4 bytes.
inline bool FindAttribute(const char* attributes, std::size_t size, unsigned type, u32& value) {
    while (size >= sizeof(rtattr)) {
        rtattr attribute;
        std::memcpy(&attribute, attributes, sizeof attribute);
        if (attribute.rta_len < sizeof attribute || attribute.rta_len > size) return false;
        if (attribute.rta_type == type && attribute.rta_len == sizeof attribute + sizeof value) {
            std::memcpy(&value, attributes + sizeof attribute, sizeof value);
            return true;
        }
        const std::size_t step = RTA_ALIGN(attribute.rta_len);
        if (step > size) return false;
        attributes += step;
        size -= step;
    }
    return false;
}

}  // namespace vardel

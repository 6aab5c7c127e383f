#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/unit/support/UdpReceiver.h"

namespace vardel::test {

UdpReceiver::UdpReceiver() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(static_cast<int>(socket_), reinterpret_cast<sockaddr*>(&address), sizeof address);
}

UdpReceiver::~UdpReceiver() {
    close(static_cast<int>(socket_));
}

std::string UdpReceiver::Port() const {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (getsockname(static_cast<int>(socket_), reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return {};
    return std::to_string(ntohs(address.sin_port));
}

std::string UdpReceiver::Next(int timeoutMs) {
    pollfd waited{static_cast<int>(socket_), POLLIN, 0};
    if (poll(&waited, 1, timeoutMs) != 1) return {};
    char datagram[65536];
    const ssize_t length = recv(static_cast<int>(socket_), datagram, sizeof datagram, 0);
    return length > 0 ? std::string(datagram, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace vardel::test

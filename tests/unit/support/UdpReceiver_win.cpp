#include "tests/unit/support/UdpReceiver.h"

#include "platform/WindowsApi.h"

namespace vardel::test {

UdpReceiver::UdpReceiver() {
    WSADATA about;
    WSAStartup(MAKEWORD(2, 2), &about);
    socket_ = static_cast<std::intptr_t>(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(static_cast<SOCKET>(socket_), reinterpret_cast<sockaddr*>(&address), sizeof address);
}

UdpReceiver::~UdpReceiver() {
    closesocket(static_cast<SOCKET>(socket_));
    WSACleanup();
}

std::string UdpReceiver::Port() const {
    sockaddr_in address{};
    int length = sizeof address;
    if (getsockname(static_cast<SOCKET>(socket_), reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return {};
    return std::to_string(ntohs(address.sin_port));
}

std::string UdpReceiver::Next(int timeoutMs) {
    const auto own = static_cast<SOCKET>(socket_);
    fd_set waited;
    FD_ZERO(&waited);
    FD_SET(own, &waited);
    timeval limit{timeoutMs / 1000, timeoutMs % 1000 * 1000};
    if (select(0, &waited, nullptr, nullptr, &limit) != 1) return {};
    char datagram[65536];
    const int length = recv(own, datagram, sizeof datagram, 0);
    return length > 0 ? std::string(datagram, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace vardel::test

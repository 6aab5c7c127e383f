#include <winsock2.h>
#include <ws2tcpip.h>

#include <memory>

#include "plugins/examples/support/UdpSender.h"

namespace vardel::examples {

namespace {

struct FreeAddresses {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

SOCKET Connected(const addrinfo& address, bool broadcasts) {
    const SOCKET made = socket(address.ai_family, SOCK_DGRAM, IPPROTO_UDP);
    if (made == INVALID_SOCKET) return made;
    const BOOL on = TRUE;
    if (broadcasts) setsockopt(made, SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&on), sizeof on);
    if (connect(made, address.ai_addr, static_cast<int>(address.ai_addrlen)) == 0) return made;
    closesocket(made);
    return INVALID_SOCKET;
}

}  // namespace

UdpSender::~UdpSender() {
    Close();
    if (networkStarted_) WSACleanup();
}

void UdpSender::Close() {
    if (IsOpen()) closesocket(static_cast<SOCKET>(socket_));
    socket_ = kNone;
}

bool UdpSender::Open(const std::string& host, long port, bool broadcasts) {
    Close();
    WSADATA about;
    if (!networkStarted_) networkStarted_ = WSAStartup(MAKEWORD(2, 2), &about) == 0;
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &list) != 0) return false;
    const std::unique_ptr<addrinfo, FreeAddresses> owned(list);
    for (; list && !IsOpen(); list = list->ai_next)
        socket_ = static_cast<std::intptr_t>(Connected(*list, broadcasts));
    return IsOpen();
}

bool UdpSender::Send(const std::string& datagram) {
    if (!IsOpen()) return false;
    // The first failure may tell of the datagram before, which nobody took; it says nothing of this one.
    for (int tries = 0; tries < 2; ++tries) {
        const int length = static_cast<int>(datagram.size());
        if (send(static_cast<SOCKET>(socket_), datagram.data(), length, 0) != SOCKET_ERROR) return true;
    }
    return false;
}

std::string LocalHostName() {
    char name[256];
    DWORD size = sizeof name;
    return GetComputerNameExA(ComputerNameDnsHostname, name, &size) ? std::string(name, size) : std::string();
}

}  // namespace vardel::examples

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "plugins/examples/support/UdpSender.h"

namespace vardel::examples {

namespace {

struct FreeAddresses {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

int Connected(const addrinfo& address, bool broadcasts) {
    const int made = socket(address.ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (made < 0) return -1;
    const int on = 1;
    if (broadcasts) setsockopt(made, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    if (connect(made, address.ai_addr, address.ai_addrlen) == 0) return made;
    close(made);
    return -1;
}

}  // namespace

UdpSender::~UdpSender() {
    Close();
}

void UdpSender::Close() {
    if (IsOpen()) close(static_cast<int>(socket_));
    socket_ = kNone;
}

bool UdpSender::Open(const std::string& host, long port, bool broadcasts) {
    Close();
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &list) != 0) return false;
    const std::unique_ptr<addrinfo, FreeAddresses> owned(list);
    for (; list && !IsOpen(); list = list->ai_next) socket_ = Connected(*list, broadcasts);
    return IsOpen();
}

bool UdpSender::Send(const std::string& datagram) {
    if (!IsOpen()) return false;
    // The first failure may tell of the datagram before, which nobody took; it says nothing of this one.
    for (int tries = 0; tries < 2; ++tries)
        if (send(static_cast<int>(socket_), datagram.data(), datagram.size(), MSG_NOSIGNAL) >= 0) return true;
    return false;
}

std::string LocalHostName() {
    char name[256] = "";
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace vardel::examples

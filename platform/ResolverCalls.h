// The look-ups that both systems offer under the same names. Included by the two Resolver files alone, each
// after its system's socket headers.
#pragma once

#include <cstring>

#include "platform/Resolver.h"

namespace vardel {

inline std::vector<std::string> LookUpCanonicalNames(const char* dottedAddress) {
    addrinfo hints{};
    hints.ai_flags = AI_CANONNAME | AI_NUMERICHOST;
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* results = nullptr;
    std::vector<std::string> names;
    if (getaddrinfo(dottedAddress, nullptr, &hints, &results) != 0) return names;
    for (const addrinfo* result = results; result; result = result->ai_next)
        if (result->ai_canonname) names.emplace_back(result->ai_canonname);
    freeaddrinfo(results);
    return names;
}

// False when the answer has no IPv4 address.
inline bool FirstAddress(const hostent& host, u32& address) {
    if (host.h_addrtype != AF_INET || host.h_length != sizeof address || !host.h_addr_list[0]) return false;
    std::memcpy(&address, host.h_addr_list[0], sizeof address);
    return true;
}

// NI_MAXHOST of both systems.
constexpr int kHostNameSize = 1025;

inline bool LookUpName(u32 address, u16 port, NameLookup kind, std::string& name) {
    sockaddr_in socketAddress{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_port = htons(port);
    socketAddress.sin_addr.s_addr = address;
    char host[kHostNameSize] = "";
    const int flags = kind == NameLookup::NameRequired ? NI_NAMEREQD : NI_NOFQDN;
    if (getnameinfo(reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress, host,
                    sizeof host, nullptr, 0, flags) != 0)
        return false;
    name = host;
    return true;
}

}  // namespace vardel

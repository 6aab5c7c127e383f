// The system's name resolver, in the calls that host naming and host watch need. May block for as long as the system
// wants.
// Addresses are IPv4 in network byte order, as in memory.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel {

enum class NameLookup {
    NameRequired,  // NI_NAMEREQD: fails where there is no name
    ShortName      // NI_NOFQDN: may give the address as a text
};

class Resolver {
  public:
    virtual ~Resolver() = default;

    // getaddrinfo of the dotted text with AI_CANONNAME | AI_NUMERICHOST, IPv4, stream, TCP: the canonical names that
    // the results carry, in their order; results without one are left out. Empty on failure.
    virtual std::vector<std::string> CanonicalNames(const char* dottedAddress) = 0;

    // getnameinfo with the given port (host order). False on failure; `name` is then untouched.
    virtual bool NameOfAddress(u32 address, u16 port, NameLookup kind, std::string& name) = 0;

    // gethostbyaddr. False on failure; `name` is then untouched.
    virtual bool HostByAddress(u32 address, std::string& name) = 0;

    // gethostbyname, the first address that it gives; a dotted text is its own answer. False on failure; `address` is
    // then untouched.
    virtual bool HostByName(const char* name, u32& address) = 0;
};

Resolver& SystemResolver();

}  // namespace vardel

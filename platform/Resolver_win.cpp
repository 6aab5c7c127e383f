#include "platform/Resolver.h"

#include "platform/WindowsApi.h"
// The system's socket names come first.
#include "platform/ResolverCalls.h"

namespace vardel {

namespace {

class WindowsResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char* dottedAddress) override {
        return LookUpCanonicalNames(dottedAddress);
    }
    bool NameOfAddress(u32 address, u16 port, NameLookup kind, std::string& name) override {
        return LookUpName(address, port, kind, name);
    }
    bool HostByAddress(u32 address, std::string& name) override {
        // The result lies in a block of the calling thread.
        const hostent* host = gethostbyaddr(reinterpret_cast<const char*>(&address), sizeof address, AF_INET);
        if (!host || !host->h_name) return false;
        name = host->h_name;
        return true;
    }
    bool HostByName(const char* name, u32& address) override {
        const hostent* host = gethostbyname(name);
        return host && FirstAddress(*host, address);
    }
};

}  // namespace

Resolver& SystemResolver() {
    static WindowsResolver resolver;
    return resolver;
}

}  // namespace vardel

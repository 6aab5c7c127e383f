#include "platform/Resolver.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>

#include "platform/ResolverCalls.h"

namespace vardel {

namespace {

class PosixResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char* dottedAddress) override {
        return LookUpCanonicalNames(dottedAddress);
    }
    bool NameOfAddress(u32 address, u16 port, NameLookup kind, std::string& name) override {
        return LookUpName(address, port, kind, name);
    }
    bool HostByAddress(u32 address, std::string& name) override {
        // The plain call keeps its result in storage that all threads share.
        constexpr std::size_t kLargestBuffer = 64 * 1024;
        for (std::vector<char> buffer(1024); buffer.size() <= kLargestBuffer;
             buffer.resize(buffer.size() * 2)) {
            hostent host{};
            hostent* found = nullptr;
            int failure = 0;
            const int result = gethostbyaddr_r(&address, sizeof address, AF_INET, &host, buffer.data(),
                                               buffer.size(), &found, &failure);
            if (result == ERANGE) continue;
            if (result != 0 || !found || !found->h_name) return false;
            name = found->h_name;
            return true;
        }
        return false;
    }
};

}  // namespace

Resolver& SystemResolver() {
    static PosixResolver resolver;
    return resolver;
}

}  // namespace vardel

#include "platform/Resolver.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>

#include "platform/ResolverCalls.h"

namespace vardel {

namespace {

struct Answer {
    hostent host{};
    hostent* found = nullptr;
    int failure = 0;
    std::vector<char> buffer = std::vector<char>(1024);
};

// The calls of before getaddrinfo in their thread-safe form: the plain ones keep their result in storage that all
// threads share. `look` is tried with ever larger buffers; `take` gets what it found. False when it found nothing.
template <class Look, class Take>
bool WithHost(Look look, Take take) {
    constexpr std::size_t kLargestBuffer = 64 * 1024;
    for (Answer answer; answer.buffer.size() <= kLargestBuffer; answer.buffer.resize(answer.buffer.size() * 2)) {
        const int result = look(answer);
        if (result == ERANGE) continue;
        return result == 0 && answer.found && take(*answer.found);
    }
    return false;
}

class PosixResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char* dottedAddress) override {
        return LookUpCanonicalNames(dottedAddress);
    }
    bool NameOfAddress(u32 address, u16 port, NameLookup kind, std::string& name) override {
        return LookUpName(address, port, kind, name);
    }
    bool HostByAddress(u32 address, std::string& name) override {
        return WithHost(
            [&](Answer& answer) {
                return gethostbyaddr_r(&address, sizeof address, AF_INET, &answer.host, answer.buffer.data(),
                                       answer.buffer.size(), &answer.found, &answer.failure);
            },
            [&](const hostent& host) {
                if (!host.h_name) return false;
                name = host.h_name;
                return true;
            });
    }
    bool HostByName(const char* name, u32& address) override {
        return WithHost(
            [&](Answer& answer) {
                return gethostbyname_r(name, &answer.host, answer.buffer.data(), answer.buffer.size(),
                                       &answer.found, &answer.failure);
            },
            [&](const hostent& host) { return FirstAddress(host, address); });
    }
};

}  // namespace

Resolver& SystemResolver() {
    static PosixResolver resolver;
    return resolver;
}

}  // namespace vardel

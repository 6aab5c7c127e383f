#include "capture/HostNaming.h"

#include <string>

namespace vardel {

namespace {

constexpr u32 kNoHostNameText = 90;
constexpr u32 kInvalidAddress = 0xffffffffu;
constexpr u16 kNameServicePort = 53;

// The dotted text as four bytes in network order. Only ever given what FormatIpAddress wrote.
u32 AddressOf(const TcString& ip) {
    u8 octets[4] = {};
    std::size_t at = 0;
    for (const char* c = ip.GetContent(); *c; ++c) {
        if (*c == '.') at = at < 3 ? at + 1 : at;
        else octets[at] = static_cast<u8>(octets[at] * 10 + (*c - '0'));
    }
    u32 address;
    std::memcpy(&address, octets, sizeof address);
    return address;
}

// Empty when no step gives a name.
std::string FindName(const TcString& ip, const std::string& localName, Resolver& resolver) {
    for (const std::string& canonical : resolver.CanonicalNames(ip))
        if (canonical != ip.GetContent()) return canonical;

    const u32 address = AddressOf(ip);
    std::string required;
    if (resolver.NameOfAddress(address, 0, NameLookup::NameRequired, required) && required != localName)
        return required;
    if (address == kInvalidAddress) return {};

    // It is the name of the step before that is held against the local one, not this step's own: where that was
    // refused this is refused as well, and an empty one passes.
    std::string byAddress;
    if (resolver.HostByAddress(address, byAddress) && required != localName) return byAddress;

    // May well be the address as a text; it counts as a name.
    std::string shortName;
    if (resolver.NameOfAddress(address, kNameServicePort, NameLookup::ShortName, shortName) && shortName != localName)
        return shortName;
    return {};
}

}  // namespace

void ResolveHostName(HostRecord& host, VardelData& data) {
    const TcString localName(data.localHostName);
    const std::string name = FindName(host.ip, localName.GetContent(), data.services.resolver);
    if (!name.empty()) {
        host.hostName = name.c_str();
        return;
    }
    char text[256];
    data.LoadText(kNoHostNameText, text, sizeof text);
    host.hostName = text;
    host.nameUnresolved = 1;
}

}  // namespace vardel

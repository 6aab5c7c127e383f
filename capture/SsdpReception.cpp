#include "capture/SsdpReception.h"

#include <new>

#include "capture/EventMap.h"
#include "capture/SsdpDocument.h"
#include "foundation/TextTrim.h"

namespace vardel {

namespace {

constexpr char kAgent[] = "Vardelwatch-UPNP-Resolve";
constexpr std::string_view kFirstLines[] = {"HTTP/1.1 200 OK\r\n", "NOTIFY * HTTP/1.1\r\n"};
constexpr std::string_view kLocation = "Location:";

TcString Whole(std::string_view text) {
    TcString whole;
    whole.Set(text.data(), static_cast<int>(text.size()));
    return whole;
}

void ApplyDescription(const DeviceDescription& description, HostRecord& host) {
    if (description.friendlyName) {
        const TcString name = Whole(*description.friendlyName);
        host.friendlyName = name;
        PostEvent(EventKind::DeviceNameFound, name, host.ip);
    }
    if (description.presentationUrl) host.presentationUrl = Whole(*description.presentationUrl);
}

}  // namespace

std::optional<std::string_view> ParseSsdpLocation(std::string_view message) {
    if (!message.starts_with(kFirstLines[0]) && !message.starts_with(kFirstLines[1])) return std::nullopt;
    const std::size_t header = message.find(kLocation);
    if (header == std::string_view::npos) return std::nullopt;
    const std::string_view value = message.substr(header + kLocation.size());
    const std::size_t lineEnd = value.find("\r\n");
    if (lineEnd == std::string_view::npos) return std::nullopt;
    return TrimmedText(value.substr(0, lineEnd));
}

void FetchDeviceDescription(const std::string& location, HostRecord& host, VardelData& data) {
    try {
        const HttpRequest request{kAgent, location.c_str(), kDescriptionBytes, kDescriptionTimeoutMs};
        std::string document;
        if (IsWebAddress(request.url) && data.services.http.Fetch(request, document))
            ApplyDescription(ParseDeviceDescription(document), host);
    } catch (const std::bad_alloc&) {
        // Counts as the one attempt too.
    }
    host.upnpDone = 1;
}

}  // namespace vardel

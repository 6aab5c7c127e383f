// A UPnP device's description document, of which two elements of its first bytes are taken: what the device is called
// and where its pages are (UPnP Device Architecture 1.0, section 2.1).
//
// The document is searched, not parsed: neither its form nor where an element stands matters, and entities stay as
// they are written. A function of the bytes alone.
#pragma once

#include <optional>
#include <string_view>

namespace vardel {

// Parts of the document, trimmed; nothing where one of an element's two tags is missing.
struct DeviceDescription {
    std::optional<std::string_view> friendlyName;  // up to its first colon
    std::optional<std::string_view> presentationUrl;
};

// The document ends at its first zero byte.
DeviceDescription ParseDeviceDescription(std::string_view document);

}  // namespace vardel

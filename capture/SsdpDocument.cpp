#include "capture/SsdpDocument.h"

#include "foundation/TextTrim.h"

namespace vardel {

namespace {

std::optional<std::string_view> TextBetween(std::string_view document, std::string_view open,
                                            std::string_view close) {
    const std::size_t start = document.find(open);
    if (start == std::string_view::npos) return std::nullopt;
    const std::string_view behind = document.substr(start + open.size());
    const std::size_t end = behind.find(close);
    if (end == std::string_view::npos) return std::nullopt;
    return behind.substr(0, end);
}

}  // namespace

DeviceDescription ParseDeviceDescription(std::string_view document) {
    document = document.substr(0, document.find('\0'));
    DeviceDescription description;
    // Wanted: many devices write "kind: room", and the kind alone is taken.
    if (const auto name = TextBetween(document, "<friendlyName>", "</friendlyName>"))
        description.friendlyName = TrimmedText(name->substr(0, name->find(':')));
    if (const auto url = TextBetween(document, "<presentationURL>", "</presentationURL>"))
        description.presentationUrl = TrimmedText(*url);
    return description;
}

}  // namespace vardel

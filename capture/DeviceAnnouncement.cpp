#include "capture/DeviceAnnouncement.h"

#include <cstdio>

#include "capture/EventMap.h"

namespace vardel {

namespace {

// Offsets from the start of the frame.
constexpr u32 kPayloadAt = 42;
constexpr u32 kHostNameAt = kPayloadAt + 48;
constexpr u32 kModelAt = kPayloadAt + 80;
constexpr u32 kFirmwareMajorAt = kPayloadAt + 188;
constexpr u32 kFirmwareMinorAt = kPayloadAt + 189;

}  // namespace

// A name without its zero byte goes on into what follows it, to the end of the frame at the latest.
DeviceAnnouncement ParseDeviceAnnouncement(const FrameView& frame) {
    return {frame.Text(kHostNameAt), frame.Text(kModelAt), frame.At(kFirmwareMajorAt), frame.At(kFirmwareMinorAt)};
}

void FormDeviceLabel(const DeviceAnnouncement& announcement, char (&label)[kDeviceLabelSize]) {
    std::snprintf(label, sizeof label, "%.*s FW: %d.%d", static_cast<int>(announcement.model.size()),
                  announcement.model.data(), announcement.firmwareMajor, announcement.firmwareMinor);
}

void ApplyDeviceAnnouncement(const DeviceAnnouncement& announcement, const char* label, HostRecord& host) {
    if (host.nameUnresolved && !announcement.hostName.empty()) {
        // As it stands: unlike the name of a browse announcement it keeps its capitals.
        TcString name;
        name.Set(announcement.hostName.data(), static_cast<int>(announcement.hostName.size()));
        host.hostName = name;
        host.nameUnresolved = 0;
    }
    if (!host.deviceProbed) {
        host.osFromBrowse = 1;
        host.deviceProbed = 1;
        const TcString name = host.hostName;
        PostEvent(EventKind::DeviceAnnounced, name, host.ip, label);
    }
    host.os = label;
}

}  // namespace vardel

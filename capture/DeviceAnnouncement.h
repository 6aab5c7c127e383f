// The announcement of one maker's network storage: a UDP datagram of fixed layout with a name, a model and a firmware
// version. Offsets are those of the payload; the other bytes of its 320 are not looked at.
//
// ParseDeviceAnnouncement is a function of the frame alone; ApplyDeviceAnnouncement writes what it gave to a host.
// Both run on the capture thread.
#pragma once

#include <string_view>

#include "capture/FrameView.h"
#include "capture/HostRecord.h"

namespace vardel {

constexpr u16 kDeviceAnnouncementSize = 320;
constexpr int kDeviceLabelSize = 100;  // with the terminator; a longer label is cut

// Borrows the frame.
struct DeviceAnnouncement {
    std::string_view hostName;
    std::string_view model;
    u8 firmwareMajor;
    u8 firmwareMinor;
};

DeviceAnnouncement ParseDeviceAnnouncement(const FrameView& frame);

// "model FW: major.minor".
void FormDeviceLabel(const DeviceAnnouncement& announcement, char (&label)[kDeviceLabelSize]);

// The label replaces the operating system each time; the first announcement of a host is an event. A name that the
// resolver gave is kept.
void ApplyDeviceAnnouncement(const DeviceAnnouncement& announcement, const char* label, HostRecord& host);

}  // namespace vardel

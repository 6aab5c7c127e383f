// NetBIOS browse announcements: what a Windows host or a file server tells its neighbours of itself every few
// minutes, in a datagram from UDP port 138 to port 138.
//
// ParseHostAnnouncement is a function of the frame alone; ApplyHostAnnouncement writes what it gave to a
// host. Both run on the capture thread. Formats: RFC 1002, section 4.4.2 (datagram); [MS-CIFS] 2.2.4.33
// (transaction); [MS-BRWS] 2.2.1 and 2.2.3 (announcements).
#pragma once

#include <optional>

#include "capture/FrameView.h"
#include "capture/HostRecord.h"
#include "capture/VardelData.h"

namespace vardel {

constexpr u32 kServerNameSize = 16;

struct HostAnnouncement {
    char serverName[kServerNameSize + 1];  // as sent, terminated
    u8 osMajor;
    u8 osMinor;
    u32 serverType;  // bits
};

// Nothing where the frame holds no host or local master announcement. The ports are not looked at.
std::optional<HostAnnouncement> ParseHostAnnouncement(const FrameView& frame);

// A local adapter's record keeps its operating system; a name that the resolver gave is kept in every record.
void ApplyHostAnnouncement(const HostAnnouncement& announcement, HostRecord& host, const VardelData& data);

}  // namespace vardel

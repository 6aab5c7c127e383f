// SSDP messages as they pass on the wire: taking the address of the device's description from one, and naming the
// device by it. The handler of IP frames calls these on the capture thread.
//
// Formats: UPnP Device Architecture 1.0, sections 1.1.2 (NOTIFY) and 1.2.3 (answer to a search).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "capture/HostRecord.h"
#include "capture/VardelData.h"

namespace vardel {

// The most of a description that is read.
constexpr u32 kDescriptionBytes = 4096;
// No frame is read while a description is fetched, so a dead, slow or endless server is given up; all in all, and
// with what a busy machine adds, the capture thread is held for less than 5 seconds.
constexpr u32 kDescriptionTimeoutMs = 4500;

// The address that a message gives, trimmed. Nothing where the message is neither a notification nor an answer, or
// gives none. Wanted: "Location:" is taken spelt exactly so, and from wherever it stands.
std::optional<std::string_view> ParseSsdpLocation(std::string_view message);

// Fetches the description, once per host and run: whatever comes of it, `upnpDone` is set. What it names goes to the
// host's fields, a name is an event. Other addresses than those of http and https count as dead.
void FetchDeviceDescription(const std::string& location, HostRecord& host, VardelData& data);

}  // namespace vardel

// The connections in what "smbstatus --json" (Samba 4.17 and later) writes.
#pragma once

#include <string_view>
#include <vector>

#include "platform/ServerConnections.h"

namespace vardel {

// A row for each member of "tcons" that is an object with a text "service" and a text "machine": that share, that
// computer, the "username" of the session that its "session_id" names in "sessions", and the seconds from
// "connected_at" to `now` (seconds since 1970). What is missing or of another type counts as not told. Nothing for
// a text that is no such document.
std::vector<ServerConnection> ConnectionsOfSambaStatus(std::string_view json, i64 now);

// Seconds since 1970 of a moment as Samba tells it: "2024-05-06T07:08:09.123456+02:00", also with a blank for the T,
// without the fraction, and with "+0200" or "Z" for the zone. -1 for anything else.
i64 SecondsOfSambaTime(std::string_view text);

}  // namespace vardel

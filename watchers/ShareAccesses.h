// What the share watcher makes of the connections to this machine's shares.
//
// Used by FileSharingThread alone.
#pragma once

#include "capture/VardelData.h"
#include "platform/ServerConnections.h"

namespace vardel {

// The key under which an access is told once a run. Two accesses with the same number count as one.
i32 RemoteAccessKey(const ServerConnection& connection);

// Exactly three dots: an address, whatever stands between them.
bool CountsAsAddress(const TcString& computer);

// A known access gets its new time. A new one is posted as an event, recorded in `remoteAccesses`, appended to
// `shareAccesses`, and its computer made known to the capture. A row without computer or share is passed over.
void TakeConnection(VardelData& data, const ServerConnection& connection);

// An ARP request for the computer's address, unless the host table has it. A name is resolved first, which may block.
void MakeKnown(VardelData& data, const TcString& computer);

}  // namespace vardel

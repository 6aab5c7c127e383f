// The share tick, once a second: remote clients on this machine's shares, and new shares of other hosts.
//
// Alerts are shown, consumed unseen or kept for later as in the tray tick. Main thread.
#pragma once

#include "frame/TickContext.h"

namespace vardel {

// What the user doesn't want to hear of.
struct RemoteAccessFilter {
    bool ipcWithoutUser;
    bool localhost;
    bool trustedHosts;
};

// One connection, as far as the filter looks at it.
struct RemoteAccessFacts {
    bool ipcWithoutUser;   // share "IPC$" and no user's name
    bool loopback;         // computer "127.0.0.1"
    bool ownAddress;       // the computer is a host of this machine
    bool trusted;          // the computer stands in the trusted hosts table
};

constexpr bool IsFiltered(const RemoteAccessFilter& filter, const RemoteAccessFacts& access) {
    return (filter.ipcWithoutUser && access.ipcWithoutUser) ||
           (filter.localhost && (access.loopback || access.ownAddress)) || (filter.trustedHosts && access.trusted);
}

// While remote accesses aren't to be told, theirs is the one list that is never consumed.
void RunShareTick(const TickContext& tick);

}  // namespace vardel

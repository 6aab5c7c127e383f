// The name that the user gave a network connection, from the machine's configuration. Runs before any thread
// exists.
#pragma once

#include "foundation/TcString.h"
#include "platform/MachineConfig.h"

namespace vardel {

// Looks for the identifier in braces at the end of `deviceName`, case-sensitive. `friendlyName` stays
// untouched where nothing is found; of several finds the last one counts.
void FindConnectionName(MachineConfig& config, const char* deviceName, TcString& friendlyName);

}  // namespace vardel

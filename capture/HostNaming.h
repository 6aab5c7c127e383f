// Name of a new host from the system's resolver. Runs on the capture thread and may take as long as the resolver.
#pragma once

#include "capture/HostRecord.h"
#include "capture/VardelData.h"

namespace vardel {

// Fills host.hostName from host.ip, or sets string id 90 and nameUnresolved where no look-up gave a name.
void ResolveHostName(HostRecord& host, VardelData& data);

}  // namespace vardel

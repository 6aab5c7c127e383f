// What the two checks of VardelData, CheckProgramUpdate and CheckMacListUpdate, ask the update server for. They run on
// the calling thread, show nothing, and leave what is on offer in newestProgramVersion and newestMacListVersion.
//
// No network, no server, another page: all count as nothing new.
#pragma once

#include "platform/Types.h"

namespace vardel {

inline constexpr const char* kProgramVersionPath = "/download/versions/vardelwatch.version";
inline constexpr const char* kMacListVersionPath = "/download/versions/arplist.version";
inline constexpr u32 kVersionFileBytes = 1024;
// Each check's limit, so that a server that never answers doesn't keep the program from starting.
inline constexpr u32 kUpdateCheckTimeoutMs = 10000;

}  // namespace vardel

// Starting the programs that the user named for a host, with tags in their parameters; docs/applications.md tells
// them.
//
// Main thread. A start that fails shows the user nothing; nothing waits for what was started.
#pragma once

#include "capture/VardelData.h"

namespace vardel {

// The text with every tag replaced by its value, unquoted. The host's values come first, then those of the chosen
// adapter, which are one blank each while none is chosen.
TcString ExpandAppParameters(const TcString& parameters, const HostRecord& host, const VardelData& data);

// Opens `file` with parameters that hold no tags, or whose tags stay as they are. False when nothing was started.
bool LaunchApplication(Shell& shell, const TcString& file, const TcString& parameters);

// Opens `file` for a host. Tags are expanded in each piece of the parameters that the system hands over by itself
// (see Shell): where a program gets its arguments one by one, a value is one argument or part of one, never two.
bool LaunchForHost(VardelData& data, const TcString& file, const TcString& parameters, const HostRecord& host);

}  // namespace vardel

// The six lists of the settings as runs of binary values, one key a list, one value a record.
//
// Reading builds a list aside and puts it in place; writing walks the live one. Main thread.
#pragma once

#include "settings/VardelSettings.h"

namespace vardel {

void ReadLists(VardelSettings& settings);

// Plugins, applications, trusted, distrusted and watched hosts, accounts, in this order.
void WriteLists(const VardelSettings& settings);
void WriteTrustedHostList(const VardelSettings& settings);
void WriteDistrustedHostList(const VardelSettings& settings);
void WriteWatchedHostList(const VardelSettings& settings);

// Deep copy. Without watched hosts in `source` the target is left without accounts; that is wanted.
void AssignLists(VardelSettings& target, const VardelSettings& source);

}  // namespace vardel

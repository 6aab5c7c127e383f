// Read-only look at the machine-wide configuration tree (HKEY_LOCAL_MACHINE), for adapters' connection names.
// On Linux there is none: every open fails.
#pragma once

#include <string>

#include "platform/Types.h"

namespace vardel {

struct MachineKeyObject;
using MachineKey = MachineKeyObject*;

class MachineConfig {
  public:
    virtual ~MachineConfig() = default;

    // `parent` null stands for the root. Null when the key doesn't exist or may not be read.
    virtual MachineKey Open(MachineKey parent, const char* path) = 0;
    virtual void Close(MachineKey key) = 0;
    // Copies the name of the subkey at `index` (from 0) to `name`, at most size - 1 characters. False at the end.
    virtual bool EnumerateSubkey(MachineKey key, u32 index, char* name, u32 size) = 0;
    // A text value, cut to size - 1 characters and terminated. False when it can't be read.
    virtual bool QueryText(MachineKey key, const char* name, char* buffer, u32 size) = 0;
};

MachineConfig& SystemMachineConfig();

}  // namespace vardel

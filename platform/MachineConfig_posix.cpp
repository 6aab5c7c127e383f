// Linux has no such tree: adapters bear the names the user knows.
#include "platform/MachineConfig.h"

namespace vardel {

namespace {

class NoMachineConfig : public MachineConfig {
  public:
    MachineKey Open(MachineKey, const char*) override { return nullptr; }
    void Close(MachineKey) override {}
    bool EnumerateSubkey(MachineKey, u32, char*, u32) override { return false; }
    bool QueryText(MachineKey, const char*, char*, u32) override { return false; }
};

}  // namespace

MachineConfig& SystemMachineConfig() {
    static NoMachineConfig config;
    return config;
}

}  // namespace vardel

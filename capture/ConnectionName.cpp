#include "capture/ConnectionName.h"

#include <cstring>

namespace vardel {

namespace {

constexpr u32 kNameSize = 200;  // bytes, terminator included

// An opened key, closed with its scope.
class OpenKey {
  public:
    OpenKey(MachineConfig& config, MachineKey parent, const char* path)
        : config_(config), key_(config.Open(parent, path)) {}
    ~OpenKey() {
        if (key_) config_.Close(key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    explicit operator bool() const { return key_ != nullptr; }
    MachineKey Key() const { return key_; }

    // `visit(name)` for each subkey.
    template <class Visit>
    void ForEachSubkey(Visit&& visit) const {
        char name[kNameSize];
        for (u32 index = 0; key_ && config_.EnumerateSubkey(key_, index, name, sizeof name); ++index)
            visit(name);
    }

  private:
    MachineConfig& config_;
    const MachineKey key_;
};

void ReadConnection(MachineConfig& config, MachineKey device, TcString& friendlyName) {
    const OpenKey connection(config, device, "Connection");
    char name[kNameSize] = "";
    if (connection && config.QueryText(connection.Key(), "Name", name, sizeof name) && *name)
        friendlyName = name;
}

void ReadDevice(MachineConfig& config, MachineKey deviceClass, const char* identifier,
                TcString& friendlyName) {
    const OpenKey device(config, deviceClass, identifier);
    device.ForEachSubkey([&](const char* name) {
        if (std::strcmp(name, "Connection") == 0) ReadConnection(config, device.Key(), friendlyName);
    });
}

}  // namespace

// Every level is walked to its end also after a find: a later one overrides an earlier one, and that is
// wanted.
void FindConnectionName(MachineConfig& config, const char* deviceName, TcString& friendlyName) {
    const char* identifier = deviceName ? std::strchr(deviceName, '{') : nullptr;
    if (!identifier) return;
    const OpenKey network(config, nullptr, "SYSTEM\\CurrentControlSet\\Control\\Network\\");
    network.ForEachSubkey([&](const char* className) {
        const OpenKey deviceClass(config, network.Key(), className);
        deviceClass.ForEachSubkey([&](const char* name) {
            if (std::strcmp(name, identifier) == 0) ReadDevice(config, deviceClass.Key(), name, friendlyName);
        });
    });
}

}  // namespace vardel

#include "platform/MachineConfig.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

HKEY Native(MachineKey key) {
    return reinterpret_cast<HKEY>(key);
}

void CopyBounded(char* target, u32 size, const char* text, std::size_t length) {
    length = std::min<std::size_t>(length, size - 1);
    std::memcpy(target, text, length);
    target[length] = 0;
}

class WindowsMachineConfig : public MachineConfig {
  public:
    MachineKey Open(MachineKey parent, const char* path) override {
        HKEY key = nullptr;
        const HKEY root = parent ? Native(parent) : HKEY_LOCAL_MACHINE;
        if (RegOpenKeyExA(root, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return nullptr;
        return reinterpret_cast<MachineKey>(key);
    }
    void Close(MachineKey key) override {
        if (key) RegCloseKey(Native(key));
    }
    bool EnumerateSubkey(MachineKey key, u32 index, char* name, u32 size) override {
        if (!key || size == 0) return false;
        char full[1024];  // a name has at most 255 characters, each of up to 2 bytes in a code page
        DWORD length = sizeof full;
        if (RegEnumKeyExA(Native(key), index, full, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            return false;
        CopyBounded(name, size, full, length);
        return true;
    }
    bool QueryText(MachineKey key, const char* name, char* buffer, u32 size) override {
        if (!key || size == 0) return false;
        DWORD length = 0;
        if (RegQueryValueExA(Native(key), name, nullptr, nullptr, nullptr, &length) != ERROR_SUCCESS)
            return false;
        std::vector<char> data(length + 1);
        DWORD type = REG_NONE;
        const LSTATUS result = RegQueryValueExA(Native(key), name, nullptr, &type,
                                                reinterpret_cast<BYTE*>(data.data()), &length);
        if (result != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return false;
        // A stored text may come without its terminator.
        data[std::min<std::size_t>(length, data.size() - 1)] = 0;
        CopyBounded(buffer, size, data.data(), std::strlen(data.data()));
        return true;
    }
};

}  // namespace

MachineConfig& SystemMachineConfig() {
    static WindowsMachineConfig config;
    return config;
}

}  // namespace vardel

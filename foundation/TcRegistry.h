// TcRegistry: the per-user configuration store as the program uses it.
//
// A local object without state, over UserSettingsStore(): the registry on Windows, a file on Linux. Any
// thread may have its own. A key that was handed out is closed once, with CloseRegistryKey.
#pragma once

#include "platform/SettingsStore.h"

namespace vardel {

using RegistryHandle = StoreKey;

// The constant 2: the per-user software tree, to which paths are relative.
inline RegistryHandle UserSoftwareTree() {
    return reinterpret_cast<RegistryHandle>(std::uintptr_t{2});
}

class TcRegistry {
  public:
    TcRegistry() = default;
    virtual ~TcRegistry() = default;

    // For reading and writing. `root` is the constant. Null when the key doesn't exist.
    RegistryHandle OpenRegKey(RegistryHandle root, const char* path);
    // Creates or opens. `parent` is the constant or a key. Null on failure.
    RegistryHandle CreateKey(RegistryHandle parent, const char* name);
    void CloseRegistryKey(RegistryHandle key);

    // -1 when there is no such DWORD.
    int RegQueryDword(RegistryHandle key, const char* name);
    // 0 when there is no such QWORD.
    i64 RegQueryQword(RegistryHandle key, const char* name);
    // Text value, cut to size - 1 characters and terminated; empty when there is no such text. `size` is at
    // least 1.
    void RegQuerySZ(RegistryHandle key, const char* name, char* buffer, int size);

    void RegSetDword(RegistryHandle key, const char* name, int value);
    void RegSetQword(RegistryHandle key, const char* name, i64 value);
    void RegSetSZ(RegistryHandle key, const char* name, const char* text);

    // Enter the running program for automatic start at the user's logon under `name`, and take that entry
    // out.
    void SetRegAutostartU(const char* name);
    void DeleteRegAutostartU(const char* name);
};

}  // namespace vardel

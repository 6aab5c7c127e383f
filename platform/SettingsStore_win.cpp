#include "platform/SettingsStore.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

constexpr const char* kRoot = "Software";
constexpr const wchar_t* kRunKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";

HKEY SystemKey(StoreKey key) {
    return reinterpret_cast<HKEY>(key);
}

StoreResult Result(LSTATUS status) {
    switch (status) {
        case ERROR_SUCCESS:
            return StoreResult::Ok;
        case ERROR_FILE_NOT_FOUND:
            return StoreResult::NotFound;
        case ERROR_MORE_DATA:
            return StoreResult::MoreData;
        case ERROR_INVALID_HANDLE:
        case ERROR_KEY_DELETED:
            return StoreResult::InvalidHandle;
        default:
            return StoreResult::Failed;
    }
}

// The path below HKEY_CURRENT_USER or below the parent.
std::string PathBelow(StoreKey parent, const char* path) {
    if (parent) return path;
    return *path ? std::string(kRoot) + "\\" + path : kRoot;
}

// The running program's path in quotes; empty on failure. As wide text: a folder's name need not exist in the
// system code page.
std::wstring QuotedProgram() {
    std::vector<wchar_t> buffer(MAX_PATH);
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) return {};
        if (length < buffer.size()) return L"\"" + std::wstring(buffer.data(), length) + L"\"";
        buffer.resize(buffer.size() * 2);
    }
}

std::wstring Wide(const char* ascii) {
    return std::wstring(ascii, ascii + std::strlen(ascii));
}

class RegistryStore : public SettingsStore {
  public:
    StoreKey Open(StoreKey parent, const char* path) override {
        HKEY key = nullptr;
        const LSTATUS status = RegOpenKeyExA(parent ? SystemKey(parent) : HKEY_CURRENT_USER,
                                             PathBelow(parent, path).c_str(), 0, KEY_READ | KEY_WRITE, &key);
        return status == ERROR_SUCCESS ? reinterpret_cast<StoreKey>(key) : nullptr;
    }

    StoreKey Create(StoreKey parent, const char* path) override {
        HKEY key = nullptr;
        const LSTATUS status = RegCreateKeyExA(
            parent ? SystemKey(parent) : HKEY_CURRENT_USER, PathBelow(parent, path).c_str(), 0, nullptr,
            REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
        return status == ERROR_SUCCESS ? reinterpret_cast<StoreKey>(key) : nullptr;
    }

    void Close(StoreKey key) override {
        if (key) RegCloseKey(SystemKey(key));
    }

    bool Delete(const char* path) override {
        if (!*path) return false;
        HKEY root = nullptr;
        if (RegOpenKeyA(HKEY_CURRENT_USER, kRoot, &root) != ERROR_SUCCESS) return false;
        const LSTATUS status = RegDeleteKeyA(root, path);
        RegCloseKey(root);
        return status == ERROR_SUCCESS;
    }

    StoreResult Query(StoreKey key, const char* name, ValueType& type, void* data, u32& size) override {
        DWORD typeNumber = REG_NONE;
        DWORD length = size;
        const LSTATUS status =
            RegQueryValueExA(SystemKey(key), name, nullptr, &typeNumber, static_cast<BYTE*>(data), &length);
        type = static_cast<ValueType>(typeNumber);
        size = length;
        return Result(status);
    }

    StoreResult Set(StoreKey key, const char* name, ValueType type, const void* data, u32 size) override {
        return Result(RegSetValueExA(SystemKey(key), name, 0, static_cast<DWORD>(type),
                                     static_cast<const BYTE*>(data), size));
    }

    bool AddAutostart(const char* name) override {
        const std::wstring program = QuotedProgram();
        HKEY key = nullptr;
        if (program.empty() ||
            RegCreateKeyExW(HKEY_CURRENT_USER, kRunKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                            nullptr, &key, nullptr) != ERROR_SUCCESS)
            return false;
        const DWORD bytes = static_cast<DWORD>((program.size() + 1) * sizeof(wchar_t));
        const LSTATUS status = RegSetValueExW(key, Wide(name).c_str(), 0, REG_SZ,
                                              reinterpret_cast<const BYTE*>(program.c_str()), bytes);
        RegCloseKey(key);
        return status == ERROR_SUCCESS;
    }

    bool RemoveAutostart(const char* name) override {
        HKEY key = nullptr;
        LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, kRunKey, 0, KEY_SET_VALUE, &key);
        if (status == ERROR_FILE_NOT_FOUND) return true;
        if (status != ERROR_SUCCESS) return false;
        status = RegDeleteValueW(key, Wide(name).c_str());
        RegCloseKey(key);
        return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
    }
};

}  // namespace

SettingsStore& SystemSettingsStore() {
    // Never destroyed: threads may still read settings while the process ends.
    static SettingsStore* store = new RegistryStore;
    return *store;
}

}  // namespace vardel

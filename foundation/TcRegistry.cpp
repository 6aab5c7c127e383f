#include "foundation/TcRegistry.h"

#include <cstring>
#include <string>

namespace vardel {

namespace {

// False for a root that the store has no tree for. The store's own root is null.
bool StoreParent(RegistryHandle parent, StoreKey& key) {
    key = parent == UserSoftwareTree() ? nullptr : parent;
    return parent != nullptr;
}

template <class Number>
Number QueryNumber(RegistryHandle key, const char* name, ValueType wanted, Number missing) {
    Number number{};
    ValueType type = ValueType::None;
    u32 size = sizeof number;
    const StoreResult result = UserSettingsStore().Query(key, name, type, &number, size);
    return result == StoreResult::Ok && type == wanted && size == sizeof number ? number : missing;
}

}  // namespace

RegistryHandle TcRegistry::OpenRegKey(RegistryHandle root, const char* path) {
    StoreKey parent;
    return StoreParent(root, parent) ? UserSettingsStore().Open(parent, path) : nullptr;
}

RegistryHandle TcRegistry::CreateKey(RegistryHandle parent, const char* name) {
    StoreKey key;
    return StoreParent(parent, key) ? UserSettingsStore().Create(key, name) : nullptr;
}

void TcRegistry::CloseRegistryKey(RegistryHandle key) {
    if (key && key != UserSoftwareTree()) UserSettingsStore().Close(key);
}

int TcRegistry::RegQueryDword(RegistryHandle key, const char* name) {
    return QueryNumber<i32>(key, name, ValueType::Dword, -1);
}

i64 TcRegistry::RegQueryQword(RegistryHandle key, const char* name) {
    return QueryNumber<i64>(key, name, ValueType::Qword, 0);
}

void TcRegistry::RegQuerySZ(RegistryHandle key, const char* name, char* buffer, int size) {
    std::string text;
    ValueType type = ValueType::None;
    u32 length = 0;
    StoreResult result = UserSettingsStore().Query(key, name, type, nullptr, length);
    // Again for as long as somebody makes the value longer between the two looks.
    while (result == StoreResult::Ok || result == StoreResult::MoreData) {
        text.resize(length);
        result = UserSettingsStore().Query(key, name, type, text.data(), length);
        if (result == StoreResult::Ok) break;
    }
    buffer[0] = 0;
    if (result != StoreResult::Ok || (type != ValueType::Text && type != ValueType::ExpandText)) return;
    text.resize(length);
    const std::size_t cut = strnlen(text.data(), std::min(text.size(), static_cast<std::size_t>(size - 1)));
    std::memcpy(buffer, text.data(), cut);
    buffer[cut] = 0;
}

void TcRegistry::RegSetDword(RegistryHandle key, const char* name, int value) {
    UserSettingsStore().Set(key, name, ValueType::Dword, &value, sizeof value);
}

void TcRegistry::RegSetQword(RegistryHandle key, const char* name, i64 value) {
    UserSettingsStore().Set(key, name, ValueType::Qword, &value, sizeof value);
}

void TcRegistry::RegSetSZ(RegistryHandle key, const char* name, const char* text) {
    UserSettingsStore().Set(key, name, ValueType::Text, text, static_cast<u32>(std::strlen(text) + 1));
}

void TcRegistry::SetRegAutostartU(const char* name) {
    UserSettingsStore().AddAutostart(name);
}

void TcRegistry::DeleteRegAutostartU(const char* name) {
    UserSettingsStore().RemoveAutostart(name);
}

}  // namespace vardel

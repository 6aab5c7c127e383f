// RegistryTree: keys and their typed values in memory, as a registry text tells them.
//
// A plain value for one thread at a time. Keys are known by their full path from the root of all
// ("HKEY_CURRENT_USER\Software\..."), without regard to case (of the 26 letters); the spelling of whoever
// made a key or value first is kept. A key that only lies above another one exists too, without values.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SettingsStore.h"

namespace vardel {

struct RegistryValue {
    std::string name;  // empty: the key's default value
    ValueType type;
    std::string data;  // texts in 8 bits, with their NUL
    u64 serial;        // order of making
};

class RegistryKey {
  public:
    explicit RegistryKey(std::string keyPath) : path(std::move(keyPath)) {}

    const RegistryValue* Find(std::string_view name) const;
    void Set(std::string_view name, ValueType type, std::string data);
    bool Erase(std::string_view name);
    // In the order in which they were made.
    std::vector<const RegistryValue*> Values() const;

    const std::string path;
    bool deleted = false;  // no longer in any tree; kept for whoever still holds it

  private:
    std::map<std::string, RegistryValue, std::less<>> values_;  // by folded name
    u64 serial_ = 0;
};

class RegistryTree {
  public:
    using KeyPointer = std::shared_ptr<RegistryKey>;

    // Null when there is no such key.
    KeyPointer Find(std::string_view path);
    // `path` must be valid.
    KeyPointer Make(std::string_view path);
    // With all below it. False when there is none.
    bool Erase(std::string_view path);
    bool HasSubkeys(std::string_view path) const;
    bool IsEmpty() const { return keys_.empty(); }

    // By path. Keys that only lie above others are left out.
    const std::map<std::string, KeyPointer, std::less<>>& Keys() const { return keys_; }

    // A path has at least one component, and no empty one.
    static bool IsValidPath(std::string_view path);

  private:
    std::map<std::string, KeyPointer, std::less<>> keys_;  // by folded path
};

}  // namespace vardel

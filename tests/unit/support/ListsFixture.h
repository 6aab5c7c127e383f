// The six lists of the settings in a recording store.
#pragma once

#include <algorithm>

#include "tests/unit/support/SettingsFixture.h"

namespace vardel::test {

inline const std::string kPlugins = kProduct + "\\Plugins";
inline const std::string kApplications = kProduct + "\\Applications";
inline const std::string kTrusted = kProduct + "\\TrustedHosts";
inline const std::string kDistrusted = kProduct + "\\DistrustedHosts";
inline const std::string kWatched = kProduct + "\\WatchedHosts";
inline const std::string kAccounts = kProduct + "\\AdminAccounts";

class SettingsLists : public SettingsFixture {
  protected:
    template <class Record>
    void Stored(const std::string& key, const std::string& name, const Record& record,
                std::size_t size = sizeof(Record)) {
        const std::string bytes = Bytes(record) + "and more behind it";
        store.Put(key, name, ValueType::Binary, bytes.data(), size);
    }
    void Read() { EXPECT_TRUE(settings.ReadSettings()); }
    void Write() { EXPECT_TRUE(settings.WriteSettings()); }
    std::string StoredBytes(const std::string& key, const std::string& name) {
        const RegistryValue* value = store.Value(key, name);
        if (!value) return "no such value";
        EXPECT_EQ(value->type, ValueType::Binary);
        return value->data;
    }
    using Names = std::vector<std::string>;
    VardelSettings settings;
};

template <class Table>
std::vector<std::string> Keys(const Table& table) {
    std::vector<std::string> keys;
    table.ForEach([&](const TcString& key, auto*) { keys.push_back(key.GetContent()); });
    std::sort(keys.begin(), keys.end());
    return keys;
}
using Texts = std::vector<std::string>;

}  // namespace vardel::test

// Settings over a recording store, and records for their lists.
#pragma once

#include <gtest/gtest.h>

#include "settings/VardelSettings.h"
#include "tests/unit/support/RecordingStore.h"

namespace vardel::test {

inline const std::string kProduct = "Ostrand Software\\Vardelwatch";
inline const std::string kSettings = kProduct + "\\Settings";

class SettingsFixture : public ::testing::Test {
  protected:
    void TearDown() override {
        EXPECT_EQ(store.OpenKeys(), 0u) << "a key was not closed";
        EXPECT_EQ(store.openBatches, 0);
    }
    RecordingStore store;
    ScopedSettingsStore installed{store};
};

template <std::size_t size>
void Put(char (&field)[size], const std::string& text) {
    text.copy(field, size - 1);
}

inline ListedHost Listed(const std::string& ip, const std::string& name = "host") {
    ListedHost host{};
    Put(host.ipAddress, ip);
    Put(host.hostName, name);
    Put(host.macAddress, "00:11:22:33:44:55");
    Put(host.lastPacket, "12:34:56");
    return host;
}

inline WatchedHost Watched(const std::string& ip, u8 online = 0) {
    WatchedHost host{};
    Put(host.ipAddress, ip);
    Put(host.hostName, "watched");
    host.online = online;
    return host;
}

inline PluginEntry Plugin(const std::string& id, u8 active) {
    PluginEntry plugin{};
    Put(plugin.name, id);
    plugin.active = active;
    return plugin;
}

inline ApplicationEntry Application(const std::string& name) {
    ApplicationEntry application{};
    Put(application.name, name);
    Put(application.executable, "/usr/bin/" + name);
    Put(application.parameters, "%VDLW_IP%");
    return application;
}

inline AdminAccount Account(const std::string& label) {
    AdminAccount account{};
    Put(account.userName, "administrator");
    Put(account.password, "\x81\xfe\x01");
    Put(account.accountName, label);
    return account;
}

template <class Record, Ownership ownership>
void Add(SharedMap<GuardedRecord<Record>, ownership>& table, const std::string& key, const Record& record) {
    ASSERT_TRUE(table.Insert(key.c_str(), std::make_unique<GuardedRecord<Record>>(record)));
}

// Byte for byte.
template <class Record>
std::string Bytes(const Record& record) {
    return std::string(reinterpret_cast<const char*>(&record), sizeof record);
}

}  // namespace vardel::test

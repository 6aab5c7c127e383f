#include "settings/SettingsLists.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "foundation/TcRegistry.h"
#include "settings/SettingsKeys.h"

namespace vardel {

namespace {

struct ListSection {
    const char* name;    // of the key, below the product's
    const char* prefix;  // of the values; the number from 0 follows

    std::string Path() const { return std::string(kProductKey) + "\\" + name; }
    std::string ValueName(i32 number) const { return prefix + std::to_string(number); }
};

constexpr ListSection kPlugins{"Plugins", "Plugin"};
constexpr ListSection kApplications{"Applications", "Application"};
constexpr ListSection kTrustedHosts{"TrustedHosts", "Host"};
constexpr ListSection kDistrustedHosts{"DistrustedHosts", "Host"};
constexpr ListSection kWatchedHosts{"WatchedHosts", "Host"};
constexpr ListSection kAdminAccounts{"AdminAccounts", "AdminAccount"};

template <std::size_t size>
void CopyText(char (&target)[size], const char (&source)[size]) {
    std::memcpy(target, source, strnlen(source, size - 1));
}

const char (&KeyField(const ListedHost& host))[260] {
    return host.ipAddress;
}
const char (&KeyField(const WatchedHost& host))[20] {
    return host.ipAddress;
}
const char (&KeyField(const PluginEntry& plugin))[50] {
    return plugin.name;
}

// ---- reading ----

// `take(number, record)` for each value until the first that can't be had: a gap or a value longer than the
// record ends the list. The size is set once, and a short value leaves it short: the values behind it that
// are longer end the list too, and what a short value doesn't fill is left from the record before it.
template <class Record, class Take>
void ReadSection(const ListSection& section, Take take) {
    TcRegistry registry;
    const RegistryHandle key = registry.OpenRegKey(UserSoftwareTree(), section.Path().c_str());
    if (!key) return;
    Record record{};
    u32 size = sizeof record;
    for (i32 number = 0;; ++number) {
        ValueType type;
        const std::string name = section.ValueName(number);
        if (UserSettingsStore().Query(key, name.c_str(), type, &record, size) != StoreResult::Ok) break;
        take(number, record);
    }
    registry.CloseRegistryKey(key);
}

template <class Record, Ownership ownership>
void ReadTable(const ListSection& section, SharedMap<GuardedRecord<Record>, ownership>& table) {
    SharedMap<GuardedRecord<Record>, ownership> fresh;
    ReadSection<Record>(section, [&](i32, const Record& record) {
        fresh.Insert(FieldText(KeyField(record)), std::make_unique<GuardedRecord<Record>>(record));
    });
    table.ReplaceWith(fresh);
}

// ---- writing ----

bool ReachListKey(const std::string& path) {
    TcRegistry registry;
    RegistryHandle key = registry.OpenRegKey(UserSoftwareTree(), path.c_str());
    if (!key) {
        if (const RegistryHandle product = registry.CreateKey(UserSoftwareTree(), kProductKey)) {
            registry.CloseRegistryKey(registry.CreateKey(UserSoftwareTree(), path.c_str()));
            registry.CloseRegistryKey(product);
        }
        key = registry.OpenRegKey(UserSoftwareTree(), path.c_str());
    }
    registry.CloseRegistryKey(key);
    return key != nullptr;
}

// `walk(put)` calls `put(record)` for each record to be written. An empty list has no key.
template <class Walk>
void RewriteSection(const ListSection& section, bool empty, Walk walk) {
    const std::string path = section.Path();
    if (!ReachListKey(path)) return;
    UserSettingsStore().Delete(path.c_str());
    if (empty) return;
    TcRegistry registry;
    const RegistryHandle key = registry.CreateKey(UserSoftwareTree(), path.c_str());
    if (!key) return;
    i32 number = 0;
    walk([&](const auto& record) {
        // A value that can't be written still takes its number.
        const std::string name = section.ValueName(number++);
        UserSettingsStore().Set(key, name.c_str(), ValueType::Binary, &record, sizeof record);
    });
    registry.CloseRegistryKey(key);
}

template <class Record, Ownership ownership, class Wanted>
void WriteTable(const ListSection& section, const SharedMap<GuardedRecord<Record>, ownership>& table,
                Wanted wanted) {
    RewriteSection(section, table.IsEmpty(), [&](auto put) {
        table.ForEach([&](const TcString&, const GuardedRecord<Record>* guarded) {
            if (!guarded) return;
            const Record record = guarded->Read();
            if (wanted(record)) put(record);
        });
    });
}

template <class Table>
void WriteTable(const ListSection& section, const Table& table) {
    WriteTable(section, table, [](const auto&) { return true; });
}

// ---- copying ----

template <class Record, Ownership ownership>
void CopyTable(const SharedMap<GuardedRecord<Record>, ownership>& source,
               SharedMap<GuardedRecord<Record>, ownership>& fresh) {
    source.ForEach([&](const TcString& key, const GuardedRecord<Record>* record) {
        if (record) fresh.Insert(key, std::make_unique<GuardedRecord<Record>>(record->Read()));
    });
}

ApplicationEntry CopyOf(const ApplicationEntry& source) {
    ApplicationEntry copy{};
    CopyText(copy.name, source.name);
    CopyText(copy.executable, source.executable);
    CopyText(copy.parameters, source.parameters);
    return copy;
}

}  // namespace

void ReadLists(VardelSettings& settings) {
    ReadTable(kPlugins, settings.pluginStates);
    std::vector<ApplicationEntry> applications;
    ReadSection<ApplicationEntry>(kApplications, [&](i32, const ApplicationEntry& application) {
        applications.push_back(application);
    });
    settings.applications.Write(std::move(applications));
    ReadTable(kTrustedHosts, settings.trustedHosts);
    ReadTable(kDistrustedHosts, settings.distrustedHosts);
    ReadTable(kWatchedHosts, settings.watchedHosts);
    std::map<i32, AdminAccount> accounts;
    ReadSection<AdminAccount>(
        kAdminAccounts, [&](i32 number, const AdminAccount& account) { accounts.emplace(number, account); });
    settings.accounts.Write(std::move(accounts));
}

void WriteLists(const VardelSettings& settings) {
    // A plugin that is switched off leaves no trace and comes back as new.
    WriteTable(kPlugins, settings.pluginStates, [](const PluginEntry& plugin) { return plugin.active != 0; });
    const std::vector<ApplicationEntry> applications = settings.applications.Read();
    RewriteSection(kApplications, applications.empty(),
                   [&](auto put) { std::for_each(applications.begin(), applications.end(), put); });
    WriteTrustedHostList(settings);
    WriteDistrustedHostList(settings);
    WriteWatchedHostList(settings);
    const std::map<i32, AdminAccount> accounts = settings.accounts.Read();
    RewriteSection(kAdminAccounts, accounts.empty(), [&](auto put) {
        for (const auto& [index, account] : accounts) put(account);
    });
}

void WriteTrustedHostList(const VardelSettings& settings) {
    WriteTable(kTrustedHosts, settings.trustedHosts);
}

void WriteDistrustedHostList(const VardelSettings& settings) {
    WriteTable(kDistrustedHosts, settings.distrustedHosts);
}

void WriteWatchedHostList(const VardelSettings& settings) {
    WriteTable(kWatchedHosts, settings.watchedHosts);
}

void AssignLists(VardelSettings& target, const VardelSettings& source) {
    PluginStateTable plugins;
    ListedHostTable trusted, distrusted;
    WatchedHostTable watched;
    CopyTable(source.pluginStates, plugins);
    CopyTable(source.trustedHosts, trusted);
    CopyTable(source.distrustedHosts, distrusted);
    CopyTable(source.watchedHosts, watched);
    std::vector<ApplicationEntry> applications;
    for (const ApplicationEntry& application : source.applications.Read())
        applications.push_back(CopyOf(application));
    std::map<i32, AdminAccount> accounts;
    if (!source.watchedHosts.IsEmpty())
        for (const auto& [index, account] : source.accounts.Read())
            accounts.emplace(static_cast<i32>(accounts.size()), account);

    target.pluginStates.ReplaceWith(plugins);
    target.applications.Write(std::move(applications));
    target.trustedHosts.ReplaceWith(trusted);
    target.distrustedHosts.ReplaceWith(distrusted);
    target.watchedHosts.ReplaceWith(watched);
    target.accounts.Write(std::move(accounts));
}

}  // namespace vardel

// Writes the user's settings from a description on standard input, or reads them and prints them as JSON. For
// tests that move settings between systems.
//
//   settings_tool write    lines "NAME VALUE" for numbers and texts, "SavedViewWindowDimension L T R B",
//                          and "LIST HEX" for a record, byte for byte
//   settings_tool read     texts as strings (bytes from 0x80 as \u00XX), records as hexadecimal: hash tables
//                          sorted, applications and accounts in their order
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "settings/SettingsTable.h"

namespace vardel {
namespace {

// ---- records ----

std::string Hex(const void* bytes, std::size_t size) {
    std::string text;
    char digits[3];
    for (std::size_t i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char*>(bytes)[i]);
        text += digits;
    }
    return text;
}

template <class Record>
Record FromHex(const std::string& text) {
    Record record{};
    for (std::size_t i = 0; i < sizeof record && 2 * i + 1 < text.size(); ++i)
        reinterpret_cast<unsigned char*>(&record)[i] =
            static_cast<unsigned char>(std::stoul(text.substr(2 * i, 2), nullptr, 16));
    return record;
}

template <class Record, Ownership ownership>
void AddRecord(SharedMap<GuardedRecord<Record>, ownership>& table, const Record& record, const char* key) {
    table.Insert(key, std::make_unique<GuardedRecord<Record>>(record));
}

bool TakeRecord(VardelSettings& settings, const std::string& list, const std::string& hex) {
    if (list == "Plugins") {
        const auto record = FromHex<PluginEntry>(hex);
        AddRecord(settings.pluginStates, record, record.name);
    } else if (list == "Applications") {
        settings.applications.Update([&](auto& all) { all.push_back(FromHex<ApplicationEntry>(hex)); });
    } else if (list == "TrustedHosts" || list == "DistrustedHosts") {
        const auto record = FromHex<ListedHost>(hex);
        AddRecord(list == "TrustedHosts" ? settings.trustedHosts : settings.distrustedHosts, record,
                  record.ipAddress);
    } else if (list == "WatchedHosts") {
        const auto record = FromHex<WatchedHost>(hex);
        AddRecord(settings.watchedHosts, record, record.ipAddress);
    } else if (list == "AdminAccounts") {
        settings.accounts.Update(
            [&](auto& all) { all.emplace(static_cast<i32>(all.size()), FromHex<AdminAccount>(hex)); });
    } else {
        return false;
    }
    return true;
}

// ---- single values ----

struct Setter {
    VardelSettings& settings;
    const std::string& value;
    template <class T>
    void operator()(Shared<T> VardelSettings::*field) {
        settings.*field = static_cast<T>(std::stoll(value));
    }
    void operator()(TcString VardelSettings::*field) { settings.*field = value.c_str(); }
    void operator()(GuardedRecord<ViewRectangle> VardelSettings::*field) {
        ViewRectangle rectangle{};
        std::istringstream(value) >> rectangle.left >> rectangle.top >> rectangle.right >> rectangle.bottom;
        (settings.*field).Write(rectangle);
    }
};

std::string JsonText(const char* text) {
    std::string json = "\"";
    for (; *text; ++text) {
        const unsigned char byte = static_cast<unsigned char>(*text);
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(byte));
        if (byte < 0x20 || byte >= 0x7f || byte == '"' || byte == '\\')
            json += escaped;
        else
            json += *text;
    }
    return json + "\"";
}

struct Printer {
    const VardelSettings& settings;
    template <class T>
    std::string operator()(Shared<T> VardelSettings::*field) {
        return std::to_string((settings.*field).Get());
    }
    std::string operator()(TcString VardelSettings::*field) {
        return JsonText(TcString(settings.*field).GetContent());
    }
    std::string operator()(GuardedRecord<ViewRectangle> VardelSettings::*field) {
        const ViewRectangle r = (settings.*field).Read();
        return "[" + std::to_string(r.left) + ", " + std::to_string(r.top) + ", " + std::to_string(r.right) +
               ", " + std::to_string(r.bottom) + "]";
    }
};

// ---- lists ----

std::string JsonList(const std::vector<std::string>& hexes) {
    std::string json;
    for (const std::string& hex : hexes) json += (json.empty() ? "\"" : ", \"") + hex + "\"";
    return "[" + json + "]";
}

template <class Record, Ownership ownership>
std::string JsonTable(const SharedMap<GuardedRecord<Record>, ownership>& table) {
    std::vector<std::string> hexes;
    table.ForEach([&](const TcString&, const GuardedRecord<Record>* guarded) {
        const Record record = guarded->Read();
        hexes.push_back(Hex(&record, sizeof record));
    });
    std::sort(hexes.begin(), hexes.end());
    return JsonList(hexes);
}

// ---- the two commands ----

int Write() {
    VardelSettings settings;
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t blank = line.find(' ');
        const std::string name = line.substr(0, blank);
        const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
        const auto row = std::find_if(std::begin(kSettingRows), std::end(kSettingRows),
                                      [&](const SettingRow& each) { return each.name == name; });
        if (row != std::end(kSettingRows)) {
            std::visit(Setter{settings, value}, row->field);
        } else if (!TakeRecord(settings, name, value)) {
            std::cerr << "no such value or list: " << name << "\n";
            return 1;
        }
    }
    const bool written = settings.WriteSettings() && settings.WriteLastUpdateTime() &&
                         settings.WriteMACListVersion(static_cast<u32>(settings.MACListVersion.Get()));
    return written ? 0 : 1;
}

int Read() {
    VardelSettings settings;
    settings.ReadSettings();
    std::cout << "{\n";
    for (const SettingRow& row : kSettingRows)
        std::cout << "  \"" << row.name << "\": " << std::visit(Printer{settings}, row.field) << ",\n";
    std::vector<std::string> applications, accounts;
    for (const ApplicationEntry& entry : settings.applications.Read())
        applications.push_back(Hex(&entry, sizeof entry));
    for (const auto& [index, account] : settings.accounts.Read())
        accounts.push_back(Hex(&account, sizeof account));
    std::cout << "  \"Plugins\": " << JsonTable(settings.pluginStates) << ",\n"
              << "  \"Applications\": " << JsonList(applications) << ",\n"
              << "  \"TrustedHosts\": " << JsonTable(settings.trustedHosts) << ",\n"
              << "  \"DistrustedHosts\": " << JsonTable(settings.distrustedHosts) << ",\n"
              << "  \"WatchedHosts\": " << JsonTable(settings.watchedHosts) << ",\n"
              << "  \"AdminAccounts\": " << JsonList(accounts) << "\n}\n";
    return std::cout ? 0 : 1;
}

}  // namespace
}  // namespace vardel

int main(int count, char** words) {
    const std::string command = count == 2 ? words[1] : "";
    if (command == "write") return vardel::Write();
    if (command == "read") return vardel::Read();
    std::cerr << "usage: settings_tool write|read\n";
    return 2;
}

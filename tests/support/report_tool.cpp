// Writes a report of a table that is described on standard input. For tests that look at finished reports.
//
//   report_tool TEMPLATE FOLDER    lines of fields parted by tabs, each field in hexadecimal but the first:
//                                  "host" TRUST IP MAC NAME OS VENDOR, "watched" STATE IP NAME,
//                                  "share" COMPUTER SHARE USER
//
// TRUST is the number as two digits of hexadecimal, STATE 31 for online. FOLDER ends in a separator.
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "frame/ReportGenerator.h"

namespace vardel {
namespace {

std::string FromHex(const std::string& digits) {
    std::string text;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        text += static_cast<char>(std::stoul(digits.substr(at, 2), nullptr, 16));
    return text;
}

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream rest(line);
    for (std::string field; std::getline(rest, field, '\t');)
        fields.push_back(fields.empty() ? field : FromHex(field));
    fields.resize(7);
    return fields;
}

void AddHost(VardelData& data, const std::vector<std::string>& fields) {
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->trustState = static_cast<TrustState>(fields[1].empty() ? 0 : static_cast<unsigned char>(fields[1][0]));
    host->ip = fields[2].c_str();
    host->mac = fields[3].c_str();
    host->hostName = fields[4].c_str();
    host->os = fields[5].c_str();
    host->vendor = fields[6].c_str();
    host->vendorUnknown = fields[6].empty();
    data.arpMap.Insert(host->ip, host);
}

void AddWatched(VardelData& data, const std::vector<std::string>& fields) {
    WatchedHost watched{};
    watched.online = fields[1] == "1";
    fields[2].copy(watched.ipAddress, sizeof watched.ipAddress - 1);
    fields[3].copy(watched.hostName, sizeof watched.hostName - 1);
    data.settings.watchedHosts.Insert(watched.ipAddress, std::make_unique<GuardedRecord<WatchedHost>>(watched));
}

void AddAccess(VardelData& data, const std::vector<std::string>& fields) {
    auto access = std::make_unique<RemoteAccess>();
    access->computer = fields[1].c_str();
    access->share = fields[2].c_str();
    access->user = fields[3].c_str();
    if (data.remoteAccesses.Insert(static_cast<i32>(data.remoteAccesses.Count()) + 1, access.get()))
        access.release();
}

int Run(const char* templatePath, const char* folder) {
    VardelData data(SystemServices());
    for (std::string line; std::getline(std::cin, line);) {
        const std::vector<std::string> fields = Fields(line);
        if (fields[0] == "host")
            AddHost(data, fields);
        else if (fields[0] == "watched")
            AddWatched(data, fields);
        else if (fields[0] == "share")
            AddAccess(data, fields);
        else
            return 2;
    }
    data.settings.ReportTemplate = templatePath;
    data.settings.ReportPath = folder;
    ReportGenerator(data);
    return 0;
}

}  // namespace
}  // namespace vardel

int main(int count, char** words) {
    if (count != 3) {
        std::cerr << "usage: report_tool TEMPLATE FOLDER < table\n";
        return 2;
    }
    return vardel::Run(words[1], words[2]);
}

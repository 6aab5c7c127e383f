// Any template over any table: it must come through, and give what the literal steps give.
//
// Records are parted by 0x1e, their fields by 0x1f. The first record is the template; of the others the first field
// tells the kind: "h" (trust, name, MAC, OS, vendor), "w" (state, name), "s" (computer, share, user).
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "frame/ReportGenerator.h"
#include "tests/unit/support/LiteralReport.h"
#include "tests/unit/support/ReportLan.h"

using namespace vardel;

namespace {

constexpr std::size_t kRecords = 24;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts{""};
    for (const char character : text) {
        if (character == separator) parts.emplace_back();
        else parts.back() += character;
    }
    return parts;
}

void AddRecord(std::vector<std::string> fields, test::ReportLan& lan, test::LiteralReport& twin) {
    fields.resize(6);
    if (fields[0] == "h") {
        const test::LiteralReportHost host{.name = fields[2],
                                           .ip = "10.0.0." + std::to_string(twin.hosts.size()),
                                           .mac = fields[3],
                                           .os = fields[4],
                                           .vendor = fields[5],
                                           .trust = fields[1].empty() ? 0u : static_cast<u8>(fields[1][0]) % 4u,
                                           .vendorUnknown = fields[1].size() > 1};
        lan.Add({host.name, host.ip, host.mac, host.os, host.vendor, host.trust, host.vendorUnknown});
        twin.hosts.push_back(host);
    } else if (fields[0] == "w") {
        const test::LiteralWatched host{.name = fields[2].substr(0, sizeof(WatchedHost::hostName)),
                                        .ip = "10.0.1." + std::to_string(twin.watched.size()),
                                        .online = !fields[1].empty()};
        lan.Watch(host.name, host.ip, host.online);
        twin.watched.push_back(host);
    } else if (fields[0] == "s") {
        const test::LiteralAccess access{fields[1], fields[2], fields[3]};
        lan.Access(static_cast<i32>(twin.accesses.size()), access.computer, access.share, access.user);
        twin.accesses.push_back(access);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    for (char& character : input)
        if (character == '\x01' || character == '\x02') character = '.';  // the twin's own signs
    std::vector<std::string> records = Split(input, '\x1e');
    const std::string text = records[0];

    test::ReportLan lan;
    test::LiteralReport twin;
    for (std::size_t i = 1; i < records.size() && i < kRecords; ++i) {
        for (char& character : records[i])
            if (character == '\0') character = '.';
        AddRecord(Split(records[i], '\x1f'), lan, twin);
    }
    if (FormReport(text, lan.data) != twin.Form(text, true)) {
        std::fputs("the report differs from the literal steps'\n", stderr);
        std::abort();
    }
    return 0;
}

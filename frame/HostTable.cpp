#include "frame/HostTable.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/CodePage.h"

namespace vardel {

namespace {

struct Column {
    const char* heading;
    std::string HostRow::*field;
};

constexpr std::array<Column, 8> kColumns = {{
    {"IP", &HostRow::ip},
    {"MAC", &HostRow::mac},
    {"Vendor", &HostRow::vendor},
    {"Name", &HostRow::name},
    {"Device", &HostRow::device},
    {"OS", &HostRow::os},
    {"Trust", &HostRow::trust},
    {"Last seen", &HostRow::lastSeen},
}};

std::string Printable(const TcString& text) {
    const TcString own(text);
    return PrintableText({own.GetContent(), static_cast<std::size_t>(own.GetLength())}, OutputTakesUtf8());
}

// Of Latin-1 beyond ASCII: controls stand below, the hyphen isn't drawn.
constexpr unsigned char kFirstVisible = 0xA1, kSoftHyphen = 0xAD;

// Characters of a printable text, which may be in UTF-8.
std::size_t Width(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

// The address's 32 bits; a text that isn't four decimal octets sorts first.
u32 AddressNumber(const std::string& ip) {
    unsigned octets[4] = {};
    if (std::sscanf(ip.c_str(), "%3u.%3u.%3u.%3u", &octets[0], &octets[1], &octets[2], &octets[3]) != 4) return 0;
    return octets[0] << 24 | octets[1] << 16 | octets[2] << 8 | octets[3];
}

HostRow RowOf(const HostRecord& host) {
    return {.ip = Printable(host.ip),
            .mac = Printable(host.mac),
            .vendor = Printable(host.vendor),
            .name = Printable(host.hostName),
            .device = Printable(host.friendlyName),
            .os = Printable(host.os),
            .trust = TrustText(host.trustState),
            .lastSeen = Printable(host.lastSeenText)};
}

}  // namespace

std::string PrintableText(std::string_view text, bool inUtf8) {
    std::string out;
    out.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte < 0x7f) {
            out += character;
            continue;
        }
        if (inUtf8 && byte >= kFirstVisible && byte != kSoftHyphen) {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
            continue;
        }
        char escaped[5];
        std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
        out += escaped;
    }
    return out;
}

const char* TrustText(TrustState state) {
    switch (state) {
        case TrustState::Trusted: return "trusted";
        case TrustState::Distrusted: return "distrusted";
        default: return "unknown";
    }
}

std::vector<HostRow> CollectHosts(const VardelData& data) {
    std::vector<HostRow> rows;
    data.arpMap.ForEach([&](const TcString&, const HostRecord* host) {
        if (host) rows.push_back(RowOf(*host));
    });
    std::sort(rows.begin(), rows.end(), [](const HostRow& a, const HostRow& b) {
        const u32 left = AddressNumber(a.ip), right = AddressNumber(b.ip);
        return left != right ? left < right : a.ip < b.ip;
    });
    return rows;
}

std::string FormatHostTable(const std::vector<HostRow>& rows) {
    std::array<std::size_t, kColumns.size()> widths{};
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        widths[i] = std::string_view(kColumns[i].heading).size();
        for (const HostRow& row : rows) widths[i] = std::max(widths[i], Width(row.*kColumns[i].field));
    }
    std::string out;
    const auto addLine = [&](auto&& cell) {
        std::string line;
        for (std::size_t i = 0; i < kColumns.size(); ++i) {
            const std::string text = cell(kColumns[i]);
            line += text + std::string(widths[i] - Width(text) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
    };
    addLine([](const Column& column) { return std::string(column.heading); });
    for (const HostRow& row : rows) addLine([&](const Column& column) { return row.*column.field; });
    return out;
}

}  // namespace vardel

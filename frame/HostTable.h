// The host table and other things learned from the network, as lines of plain text for a terminal or a log.
//
// Functions of values. Whatever came from the network is made printable first: a frame must not be able to steer
// the terminal that shows it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "capture/VardelData.h"

namespace vardel {

// Bytes other than the visible ASCII characters and the blank become "\xNN". For who reads UTF-8, so do all but the
// visible characters of Latin-1: no letter steers a terminal, and the texts of other languages need them.
std::string PrintableText(std::string_view text, bool inUtf8 = false);

// One row of the host table, already printable.
struct HostRow {
    std::string ip, mac, vendor, name, device, os, trust, lastSeen;
};

// "unknown", "trusted" or "distrusted".
const char* TrustText(TrustState state);

// All hosts of the table in ascending order of their addresses. Any thread.
std::vector<HostRow> CollectHosts(const VardelData& data);

// A heading and one line a row, columns aligned, each line ended by "\n" without blanks before it.
std::string FormatHostTable(const std::vector<HostRow>& rows);

}  // namespace vardel

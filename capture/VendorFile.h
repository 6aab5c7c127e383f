// The vendor list `ethercodes.dat`: one line a card maker, "key TAB vendor name [TAB further columns]".
//
// The key is the first three octets of a MAC address in hexadecimal, joined by ":"; octets written with one
// digit are padded. The parser is a function of the bytes and knows neither thread nor guard; the worker that
// reads the file into the shared table is ReadVendorThread.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "capture/SharedRecords.h"
#include "platform/Folders.h"

namespace vardel {

constexpr std::size_t kLongestVendorText = 254;  // characters; the rest of a longer field is cut off

// Enters every complete line of `bytes` into `vendors`; the first entry of a key wins. The parse ends at a
// zero byte, at the end of the bytes (a last line without LF is not stored), or where `goes`, asked before
// each line, is false.
void ParseVendorFile(std::string_view bytes, VendorMap& vendors, const std::function<bool()>& goes);

// Pads the one-digit octets of a key as it stands in the file: 0:0:c becomes 00:00:0c.
void NormaliseVendorKey(TcString& key);

// The places of the file in the order of the search: the user's own copy, then the one beside the program. A
// place that the system can't name is left out.
std::vector<std::string> VendorFilePaths(Folders& folders);

// Reads the first of `paths` that can be opened whole, in text mode. Empty when none can be, when the file is
// empty, or when it could not be read.
std::string ReadVendorFile(const std::vector<std::string>& paths);

}  // namespace vardel

// Registry contents as lines of text that a test can compare, and the samples of tests/data/settings.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/RegistryTree.h"

namespace vardel::test {

inline std::string HexOf(u32 value) {
    std::string text;
    do {
        text.insert(text.begin(), "0123456789abcdef"[value & 0xf]);
        value >>= 4;
    } while (value != 0);
    return text;
}

// Bytes that aren't printable ASCII as <hex>.
inline std::string Printable(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        if (c >= 0x20 && c < 0x7f)
            text += c;
        else
            text.append(1, '<').append(HexOf(static_cast<u8>(c))).append(1, '>');
    }
    return text;
}

// "TYPE NAME=BYTES", in the order of making.
inline std::vector<std::string> Dump(const RegistryKey& key) {
    std::vector<std::string> lines;
    for (const RegistryValue* value : key.Values())
        lines.push_back(HexOf(static_cast<u32>(value->type)) + " " +
                        (value->name.empty() ? "@" : Printable(value->name)) + "=" + Printable(value->data));
    return lines;
}

// All keys and values, sorted.
inline std::vector<std::string> Dump(const RegistryTree& tree) {
    std::vector<std::string> lines;
    for (const auto& [folded, key] : tree.Keys()) {
        lines.push_back("[" + key->path + "]");
        for (const std::string& line : Dump(*key)) lines.push_back("[" + key->path + "] " + line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// UTF-16LE of a UTF-8 text of the basic plane.
inline std::string Utf16(const std::string& utf8) {
    std::string bytes;
    for (std::size_t at = 0; at < utf8.size();) {
        const u8 lead = static_cast<u8>(utf8[at++]);
        u32 point = lead < 0x80 ? lead : lead < 0xe0 ? lead & 0x1f : lead & 0x0f;
        for (int more = lead < 0x80 ? 0 : lead < 0xe0 ? 1 : 2; more > 0; --more)
            point = point << 6 | (static_cast<u8>(utf8[at++]) & 0x3f);
        bytes += static_cast<char>(point & 0xff);
        bytes += static_cast<char>(point >> 8);
    }
    return bytes;
}

}  // namespace vardel::test

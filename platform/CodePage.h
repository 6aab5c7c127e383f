// The 8-bit code page in which the program's texts stand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vardel {

// Lower case of `length` bytes, in place. Windows: by the system code page. Linux: by Windows-1252, whose
// letters of 0xC0 and up are those of Latin-1.
void LowerInCodePage(char* text, std::size_t length);

// True where whoever reads the standard output takes UTF-8. Linux: the locale of the environment says so. Windows: never,
// since the output belongs to whoever handed it over.
bool OutputTakesUtf8();

// How many of the text's first `limit` bytes are whole characters: where a text has to be cut to fit. By the same
// code page.
std::size_t WholeCharacters(std::string_view text, std::size_t limit);

// The same for a code page in which `isLead(byte)` begins a character of two bytes.
template <class IsLead>
std::size_t WholeCharactersOf(std::string_view text, std::size_t limit, IsLead isLead) {
    std::size_t length = 0;
    for (;;) {
        if (length >= text.size()) return length;
        const std::size_t next = length + (isLead(static_cast<unsigned char>(text[length])) ? 2 : 1);
        if (std::min(next, text.size()) > limit) return length;
        length = std::min(next, text.size());
    }
}

// And for UTF-8.
inline std::size_t WholeCharactersOfUtf8(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return text.size();
    constexpr std::size_t kLongest = 4;
    std::size_t length = limit;
    const auto continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
    while (length > 0 && limit - length < kLongest && continues(length)) --length;
    return continues(length) ? limit : length;  // no such text: cut where the room ends
}

}  // namespace vardel

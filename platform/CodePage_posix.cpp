#include "platform/CodePage.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace vardel {

namespace {

constexpr unsigned char Lower(unsigned char c) {
    constexpr unsigned char kMultiplicationSign = 0xD7;
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + 0x20);
    if (c >= 0xC0 && c <= 0xDE && c != kMultiplicationSign) return static_cast<unsigned char>(c + 0x20);
    if (c == 0x8A || c == 0x8C || c == 0x8E)
        return static_cast<unsigned char>(c + 0x10);  // S and Z caron, OE
    if (c == 0x9F) return 0xFF;                       // Y diaeresis
    return c;
}

}  // namespace

void LowerInCodePage(char* text, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>(Lower(static_cast<unsigned char>(text[i])));
}

// The first of these that is set is the one that counts (POSIX, 8.2 Internationalization Variables). What stands behind
// the dot is the character set, which some write without the hyphen.
bool OutputTakesUtf8() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* locale = std::getenv(name);
        if (!locale || !*locale) continue;
        const char* set = std::strchr(locale, '.');
        return set && (strncasecmp(set, ".utf-8", 6) == 0 || strncasecmp(set, ".utf8", 5) == 0);
    }
    return false;
}

std::size_t WholeCharacters(std::string_view text, std::size_t limit) { return std::min(text.size(), limit); }

}  // namespace vardel

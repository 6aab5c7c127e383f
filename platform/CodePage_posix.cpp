#include "platform/CodePage.h"

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

}  // namespace vardel

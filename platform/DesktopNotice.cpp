#include "platform/DesktopNotice.h"

#include "platform/Types.h"

namespace vardel {

namespace {

// Windows-1252 from 0x80 to 0x9f (the Unicode consortium's table CP1252.TXT); 0 where it has no character.
constexpr u16 kUpperControls[32] = {0x20ac, 0,      0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,
                                    0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017d, 0,
                                    0,      0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                    0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0,      0x017e, 0x0178};

void AppendUtf8(std::string& out, u32 code) {
    if (code < 0x800) {
        out += static_cast<char>(0xc0 | code >> 6);
    } else {
        out += static_cast<char>(0xe0 | code >> 12);
        out += static_cast<char>(0x80 | (code >> 6 & 0x3f));
    }
    out += static_cast<char>(0x80 | (code & 0x3f));
}

void AppendUpper(std::string& out, u8 byte) {
    const u32 code = byte < 0xa0 ? kUpperControls[byte - 0x80] : byte;
    if (code) AppendUtf8(out, code);
    else out += '?';
}

}  // namespace

std::string NoticeBody(std::string_view text) {
    std::string out;
    for (const char character : text.substr(0, kLongestNotice)) {
        const auto byte = static_cast<u8>(character);
        if (byte >= 0x80) AppendUpper(out, byte);
        else if (byte == '&') out += "&amp;";
        else if (byte == '<') out += "&lt;";
        else if (byte == '>') out += "&gt;";
        else if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7f) out += '?';
        else out += character;
    }
    if (text.size() > kLongestNotice) out += "...";
    return out;
}

}  // namespace vardel

#include "platform/Utf16.h"

#include "platform/Types.h"

namespace vardel {

namespace {

u32 UnitAt(std::string_view bytes, std::size_t at) {
    return static_cast<u32>(static_cast<u8>(bytes[at])) | static_cast<u32>(static_cast<u8>(bytes[at + 1]))
                                                              << 8;
}

void AppendUtf8(std::string& text, u32 point) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | ((point >> shift) & 0x3f)); };
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xc0 | point >> 6);
        tail(0);
    } else if (point < 0x10000) {
        text += static_cast<char>(0xe0 | point >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xf0 | point >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace

std::string Utf8FromUtf16Le(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; bytes.size() - at >= 2; at += 2) {
        u32 point = UnitAt(bytes, at);
        if (point >= 0xd800 && point < 0xe000) {
            const bool leads = point < 0xdc00 && bytes.size() - at >= 4;
            const u32 second = leads ? UnitAt(bytes, at + 2) : 0;
            if (second >= 0xdc00 && second < 0xe000) {
                point = 0x10000 + ((point - 0xd800) << 10) + (second - 0xdc00);
                at += 2;
            } else {
                point = 0xfffd;
            }
        }
        AppendUtf8(text, point);
    }
    return text;
}

}  // namespace vardel

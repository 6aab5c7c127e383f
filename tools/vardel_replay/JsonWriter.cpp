#include "tools/vardel_replay/JsonWriter.h"

#include <cstdio>

namespace vardel::replay {

void JsonWriter::Separate() {
    if (!first_) document_ += breakLine_ ? "," : ", ";
    if (breakLine_) document_ += '\n';
    first_ = false;
    breakLine_ = false;
}

void JsonWriter::Quote(std::string_view text) {
    document_ += '"';
    for (const char c : text) {
        const u8 byte = static_cast<u8>(c);
        if (byte == '"' || byte == '\\') {
            document_ += '\\';
            document_ += c;
        } else if (byte < 0x20 || byte >= 0x7f) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            document_ += escape;
        } else {
            document_ += c;
        }
    }
    document_ += '"';
}

void JsonWriter::Name(std::string_view name) {
    Separate();
    Quote(name);
    document_ += ": ";
    first_ = true;
}

void JsonWriter::Open(char bracket) {
    Separate();
    document_ += bracket;
    first_ = true;
}

void JsonWriter::Close(char bracket) {
    if (breakLine_) document_ += '\n';
    breakLine_ = false;
    document_ += bracket;
    first_ = false;
}

void JsonWriter::Text(std::string_view text) {
    Separate();
    Quote(text);
}

void JsonWriter::Number(i64 number) {
    Separate();
    document_ += std::to_string(number);
}

void JsonWriter::Seconds(double seconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9f", seconds);
    Separate();
    document_ += text;
}

}  // namespace vardel::replay

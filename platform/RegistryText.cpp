#include "platform/RegistryText.h"

#include "platform/TextCursor.h"
#include "platform/Utf16.h"

namespace vardel {

namespace {

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";

bool IsTextType(ValueType type) {
    return type == ValueType::Text || type == ValueType::ExpandText || type == ValueType::MultiText;
}

// Appends the text behind an opening quote, without its escapes. False when the closing quote is missing.
bool TakeQuoted(TextCursor& cursor, std::string& text) {
    while (!cursor.AtEnd()) {
        const char c = cursor.Peek();
        cursor.Skip(1);
        if (c == '"') return true;
        if (c != '\\' || cursor.AtEnd()) {
            text += c;
            continue;
        }
        const char escaped = cursor.Peek();
        cursor.Skip(1);
        switch (escaped) {
            case '\\':
            case '"':
                text += escaped;
                break;
            // Not Microsoft's, but other registry editors write these.
            case 'n':
                text += '\n';
                break;
            case 'r':
                text += '\r';
                break;
            case '0':
                text += '\0';
                break;
            default:
                text += {'\\', escaped};  // a path typed by hand
        }
    }
    return false;
}

class Parser {
  public:
    Parser(std::string_view text, RegistryText& result) : reader_(text), result_(result) {}

    void Run() {
        TakeHeader();
        for (Line line; reader_.Next(line);) TakeLine(line);
    }
    void Damaged() {
        if (result_.damagedLine == 0) result_.damagedLine = reader_.Number() > 0 ? reader_.Number() : 1;
    }

  private:
    void TakeHeader() {
        const LineReader before = reader_;
        Line line;
        const bool any = reader_.Next(line);
        while (line.text.ends_with(' ')) line.text.remove_suffix(1);
        unicodeTexts_ = line.text == kHeader5;
        if (unicodeTexts_ || line.text == kHeader4) return;
        Damaged();
        if (any) reader_ = before;  // what follows may be whole all the same
    }

    void TakeLine(const Line& line) {
        TextCursor cursor(line.text);
        cursor.SkipBlanks();
        switch (cursor.Peek()) {
            case '[':
                TakeKey(cursor.Rest());
                return;
            case '"':
            case '@':
                if (key_) {
                    if (!TakeValue(cursor, line)) Damaged();
                } else if (!ignoreValues_) {
                    Damaged();
                }
                return;
            default:
                if (!cursor.TakesEnd()) Damaged();
        }
    }

    void TakeKey(std::string_view text) {
        key_ = nullptr;
        ignoreValues_ = false;
        const std::size_t end = text.rfind(']');
        if (end == std::string_view::npos || !TextCursor(text.substr(end + 1)).TakesEnd()) return Damaged();
        std::string_view path = text.substr(1, end - 1);
        const bool deletes = path.starts_with('-');
        if (deletes) path.remove_prefix(1);
        while (path.ends_with('\\')) path.remove_suffix(1);
        if (!path.starts_with("HKEY_") || !RegistryTree::IsValidPath(path)) return Damaged();
        if (deletes) {
            result_.tree.Erase(path);
            ignoreValues_ = true;
        } else {
            key_ = result_.tree.Make(path).get();
        }
    }

    bool TakeValue(TextCursor& cursor, const Line& line) {
        std::string name;
        if (!cursor.Take('@')) {
            cursor.Skip(1);
            if (!TakeQuoted(cursor, name)) return false;
        }
        cursor.SkipBlanks();
        if (!cursor.Take('=')) return false;
        cursor.SkipBlanks();
        if (cursor.Take('-')) {
            if (!cursor.TakesEnd()) return false;
            key_->Erase(name);
            return true;
        }
        if (cursor.Take('"')) return TakeText(cursor, line, name);
        if (cursor.TakeWord("dword:")) return TakeDword(cursor, line, name);
        if (cursor.TakeWord("hex")) return TakeBytes(cursor, line, name);
        return false;
    }

    // A text may hold line ends. What follows is a part of it only while it doesn't look like a line of its
    // own, so that one lost quote doesn't swallow the file.
    bool TakeText(TextCursor& cursor, const Line& firstLine, const std::string& name) {
        const LineReader before = reader_;
        std::string text;
        for (Line line = firstLine; !TakeQuoted(cursor, text);) {
            text += line.ending;
            if (!reader_.Next(line) || StandsForItself(line.text)) {
                reader_ = before;
                return false;
            }
            cursor = TextCursor(line.text);
        }
        if (!cursor.TakesEnd()) return false;
        text += '\0';
        key_->Set(name, ValueType::Text, std::move(text));
        return true;
    }

    static bool StandsForItself(std::string_view line) {
        return line.starts_with('[') || line.starts_with("@=") ||
               (line.starts_with('"') && !TextCursor(line.substr(1)).TakesEnd());
    }

    bool TakeDword(TextCursor& cursor, const Line& line, const std::string& name) {
        u32 value;
        const int digits = cursor.TakeHex(8, value);
        const bool torn = !line.ended && digits < 8;
        if (digits == 0 || torn || !cursor.TakesEnd()) return false;
        std::string data;
        for (int shift = 0; shift < 32; shift += 8) data += static_cast<char>(value >> shift & 0xff);
        key_->Set(name, ValueType::Dword, std::move(data));
        return true;
    }

    bool TakeBytes(TextCursor& cursor, const Line& firstLine, const std::string& name) {
        ValueType type = ValueType::Binary;
        if (cursor.Take('(')) {
            u32 number;
            if (cursor.TakeHex(8, number) == 0 || !cursor.Take(')')) return false;
            type = static_cast<ValueType>(number);
        }
        if (!cursor.Take(':')) return false;
        std::string data;
        Line line = firstLine;
        while (TakeByteRow(cursor, data)) {
            const LineReader before = reader_;
            if (!reader_.Next(line)) return false;
            cursor = TextCursor(line.text);
            cursor.SkipBlanks();
            if (HexDigit(cursor.Peek()) < 0) {
                reader_ = before;  // a line of its own: the value is torn here
                return false;
            }
        }
        // Only a line end tells that no byte is missing.
        if (!line.ended || !rowIsWhole_) return false;
        if (unicodeTexts_ && IsTextType(type)) data = Utf8FromUtf16Le(data);
        key_->Set(name, type, std::move(data));
        return true;
    }

    // One line of bytes. True when it goes on in the next line; `rowIsWhole_` tells an end as it should be.
    bool TakeByteRow(TextCursor& cursor, std::string& data) {
        rowIsWhole_ = false;
        cursor.SkipBlanks();
        bool commaBefore = false;
        for (u32 value; cursor.TakeHex(2, value) > 0;) {
            data += static_cast<char>(value);
            cursor.SkipBlanks();
            commaBefore = cursor.Take(',');
            cursor.SkipBlanks();
            if (!commaBefore) break;
        }
        if (cursor.Take('\\')) return cursor.TakesEnd();
        rowIsWhole_ = !commaBefore && cursor.TakesEnd();
        return false;
    }

    LineReader reader_;
    RegistryText& result_;
    RegistryKey* key_ = nullptr;
    bool ignoreValues_ = false;  // of a key that was deleted
    bool unicodeTexts_ = false;
    bool rowIsWhole_ = false;
};

// ---- writing ----

void AppendHex(std::string& text, u32 value, int digits) {
    while (digits-- > 0) text += "0123456789abcdef"[value >> (4 * digits) & 0xf];
}

void AppendQuoted(std::string& text, std::string_view content) {
    text += '"';
    for (const char c : content) {
        switch (c) {
            case '\\':
            case '"':
                text += {'\\', c};
                break;
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            case '\0':
                text += "\\0";
                break;
            default:
                text += c;
        }
    }
    text += '"';
}

// Texts that every registry editor reads back from quotes as they are.
bool IsPlainText(const RegistryValue& value) {
    if (value.type != ValueType::Text || value.data.empty() || value.data.back() != 0) return false;
    for (std::size_t i = 0; i + 1 < value.data.size(); ++i)
        if (static_cast<u8>(value.data[i]) < 0x20) return false;
    return true;
}

void AppendBytes(std::string& text, const RegistryValue& value) {
    constexpr std::size_t kBytesPerRow = 25;
    text += "hex";
    if (value.type != ValueType::Binary) {
        const u32 number = static_cast<u32>(value.type);
        int digits = 1;
        while (digits < 8 && number >> (4 * digits) != 0) ++digits;
        text += '(';
        AppendHex(text, number, digits);
        text += ')';
    }
    text += ':';
    for (std::size_t i = 0; i < value.data.size(); ++i) {
        if (i != 0) text += i % kBytesPerRow == 0 ? ",\\\r\n  " : ",";
        AppendHex(text, static_cast<u8>(value.data[i]), 2);
    }
}

void AppendValue(std::string& text, const RegistryValue& value) {
    if (value.name.empty())
        text += '@';
    else
        AppendQuoted(text, value.name);
    text += '=';
    if (value.type == ValueType::Dword && value.data.size() == 4) {
        text += "dword:";
        for (int i = 3; i >= 0; --i)
            AppendHex(text, static_cast<u8>(value.data[static_cast<std::size_t>(i)]), 2);
    } else if (IsPlainText(value)) {
        AppendQuoted(text, std::string_view(value.data).substr(0, value.data.size() - 1));
    } else {
        AppendBytes(text, value);
    }
    text += "\r\n";
}

}  // namespace

RegistryText ParseRegistryText(std::string_view bytes) {
    RegistryText result;
    std::string decoded;
    bool tornUnit = false;
    const bool marked = bytes.starts_with("\xff\xfe");
    if (marked || (bytes.size() >= 2 && bytes[0] != 0 && bytes[1] == 0)) {
        if (marked) bytes.remove_prefix(2);
        tornUnit = bytes.size() % 2 != 0;
        decoded = Utf8FromUtf16Le(bytes);
        bytes = decoded;
    }
    if (bytes.starts_with("\xef\xbb\xbf")) bytes.remove_prefix(3);
    Parser parser(bytes, result);
    parser.Run();
    if (tornUnit) parser.Damaged();
    return result;
}

std::string FormatRegistryText(const RegistryTree& tree) {
    std::string text(kHeader4);
    text += "\r\n";
    for (const auto& [folded, key] : tree.Keys()) {
        text += "\r\n[" + key->path + "]\r\n";
        for (const RegistryValue* value : key->Values()) AppendValue(text, *value);
    }
    return text;
}

}  // namespace vardel

// Careful steps through a text that may hold anything: character by character, line by line, never past its
// end.
//
// Both borrow the text, which must outlive them, and are kept and gone back to by copying.
#pragma once

#include <string_view>

#include "platform/Types.h"

namespace vardel {

// -1 for anything but a hexadecimal digit.
constexpr int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

class TextCursor {
  public:
    explicit TextCursor(std::string_view text) : rest_(text) {}
    bool AtEnd() const { return rest_.empty(); }
    char Peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    std::string_view Rest() const { return rest_; }
    void Skip(std::size_t count) { rest_.remove_prefix(count < rest_.size() ? count : rest_.size()); }
    void SkipBlanks() {
        while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t')) rest_.remove_prefix(1);
    }
    bool Take(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    // Letters are taken in either case; `word` is lower case.
    bool TakeWord(std::string_view word) {
        if (rest_.size() < word.size()) return false;
        for (std::size_t i = 0; i < word.size(); ++i) {
            const char c = rest_[i];
            if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != word[i]) return false;
        }
        rest_.remove_prefix(word.size());
        return true;
    }
    // Up to `most` digits; gives how many.
    int TakeHex(int most, u32& value) {
        value = 0;
        int count = 0;
        for (; count < most && HexDigit(Peek()) >= 0; ++count) {
            value = value << 4 | static_cast<u32>(HexDigit(rest_.front()));
            rest_.remove_prefix(1);
        }
        return count;
    }
    // Nothing but blanks and a comment is left.
    bool TakesEnd() {
        SkipBlanks();
        return AtEnd() || Peek() == ';';
    }

  private:
    std::string_view rest_;
};

struct Line {
    std::string_view text;    // without its end
    std::string_view ending;  // CR LF or LF; empty where the file ends without
    bool ended = false;
};

// Lines of a text, with a place that can be kept and gone back to by copying.
class LineReader {
  public:
    explicit LineReader(std::string_view text) : rest_(text) {}
    bool Next(Line& line) {
        if (rest_.empty()) return false;
        const std::size_t end = rest_.find('\n');
        line.ended = end != std::string_view::npos;
        std::size_t length = line.ended ? end : rest_.size();
        const std::size_t whole = line.ended ? end + 1 : length;
        if (length > 0 && rest_[length - 1] == '\r') --length;
        line.text = rest_.substr(0, length);
        line.ending = rest_.substr(length, whole - length);
        rest_.remove_prefix(whole);
        ++number_;
        return true;
    }
    u32 Number() const { return number_; }

  private:
    std::string_view rest_;
    u32 number_ = 0;
};

}  // namespace vardel

// Taking the blanks off both ends of a text that isn't owned: as TcString::Trim does.
#pragma once

#include <string_view>

namespace vardel {

inline std::string_view TrimmedText(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace vardel

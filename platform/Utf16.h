// UTF-16LE bytes as UTF-8, for registry texts that come from Windows.
#pragma once

#include <string>
#include <string_view>

namespace vardel {

// Lone surrogates become U+FFFD. A last odd byte is left out.
std::string Utf8FromUtf16Le(std::string_view bytes);

}  // namespace vardel

// Splitting a text into arguments by the rules of Windows' own C runtime, on every system.
//
// Source of the rules: Microsoft C++ documentation, "Parsing C command-line arguments".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vardel {

// Blanks and tabs part the arguments, except between quotes. A quote may begin and end within an argument; "" alone
// is an empty one. Backslashes stand for themselves unless a quote follows them: then two stand for one, and an odd
// one out makes the quote a plain character. Between quotes a doubled quote is a plain one. A quote that is never
// closed reaches to the end.
std::vector<std::string> SplitCommandLine(std::string_view text);

}  // namespace vardel

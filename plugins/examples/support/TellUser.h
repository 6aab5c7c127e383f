// A message to the user: a box over the host's window on Windows, a line of standard error on Linux, where
// the program has no windows.
#pragma once

#include <string>

namespace vardel::examples {

// `window` is the host's, or null.
void TellUser(void* window, const char* title, const std::string& text);

}  // namespace vardel::examples

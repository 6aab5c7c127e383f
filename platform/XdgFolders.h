// The user's folders as freedesktop.org lays them out (XDG base directories). Linux only.
#pragma once

#include <string>

namespace vardel {

// The folder that `variable` names where that is an absolute path, else `belowHome` in the home folder.
// Without a trailing separator; empty when the user has no home.
std::string XdgFolder(const char* variable, const char* belowHome);

}  // namespace vardel

// Well-known places of the file system, as 8-bit texts in the system code page.
#pragma once

#include <string>

namespace vardel {

class Folders {
  public:
    virtual ~Folders() = default;

    // The user's local application data (Windows: folder id 28; Linux: $XDG_DATA_HOME, else ~/.local/share),
    // without a trailing separator. Empty when the system has none to offer.
    virtual std::string LocalApplicationData() = 0;

    // The full path of the running program. Empty on failure.
    virtual std::string ProgramPath() = 0;

    // '\\' on Windows, '/' on Linux.
    virtual char Separator() const = 0;
};

Folders& SystemFolders();

}  // namespace vardel

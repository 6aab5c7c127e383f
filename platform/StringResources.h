// User texts by numeric id, from a language module or the program itself.
//
// Windows: the module's resources. Linux: the program's own texts are a table in it; a language module is asked for its
// texts by its entry point
//
//     int GetModuleText(u32 id, char* buffer, int size)
//
// which copies the text, cut to size - 1 characters and terminated, and gives its length; 0 for an unknown id.
#pragma once

#include <string>

#include "platform/Types.h"

namespace vardel {

// A loaded module with resources; null stands for the program's own.
struct ModuleObject;
using ModuleHandle = ModuleObject*;

class StringResources {
  public:
    virtual ~StringResources() = default;

    // Copies the text, cut to size - 1 characters and terminated, to `buffer`. Gives its length; an unknown id
    // gives 0 and an empty text. `size` is at least 1.
    virtual int Load(ModuleHandle module, u32 id, char* buffer, int size) = 0;
};

StringResources& SystemStringResources();

// The name of a Windows locale's language in that language itself ("English" for 1033). Elsewhere only the program's
// own language has one. Empty when unknown.
std::string NativeLanguageName(u32 locale);

}  // namespace vardel

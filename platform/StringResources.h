// User texts by numeric id, from a language module or the program itself.
#pragma once

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

}  // namespace vardel

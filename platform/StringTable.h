// The program's own English texts as a table, for systems without resources in the program file. Generated from
// resources/strings_en.rc at build time; the same on every thread.
#pragma once

#include <span>

#include "platform/Types.h"

namespace vardel {

struct StringTableEntry {
    u32 id;
    const char* text;  // system code page (Windows-1252), zero-terminated
};

// Ordered by id, each id once.
std::span<const StringTableEntry> EnglishTexts();

}  // namespace vardel

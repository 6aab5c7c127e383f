// User texts as a table, for systems without resources in a module. Generated at build time from the module's resource
// file: the program's English ones from resources/strings_en.rc, a language module's from its own. The same on every
// thread.
#pragma once

#include <algorithm>
#include <cstring>
#include <span>

#include "platform/Types.h"

namespace vardel {

struct StringTableEntry {
    u32 id;
    const char* text;  // Windows-1252, zero-terminated
};

// Ordered by id, each id once.
std::span<const StringTableEntry> EnglishTexts();
std::span<const StringTableEntry> LanguageTexts();

// Copies the text, cut to size - 1 characters and terminated. Gives its length; an unknown id gives 0 and an empty
// text. `size` is at least 1.
inline int CopyTableText(std::span<const StringTableEntry> texts, u32 id, char* buffer, int size) {
    buffer[0] = 0;
    const auto found = std::ranges::lower_bound(texts, id, {}, &StringTableEntry::id);
    if (found == texts.end() || found->id != id) return 0;
    const int length = std::min(static_cast<int>(std::strlen(found->text)), size - 1);
    std::memcpy(buffer, found->text, static_cast<std::size_t>(length));
    buffer[length] = 0;
    return length;
}

}  // namespace vardel

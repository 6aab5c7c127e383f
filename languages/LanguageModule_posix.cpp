// A language module: its texts, and the entry points that name and give them. All is in Windows-1252, as the program's
// texts are. Language.h is that of the module's own folder; the table is made from the module's strings.rc.
#include "Language.h"
#include "platform/StringTable.h"
#include "resources/IconIds.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED vardel::u32 GetModuleLanguageInfo(char* name, int size, vardel::u32* languageId) {
    constexpr int kLength = static_cast<int>(std::size(kLanguageName)) - 1;
    if (!name || !languageId || size < 1) return 0;
    name[0] = 0;
    if (size <= kLength) return 0;
    // Up to U+00FF the letters have the same numbers in Windows-1252.
    for (int i = 0; i <= kLength; ++i) name[i] = static_cast<char>(kLanguageName[i]);
    *languageId = kLanguageId;
    return IDI_FLAG;
}

EXPORTED int GetModuleText(vardel::u32 id, char* buffer, int size) {
    return vardel::CopyTableText(vardel::LanguageTexts(), id, buffer, size);
}

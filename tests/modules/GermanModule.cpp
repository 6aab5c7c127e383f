// A language module as a translator makes it. On Windows its texts are resources (GermanTexts.rc); elsewhere the module
// is asked for them.
#include <cstdint>
#include <cstdio>
#include <cstring>

#if defined(__MINGW32__)
#define EXPORTED extern "C" __declspec(dllexport)
#else
#define EXPORTED extern "C" __attribute__((visibility("default")))
#endif

EXPORTED std::uint32_t GetModuleLanguageInfo(char* name, int size, std::uint32_t* languageId) {
    std::snprintf(name, static_cast<std::size_t>(size), "Deutsch");
    *languageId = 7;
    return 147;
}

#if !defined(__MINGW32__)
EXPORTED int GetModuleText(std::uint32_t id, char* buffer, int size) {
    if (id != 76) return 0;
    std::snprintf(buffer, static_cast<std::size_t>(size), "%s", "Neue(r) Host gefunden:");
    return static_cast<int>(std::strlen(buffer));
}
#endif

#include "platform/StringResources.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>

#include "platform/StringTable.h"

namespace vardel {

namespace {

extern "C" using GetModuleText = int(u32 id, char* buffer, int size);

constexpr u32 kEnglishLocale = 1033;

int LoadFromModule(ModuleHandle module, u32 id, char* buffer, int size) {
    const auto text = reinterpret_cast<GetModuleText*>(dlsym(module, "GetModuleText"));
    if (!text || text(id, buffer, size) <= 0) {
        buffer[0] = 0;
        return 0;
    }
    buffer[size - 1] = 0;
    return static_cast<int>(std::strlen(buffer));
}

class TableStrings : public StringResources {
  public:
    int Load(ModuleHandle module, u32 id, char* buffer, int size) override {
        buffer[0] = 0;
        if (module) return LoadFromModule(module, id, buffer, size);
        const auto texts = EnglishTexts();
        const auto found = std::ranges::lower_bound(texts, id, {}, &StringTableEntry::id);
        if (found == texts.end() || found->id != id) return 0;
        const int length = std::min(static_cast<int>(std::strlen(found->text)), size - 1);
        std::memcpy(buffer, found->text, static_cast<std::size_t>(length));
        buffer[length] = 0;
        return length;
    }
};

}  // namespace

StringResources& SystemStringResources() {
    static TableStrings strings;
    return strings;
}

std::string NativeLanguageName(u32 locale) { return locale == kEnglishLocale ? "English" : ""; }

}  // namespace vardel

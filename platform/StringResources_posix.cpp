#include "platform/StringResources.h"

#include <dlfcn.h>

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
        return module ? LoadFromModule(module, id, buffer, size) : CopyTableText(EnglishTexts(), id, buffer, size);
    }
};

}  // namespace

StringResources& SystemStringResources() {
    static TableStrings strings;
    return strings;
}

std::string NativeLanguageName(u32 locale) { return locale == kEnglishLocale ? "English" : ""; }

}  // namespace vardel

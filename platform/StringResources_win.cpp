#include "platform/StringResources.h"

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

class ModuleStrings : public StringResources {
  public:
    int Load(ModuleHandle module, u32 id, char* buffer, int size) override {
        buffer[0] = 0;
        const HINSTANCE instance = module ? reinterpret_cast<HINSTANCE>(module) : GetModuleHandleA(nullptr);
        return LoadStringA(instance, id, buffer, size);
    }
};

}  // namespace

StringResources& SystemStringResources() {
    static ModuleStrings strings;
    return strings;
}

std::string NativeLanguageName(u32 locale) {
    char name[256];
    return GetLocaleInfoA(locale, LOCALE_SNATIVELANGNAME, name, sizeof name) > 0 ? name : std::string();
}

}  // namespace vardel

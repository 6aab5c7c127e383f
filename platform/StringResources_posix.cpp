#include "platform/StringResources.h"

#include <algorithm>
#include <cstring>

#include "platform/StringTable.h"

namespace vardel {

namespace {

class TableStrings : public StringResources {
  public:
    // The program's own texts are the only ones: no module of texts can be loaded here.
    int Load(ModuleHandle module, u32 id, char* buffer, int size) override {
        buffer[0] = 0;
        if (module) return 0;
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

}  // namespace vardel

#include "platform/CodePage.h"

#include "platform/WindowsApi.h"

namespace vardel {

void LowerInCodePage(char* text, std::size_t length) {
    if (length) CharLowerBuffA(text, static_cast<DWORD>(length));
}

bool OutputTakesUtf8() { return false; }

std::size_t WholeCharacters(std::string_view text, std::size_t limit) {
    if (GetACP() == CP_UTF8) return WholeCharactersOfUtf8(text, limit);
    return WholeCharactersOf(text, limit, [](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
}

}  // namespace vardel

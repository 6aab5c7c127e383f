#include "platform/CodePage.h"

#include "platform/WindowsApi.h"

namespace vardel {

void LowerInCodePage(char* text, std::size_t length) {
    if (length) CharLowerBuffA(text, static_cast<DWORD>(length));
}

bool OutputTakesUtf8() { return false; }

}  // namespace vardel

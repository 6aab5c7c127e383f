// The 8-bit code page in which the program's texts stand.
#pragma once

#include <cstddef>

namespace vardel {

// Lower case of `length` bytes, in place. Windows: by the system code page. Linux: by Windows-1252, whose
// letters of 0xC0 and up are those of Latin-1.
void LowerInCodePage(char* text, std::size_t length);

// True where whoever reads the standard output takes UTF-8. Linux: the locale of the environment says so. Windows: never,
// since the output belongs to whoever handed it over.
bool OutputTakesUtf8();

}  // namespace vardel

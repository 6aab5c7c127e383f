// Registry text files ("REGEDIT4" and "Windows Registry Editor Version 5.00"), read and written.
//
// Functions of values; any bytes may be read. The form is the one that the Windows registry editor imports
// and exports, as Microsoft's support article 310516 describes it.
// - 8-bit files are taken byte for byte; UTF-16 files (with a byte order mark, or recognised by the NUL of
//   the first character) become UTF-8, as do the UTF-16 texts in hexadecimal that version 5.00 has.
// - Written is always REGEDIT4: 8 bits, CR LF line ends.
#pragma once

#include <string>
#include <string_view>

#include "platform/RegistryTree.h"

namespace vardel {

struct RegistryText {
    RegistryTree tree;
    // Number of the first line (from 1) that could not be understood or is torn; 0 when all is well. What
    // stands before and behind such a line is in the tree all the same.
    u32 damagedLine = 0;
};

RegistryText ParseRegistryText(std::string_view bytes);

std::string FormatRegistryText(const RegistryTree& tree);

}  // namespace vardel

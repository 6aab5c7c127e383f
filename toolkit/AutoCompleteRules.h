// Which completion the shell offers in an edit control, as the flags of its SHAutoComplete call.
#pragma once

#include "platform/Types.h"

namespace vardel {

constexpr u32 kCompleteAddresses = 0x00000006;  // SHACF_URLALL: history and most recently used
constexpr u32 kCompleteFiles = 0x00000010;      // SHACF_FILESYS_ONLY

// 0 where nothing is to be completed.
constexpr u32 AutoCompleteFlags(bool addresses, bool files) {
    return (addresses ? kCompleteAddresses : 0) | (files ? kCompleteFiles : 0);
}

}  // namespace vardel

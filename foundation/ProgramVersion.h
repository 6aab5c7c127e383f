// The version of this program, and versions as they are compared.
#pragma once

#include <compare>

#include "platform/Types.h"

namespace vardel {

struct ProgramVersion {
    i32 major = 0;
    i32 minor = 0;
    i32 revision = 0;
    i32 build = 0;
    auto operator<=>(const ProgramVersion&) const = default;
};

inline constexpr ProgramVersion kProgramVersion{0, 7, 0, 1623};
inline constexpr const char* kProgramVersionText = "0.7.0.1623";

}  // namespace vardel

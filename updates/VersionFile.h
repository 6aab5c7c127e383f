// The version file of the program on the update server: four numbers with dots between them, major, minor, revision
// and build. A function of the text, which may hold anything.
#pragma once

#include <optional>

#include "foundation/ProgramVersion.h"
#include "foundation/TcString.h"

namespace vardel {

// Nothing for a text without a dot. Wanted: a number counts only if a dot follows it, so the minor number of "0.8"
// is 0, and revision and build are taken only together. What is no number is 0.
std::optional<ProgramVersion> ParseProgramVersion(const TcString& text);

}  // namespace vardel

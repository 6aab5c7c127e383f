#include "updates/VersionFile.h"

namespace vardel {

namespace {

// Takes the number in front of the next dot off the text, the dot with it. False without a dot.
bool TakeNumber(TcString& text, i32& number) {
    const int dot = text.Find(".");
    if (dot < 0) return false;
    TcString digits;
    digits.Set(text.GetContent(), dot);
    number = digits.GetContentAsInt();
    text.Remove(0, dot + 1);
    return true;
}

}  // namespace

std::optional<ProgramVersion> ParseProgramVersion(const TcString& text) {
    TcString rest = text;
    ProgramVersion version;
    if (!TakeNumber(rest, version.major)) return std::nullopt;
    if (TakeNumber(rest, version.minor) && TakeNumber(rest, version.revision)) version.build = rest.GetContentAsInt();
    return version;
}

}  // namespace vardel

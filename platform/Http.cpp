#include "platform/Http.h"

namespace vardel {

namespace {

// `prefix` is in lower case.
bool StartsWith(const char* text, const char* prefix) {
    for (; *prefix; ++text, ++prefix) {
        const char letter = *text >= 'A' && *text <= 'Z' ? static_cast<char>(*text - 'A' + 'a') : *text;
        if (letter != *prefix) return false;
    }
    return true;
}

}  // namespace

bool IsWebAddress(const char* url) { return StartsWith(url, "http://") || StartsWith(url, "https://"); }

}  // namespace vardel

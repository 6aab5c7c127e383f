#include <cstdio>

#include "plugins/examples/support/TellUser.h"

namespace vardel::examples {

void TellUser(void*, const char* title, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", title, text.c_str());
}

}  // namespace vardel::examples

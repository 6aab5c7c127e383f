#include <winsock2.h>

#include "plugins/examples/support/TellUser.h"

namespace vardel::examples {

void TellUser(void* window, const char* title, const std::string& text) {
    MessageBoxA(static_cast<HWND>(window), text.c_str(), title, MB_OK | MB_ICONINFORMATION);
}

}  // namespace vardel::examples

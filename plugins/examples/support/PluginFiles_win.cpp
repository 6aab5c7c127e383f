#include <winsock2.h>

#include "plugins/examples/support/PluginFiles.h"

namespace vardel::examples {

std::string ModulePath(void* module) {
    char path[MAX_PATH];
    const DWORD length = module ? GetModuleFileNameA(static_cast<HMODULE>(module), path, MAX_PATH) : 0;
    return length < MAX_PATH ? std::string(path, length) : std::string();
}

}  // namespace vardel::examples

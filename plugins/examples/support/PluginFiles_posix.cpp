#include <dlfcn.h>
#include <link.h>

#include "plugins/examples/support/PluginFiles.h"

namespace vardel::examples {

std::string ModulePath(void* module) {
    link_map* map = nullptr;
    if (!module || dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || !map) return {};
    return map->l_name;
}

}  // namespace vardel::examples

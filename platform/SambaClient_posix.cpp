#include "platform/SambaClient_posix.h"

#include <dlfcn.h>

#include <memory>

namespace vardel {

namespace {

constexpr char kLibrary[] = "libsmbclient.so.0";

template <class Function>
bool Resolve(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

std::unique_ptr<SambaClient> Load() {
    void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    if (!library) return nullptr;
    auto client = std::make_unique<SambaClient>();
    const bool complete =
        Resolve(library, "smbc_new_context", client->newContext) &&
        Resolve(library, "smbc_init_context", client->initContext) &&
        Resolve(library, "smbc_free_context", client->freeContext) &&
        Resolve(library, "smbc_setTimeout", client->setTimeout) &&
        Resolve(library, "smbc_setPort", client->setPort) &&
        Resolve(library, "smbc_setDebug", client->setDebug) &&
        Resolve(library, "smbc_setLogCallback", client->setLogCallback) &&
        Resolve(library, "smbc_setFunctionAuthDataWithContext", client->setAuthentication) &&
        Resolve(library, "smbc_getFunctionOpendir", client->openFolderOf) &&
        Resolve(library, "smbc_getFunctionReaddir", client->readFolderOf) &&
        Resolve(library, "smbc_getFunctionClosedir", client->closeFolderOf);
    return complete ? std::move(client) : nullptr;
}

}  // namespace

const SambaClient* LoadSambaClient() {
    static const SambaClient* client = Load().release();
    return client;
}

}  // namespace vardel

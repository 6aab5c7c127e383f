// Samba's client library, loaded by name when it is first needed: it brings dozens of others, which a program that
// asks no host for its shares can do without.
//
// Loaded once and never unloaded. One thread at a time may be inside the library.
#pragma once

#include <libsmbclient.h>

namespace vardel {

struct SambaClient {
    decltype(&::smbc_new_context) newContext;
    decltype(&::smbc_init_context) initContext;
    decltype(&::smbc_free_context) freeContext;
    decltype(&::smbc_setTimeout) setTimeout;
    decltype(&::smbc_setPort) setPort;
    decltype(&::smbc_setDebug) setDebug;
    decltype(&::smbc_setLogCallback) setLogCallback;
    decltype(&::smbc_setFunctionAuthDataWithContext) setAuthentication;
    decltype(&::smbc_getFunctionOpendir) openFolderOf;
    decltype(&::smbc_getFunctionReaddir) readFolderOf;
    decltype(&::smbc_getFunctionClosedir) closeFolderOf;
};

// Null where it isn't installed, or lacks an entry point.
const SambaClient* LoadSambaClient();

}  // namespace vardel

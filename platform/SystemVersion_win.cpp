#include "platform/SystemVersion.h"

#include "platform/WindowsApi.h"

#include <shlwapi.h>

namespace vardel {

namespace {

template <class Function>
Function Find(HMODULE module, const char* name) {
    return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)))
                  : nullptr;
}

}  // namespace

bool QuerySystemVersion(SystemVersion& version) {
    // GetVersionEx tells what the manifest allows for; this call tells the truth.
    using RtlGetVersionCall = LONG(WINAPI*)(OSVERSIONINFOEXW*);
    const auto rtlGetVersion = Find<RtlGetVersionCall>(GetModuleHandleA("ntdll.dll"), "RtlGetVersion");
    OSVERSIONINFOEXW details{};
    details.dwOSVersionInfoSize = sizeof details;
    if (!rtlGetVersion || rtlGetVersion(&details) != 0) return false;
    version.major = details.dwMajorVersion;
    version.minor = details.dwMinorVersion;
    version.build = details.dwBuildNumber;
    version.server = details.wProductType != VER_NT_WORKSTATION;
    version.secondRelease = GetSystemMetrics(SM_SERVERR2) != 0;
    version.suites = details.wSuiteMask;
    DWORD product = 0;
    if (!GetProductInfo(details.dwMajorVersion, details.dwMinorVersion, 0, 0, &product)) product = 0;
    version.product = product;
    return true;
}

u32 QueryControlsVersion() {
    // One of the system's known libraries: never looked for in a folder of the program's.
    const HMODULE module = LoadLibraryA("comctl32.dll");
    if (!module) return 0;
    u32 version = MAKELONG(0, 4);  // so old that it has no such entry point
    if (const auto dllGetVersion = Find<DLLGETVERSIONPROC>(module, "DllGetVersion")) {
        DLLVERSIONINFO details{};
        details.cbSize = sizeof details;
        if (SUCCEEDED(dllGetVersion(&details)))
            version = static_cast<u32>(MAKELONG(details.dwMinorVersion, details.dwMajorVersion));
    }
    FreeLibrary(module);
    return version;
}

}  // namespace vardel

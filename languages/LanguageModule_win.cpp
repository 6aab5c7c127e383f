// A language module: its resources, and the entry point that names them. The name is given in the system code page,
// as all the program's texts are. Language.h is that of the module's own folder.
#include "Language.h"
#include "platform/WindowsApi.h"
#include "resources/IconIds.h"

extern "C" __declspec(dllexport) UINT32 GetModuleLanguageInfo(char* name, int size, UINT32* languageId) {
    if (!name || !languageId || size < 1) return 0;
    if (!WideCharToMultiByte(CP_ACP, 0, kLanguageName, -1, name, size, nullptr, nullptr)) {
        name[0] = 0;
        return 0;
    }
    *languageId = kLanguageId;
    return IDI_FLAG;
}

// The module needs no runtime, so that it is its resources and little else.
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE, DWORD, LPVOID) {
    return TRUE;
}

// Loads the installed capture driver's libraries, from nowhere but the program's folder, the system folder
// and the driver's own subfolder of it: a DLL of that name that was left in the current folder must not be
// taken.
#include "platform/CaptureLibrary.h"

#include <mutex>
#include <string>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

using SetDefaultDllDirectoriesFunction = BOOL(WINAPI*)(DWORD);
using AddDllDirectoryFunction = void*(WINAPI*)(PCWSTR);

template <class Function>
Function SystemFunction(const char* name) {
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    return kernel ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(kernel, name)))
                  : nullptr;
}

// The driver's folder; for a 32-bit program the system turns this into its 32-bit twin. Empty on failure.
std::wstring DriverFolder() {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return {};
    return std::wstring(folder, length) + L"\\Npcap";
}

// Narrows the search for DLLs, for the whole process and so also for what the libraries themselves depend on.
// Among the folders the program's own comes first, then the driver's, then the system folder.
class ModuleSearch {
  public:
    void Narrow() {
        const std::lock_guard hold(guard_);
        if (isComplete_) return;
        const std::wstring driver = DriverFolder();
        const auto setDefault = SystemFunction<SetDefaultDllDirectoriesFunction>("SetDefaultDllDirectories");
        const auto addFolder = SystemFunction<AddDllDirectoryFunction>("AddDllDirectory");
        constexpr DWORD kFolders = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS |
                                   LOAD_LIBRARY_SEARCH_SYSTEM32;
        if (setDefault && addFolder && setDefault(kFolders)) {
            // Fails where the folder isn't there, and is tried again then: the driver may yet be installed.
            isComplete_ = !driver.empty() && addFolder(driver.c_str());
            return;
        }
        // Windows 7 without its update KB2533623: the one folder that can be set takes the current folder's
        // place.
        isComplete_ = SetDllDirectoryW(driver.c_str());
    }

  private:
    std::mutex guard_;
    bool isComplete_ = false;
};

class WindowsCaptureModules : public CaptureModules {
  public:
    ModuleHandle Load(const char* name) override {
        search_.Narrow();
        return reinterpret_cast<ModuleHandle>(LoadLibraryA(name));
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        return reinterpret_cast<void*>(GetProcAddress(reinterpret_cast<HMODULE>(module), entryPoint));
    }
    void Free(ModuleHandle module) override {
        if (module) FreeLibrary(reinterpret_cast<HMODULE>(module));
    }

  private:
    ModuleSearch search_;
};

}  // namespace

CaptureModules& SystemCaptureModules() {
    static WindowsCaptureModules modules;
    return modules;
}

}  // namespace vardel

#include "platform/Modules.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

bool IsFullPath(const char* path) {
    if (path[0] == '\\' && path[1] == '\\') return true;
    return std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':' && path[2] == '\\';
}

// A damaged file, or one for another machine, is passed over without the system's message box.
class QuietErrors {
  public:
    QuietErrors() { isSet_ = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_); }
    ~QuietErrors() {
        if (isSet_) SetThreadErrorMode(before_, nullptr);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    DWORD before_ = 0;
    bool isSet_;
};

class WindowsModules : public Modules {
  public:
    std::vector<FolderEntry> List(const std::string& folder, const char* ending) override {
        std::vector<FolderEntry> entries;
        if (folder.empty()) return entries;
        const bool endsInSeparator = folder.back() == '\\' || folder.back() == '/';
        const std::string pattern = folder + (endsInSeparator ? "*" : "\\*") + ending;
        WIN32_FIND_DATAA found;
        const HANDLE search = FindFirstFileA(pattern.c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return entries;
        do {
            entries.push_back({found.cFileName, found.dwFileAttributes == FILE_ATTRIBUTE_DIRECTORY});
        } while (FindNextFileA(search, &found));
        FindClose(search);
        return entries;
    }
    ModuleHandle Load(const char* path) override {
        if (!path) return nullptr;
        std::string full = path;
        std::ranges::replace(full, '/', '\\');  // the loader doesn't take the other form
        if (!IsFullPath(full.c_str())) return nullptr;
        const QuietErrors quiet;
        // What the module itself needs is looked for beside it and where the program's own modules are, never
        // in the current folder.
        constexpr DWORD kSearch = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
        HMODULE module = LoadLibraryExA(full.c_str(), nullptr, kSearch);
        // Windows 7 without its update KB2533623 knows no such search.
        if (!module && GetLastError() == ERROR_INVALID_PARAMETER) module = LoadLibraryA(full.c_str());
        return reinterpret_cast<ModuleHandle>(module);
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        if (!module) return nullptr;
        return reinterpret_cast<void*>(GetProcAddress(reinterpret_cast<HMODULE>(module), entryPoint));
    }
    void Free(ModuleHandle module) override {
        if (module) FreeLibrary(reinterpret_cast<HMODULE>(module));
    }
    const char* Ending() const override { return ".dll"; }
};

}  // namespace

Modules& SystemModules() {
    static WindowsModules modules;
    return modules;
}

}  // namespace vardel

#include "platform/Modules.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace vardel {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// Only what can be a module: opening a pipe of that name would wait for its other end.
bool IsRegularFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool IsPlainFolder(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

class PosixModules : public Modules {
  public:
    std::vector<FolderEntry> List(const std::string& folder, const char* ending) override {
        std::vector<FolderEntry> entries;
        const std::unique_ptr<DIR, CloseFolder> opened(opendir(folder.c_str()));
        if (!opened) return entries;
        while (const dirent* entry = readdir(opened.get())) {
            const std::string name = entry->d_name;
            if (!name.ends_with(ending)) continue;
            const std::string path = folder + "/" + name;
            const bool isFolder = IsPlainFolder(path);
            if (isFolder || IsRegularFile(path)) entries.push_back({name, isFolder});
        }
        std::ranges::sort(entries, {}, &FolderEntry::name);
        return entries;
    }
    ModuleHandle Load(const char* path) override {
        if (!path || path[0] != '/' || !IsRegularFile(path)) return nullptr;
        return static_cast<ModuleHandle>(dlopen(path, RTLD_NOW | RTLD_LOCAL));
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        return module ? dlsym(module, entryPoint) : nullptr;
    }
    void Free(ModuleHandle module) override {
        if (module) dlclose(module);
    }
    const char* Ending() const override { return ".so"; }
};

}  // namespace

Modules& SystemModules() {
    static PosixModules modules;
    return modules;
}

}  // namespace vardel

#include "platform/Folders.h"

#include "platform/WindowsApi.h"

#include <shlobj.h>

namespace vardel {

namespace {

class WindowsFolders : public Folders {
  public:
    std::string LocalApplicationData() override {
        char path[MAX_PATH] = "";
        if (!SHGetSpecialFolderPathA(nullptr, path, CSIDL_LOCAL_APPDATA, FALSE)) return {};
        std::string folder = path;
        while (!folder.empty() && folder.back() == '\\') folder.pop_back();
        return folder;
    }
    std::string ProgramPath() override {
        constexpr std::size_t kLongestPath = 32768;
        for (std::string path(MAX_PATH, '\0'); path.size() <= kLongestPath; path.resize(path.size() * 2)) {
            const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
            if (length == 0) return {};
            if (length >= path.size()) continue;  // it was cut
            path.resize(length);
            return path;
        }
        return {};
    }
    char Separator() const override { return '\\'; }
};

}  // namespace

Folders& SystemFolders() {
    static WindowsFolders folders;
    return folders;
}

}  // namespace vardel

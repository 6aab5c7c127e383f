#include "platform/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include "platform/Types.h"
#include "platform/XdgFolders.h"

namespace vardel {

namespace {

// A folder from the environment; a relative one counts as none (XDG base directories).
std::string AbsoluteFromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    std::string folder = value && value[0] == '/' ? value : "";
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    return folder;
}

std::string HomeFromUserDatabase() {
    constexpr std::size_t kLargestBuffer = 1024 * 1024;
    for (std::vector<char> buffer(1024); buffer.size() <= kLargestBuffer; buffer.resize(buffer.size() * 2)) {
        passwd entry{};
        passwd* found = nullptr;
        const int result = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (result == ERANGE) continue;
        return result == 0 && found && found->pw_dir && found->pw_dir[0] == '/' ? found->pw_dir : "";
    }
    return {};
}

class PosixFolders : public Folders {
  public:
    std::string LocalApplicationData() override { return XdgFolder("XDG_DATA_HOME", ".local/share"); }
    std::string ProgramPath() override {
        constexpr std::size_t kLongestPath = 64 * 1024;
        for (std::string path(256, '\0'); path.size() <= kLongestPath; path.resize(path.size() * 2)) {
            const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
            if (length <= 0) return {};
            if (static_cast<std::size_t>(length) == path.size()) continue;  // it may have been cut
            path.resize(static_cast<std::size_t>(length));
            return WithoutDeletionMark(path);
        }
        return {};
    }
    char Separator() const override { return '/'; }

  private:
    // The kernel marks the path of a running program whose file was replaced, as an update does.
    static std::string WithoutDeletionMark(const std::string& path) {
        static const std::string mark = " (deleted)";
        const bool marked =
            path.size() > mark.size() && path.ends_with(mark) && access(path.c_str(), F_OK) != 0;
        return marked ? path.substr(0, path.size() - mark.size()) : path;
    }
};

}  // namespace

std::string XdgFolder(const char* variable, const char* belowHome) {
    const std::string folder = AbsoluteFromEnvironment(variable);
    if (!folder.empty()) return folder;
    std::string home = AbsoluteFromEnvironment("HOME");
    if (home.empty()) home = HomeFromUserDatabase();
    if (home.empty()) return {};
    return (home == "/" ? "" : home) + "/" + belowHome;
}

Folders& SystemFolders() {
    static PosixFolders folders;
    return folders;
}

}  // namespace vardel

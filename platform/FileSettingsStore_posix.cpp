#include "platform/FileSettingsStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/Folders.h"
#include "platform/RegistryText.h"
#include "platform/XdgFolders.h"

namespace vardel {

namespace {

class FileDescriptor {
  public:
    explicit FileDescriptor(int number) : number_(number) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    bool Close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || close(number) == 0;
    }

  private:
    int number_;
};

void Tell(const std::string& message) {
    std::fprintf(stderr, "vardelwatch: %s\n", message.c_str());
}

std::string FolderOf(const std::string& path) {
    const std::size_t end = path.rfind('/');
    return end == 0 ? "/" : path.substr(0, end);
}

// With all that is missing above it; readable by the user alone.
bool MakeFolder(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        if (mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST && end == std::string::npos)
            return false;
        if (end == std::string::npos) return true;
    }
}

// False leaves the reason in errno.
bool ReadFile(const std::string& path, std::string& content) {
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) return false;
    char buffer[65536];
    for (;;) {
        const ssize_t count = read(file.Number(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) return true;
        content.append(buffer, static_cast<std::size_t>(count));
    }
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = write(file, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// Puts a new content in the place of a file at once. On failure the old content stays whole and errno tells
// why.
bool ReplaceFile(const std::string& path, std::string_view content) {
    const std::string folder = FolderOf(path);
    if (!MakeFolder(folder)) return false;
    std::string fresh = path + ".XXXXXX";
    FileDescriptor file(mkostemp(fresh.data(), O_CLOEXEC));  // of mode 0600: passwords lie inside
    if (!file.IsOpen()) return false;
    if (!WriteAll(file.Number(), content) || fsync(file.Number()) != 0 || !file.Close() ||
        rename(fresh.c_str(), path.c_str()) != 0) {
        const int reason = errno;
        unlink(fresh.c_str());
        errno = reason;
        return false;
    }
    // Where the folder can't be flushed the new file is in place all the same.
    FileDescriptor place(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (place.IsOpen()) fsync(place.Number());
    return true;
}

// Where a link leads, so that the file behind it is replaced and not the link.
std::string BehindLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

// A string of a desktop entry's Exec line, quoted. Source: freedesktop.org desktop entries 1.5, "The Exec key".
std::string QuotedForExec(const std::string& path) {
    std::string quoted = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$') quoted += "\\\\";  // the string type takes one of the two away
        if (c == '\\') quoted += "\\\\\\";
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return quoted + "\"";
}

}  // namespace

SettingsFiles UserSettingsFiles() {
    const std::string folder = XdgFolder("XDG_CONFIG_HOME", ".config");
    if (folder.empty()) return {};
    return {folder + "/vardelwatch/settings.reg", folder + "/autostart", SystemFolders().ProgramPath()};
}

void FileSettingsStore::Load() {
    if (loaded_) return;
    loaded_ = true;
    if (files_.settings.empty()) {
        Tell("there is no home folder to keep settings in");
        return;
    }
    std::string content;
    if (!ReadFile(files_.settings, content)) {
        if (errno == ENOENT || errno == ENOTDIR) return;  // the first start
        damaged_ = true;
        Tell("settings can't be read from " + files_.settings + ": " + std::strerror(errno));
        return;
    }
    RegistryText text = ParseRegistryText(content);
    tree_ = std::move(text.tree);
    if (text.damagedLine == 0) return;
    damaged_ = true;
    Tell("settings file " + files_.settings + " is damaged at line " + std::to_string(text.damagedLine) +
         "; using what can be read");
}

bool FileSettingsStore::Save() {
    if (files_.settings.empty()) return false;
    const std::string path = BehindLinks(files_.settings);
    if ((!damaged_ || KeepAside(path)) && ReplaceFile(path, FormatRegistryText(tree_))) {
        failed_ = false;
        return true;
    }
    if (!failed_) Tell("settings can't be written to " + path + ": " + std::strerror(errno));
    failed_ = true;
    return false;
}

// False leaves the reason in errno.
bool FileSettingsStore::KeepAside(const std::string& original) {
    constexpr int kMostKept = 100;
    for (int number = 1; number <= kMostKept; ++number) {
        const std::string kept = original + ".damaged" + (number == 1 ? "" : "." + std::to_string(number));
        struct stat status;
        if (lstat(kept.c_str(), &status) == 0) continue;
        // A link leaves the original where it is until it is replaced; folders and some file systems have
        // none.
        if (link(original.c_str(), kept.c_str()) != 0 && rename(original.c_str(), kept.c_str()) != 0)
            return false;
        damaged_ = false;
        Tell("the damaged settings file is kept as " + kept);
        return true;
    }
    errno = EEXIST;
    return false;
}

std::string FileSettingsStore::AutostartFile(const char* name) const {
    return files_.autostartFolder + "/" + name + ".desktop";
}

bool FileSettingsStore::AddAutostart(const char* name) {
    if (files_.autostartFolder.empty() || files_.program.empty()) return false;
    return ReplaceFile(AutostartFile(name), std::string("[Desktop Entry]\nType=Application\nName=") + name +
                                                "\nExec=" + QuotedForExec(files_.program) + "\n");
}

bool FileSettingsStore::RemoveAutostart(const char* name) {
    if (files_.autostartFolder.empty()) return false;
    return unlink(AutostartFile(name).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

}  // namespace vardel

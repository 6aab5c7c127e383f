#include "platform/TextFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace vardel {

namespace {

constexpr char kFreshName[] = "vardelwatch.part";
constexpr mode_t kNewFileMode = 0666;  // what the user's mask leaves of it

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    bool Close() {
        const int number = number_;
        number_ = -1;
        return number < 0 || close(number) == 0;
    }

  private:
    int number_;
};

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = write(file, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool Overwrite(const std::string& path, std::string_view text) {
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kNewFileMode));
    return file.IsOpen() && WriteAll(file.Number(), text) && file.Close();
}

// Where a link leads, so that the file behind it is replaced and not the link.
std::string BehindLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

// With the last separator; empty for a name alone.
std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// The new file is the old one's in owner and rights, or it isn't put in its place.
bool TakesAfter(int file, const struct stat& old) {
    struct stat fresh;
    if (fstat(file, &fresh) != 0) return false;
    const bool sameOwner = fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid;
    return (sameOwner || fchown(file, old.st_uid, old.st_gid) == 0) && fchmod(file, old.st_mode & 07777) == 0;
}

enum class Outcome { Done, Impossible, Failed };

// Impossible: nothing was changed, the file may be overwritten. `old` is null where there is no file yet.
Outcome Replace(const std::string& path, std::string_view text, const struct stat* old) {
    const std::string fresh = FolderOf(path) + kFreshName;
    unlink(fresh.c_str());  // of a run that was cut short
    Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
    if (!file.IsOpen()) return Outcome::Impossible;
    Outcome result = Outcome::Impossible;
    if (!old || TakesAfter(file.Number(), *old)) {
        if (!WriteAll(file.Number(), text) || fsync(file.Number()) != 0 || !file.Close())
            result = Outcome::Failed;
        else if (rename(fresh.c_str(), path.c_str()) == 0)
            return Outcome::Done;
    }
    unlink(fresh.c_str());
    return result;
}

// So that the new name is on the disk too. Where the folder can't be flushed the file is in place all the same.
void FlushFolder(const std::string& folder) {
    const Descriptor place(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (place.IsOpen()) fsync(place.Number());
}

}  // namespace

bool ReadTextFile(const std::string& path, std::string& text) {
    text.clear();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    text.resize(static_cast<std::size_t>(status.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = read(file.Number(), text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    text.resize(done);
    return true;
}

bool WriteTextFile(const std::string& path, std::string_view text) {
    const std::string target = BehindLinks(path);
    struct stat status;
    const bool exists = lstat(target.c_str(), &status) == 0;
    // A device, a pipe, a link to nowhere, a file of several names or one that is closed to us.
    if (exists && (!S_ISREG(status.st_mode) || status.st_nlink > 1 || access(target.c_str(), W_OK) != 0))
        return Overwrite(target, text);
    const Outcome outcome = Replace(target, text, exists ? &status : nullptr);
    if (outcome == Outcome::Impossible) return Overwrite(target, text);
    if (outcome == Outcome::Done) FlushFolder(FolderOf(target));
    return outcome == Outcome::Done;
}

}  // namespace vardel

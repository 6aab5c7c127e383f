// A name is claimed by a lock (flock) on a file of the user's own; the kernel drops the lock when the process
// ends, however that happens, so no claim outlives its holder. The empty file stays behind.
#include "platform/Process.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>

namespace vardel {

namespace {

bool IsOwnFolder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

// In the user's runtime folder; without one in /tmp, where the file bears the user's number.
std::string LockPath(std::string name) {
    std::replace(name.begin(), name.end(), '/', '_');
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/' && IsOwnFolder(runtime))
        return std::string(runtime) + "/" + name + ".lock";
    return "/tmp/." + name + "-" + std::to_string(geteuid()) + ".lock";
}

enum class Lock { Taken, HeldElsewhere, Impossible };

// A file that somebody else put there (a link, another user's file, a second name of a file) is not used.
bool IsOwnPlainFile(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
           status.st_nlink <= 1;
}

// False when the file was removed between opening and locking: the lock then keeps nobody out.
bool StillStandsAt(int descriptor, const std::string& path) {
    struct stat mine, there;
    return fstat(descriptor, &mine) == 0 && lstat(path.c_str(), &there) == 0 && mine.st_ino == there.st_ino &&
           mine.st_dev == there.st_dev;
}

// On Taken the descriptor stays open, and with it the lock, for the life of the process.
Lock TakeLock(const std::string& path) {
    for (int tries = 0; tries < 16; ++tries) {
        const int descriptor =
            open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600);
        if (descriptor < 0) return Lock::Impossible;
        Lock result = Lock::Impossible;
        if (IsOwnPlainFile(descriptor)) {
            if (flock(descriptor, LOCK_EX | LOCK_NB) == 0)
                result = Lock::Taken;
            else if (errno == EWOULDBLOCK)
                result = Lock::HeldElsewhere;
        }
        const bool current = StillStandsAt(descriptor, path);
        if (result == Lock::Taken && current) return result;
        close(descriptor);
        if (current) return result;
    }
    return Lock::Impossible;
}

class PosixProcess : public ProcessServices {
  public:
    bool ClaimName(const char* name) override {
        const std::lock_guard hold(guard_);
        if (claimed_.contains(name)) return false;
        // Where no lock can be had the program starts all the same: nobody may bar it by planting a file.
        if (TakeLock(LockPath(name)) == Lock::HeldElsewhere) return true;
        claimed_.insert(name);
        return false;
    }

    // In one piece as far as the system takes it, so that lines of several threads stay whole.
    void DebugText(const char* text) override {
        const std::string line = std::string(text) + "\n";
        for (std::size_t done = 0; done < line.size();) {
            const ssize_t written = write(STDERR_FILENO, line.data() + done, line.size() - done);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return;
            done += static_cast<std::size_t>(written);
        }
    }

    bool EnterApartment() override { return false; }
    void LeaveApartment() override {}
    void StartNetwork() override {}
    void StopNetwork() override {}

  private:
    std::mutex guard_;
    std::set<std::string> claimed_;
};

}  // namespace

ProcessServices& SystemProcess() {
    static PosixProcess process;
    return process;
}

}  // namespace vardel

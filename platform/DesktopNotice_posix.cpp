#include "platform/DesktopNotice.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace vardel {

namespace {

constexpr char kCommand[] = "notify-send";
constexpr std::size_t kMostAtOnce = 8;

// By the address that the session's programs were given, else by the user's own socket.
bool SessionHasBus() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address && *address) return true;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    struct stat status;
    return runtime && *runtime && stat((std::string(runtime) + "/bus").c_str(), &status) == 0 &&
           S_ISSOCK(status.st_mode);
}

// The three standard streams lead nowhere: what the command has to say is of no use here.
class SilentStreams {
  public:
    SilentStreams() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
    ~SilentStreams() { posix_spawn_file_actions_destroy(&actions_); }
    SilentStreams(const SilentStreams&) = delete;
    SilentStreams& operator=(const SilentStreams&) = delete;
    const posix_spawn_file_actions_t* Get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

// The signals that the program waits for itself are not to be blocked in the command.
class PlainSignals {
  public:
    PlainSignals() {
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    ~PlainSignals() { posix_spawnattr_destroy(&attributes_); }
    PlainSignals(const PlainSignals&) = delete;
    PlainSignals& operator=(const PlainSignals&) = delete;
    const posix_spawnattr_t* Get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

class NotifySend : public DesktopNotice {
  public:
    void Show(std::string_view title, std::string_view text) override {
        CollectEnded();
        if (running_.size() >= kMostAtOnce || !SessionHasBus()) return;
        std::string heading(NoticeBody(title)), body(NoticeBody(text)), name(kCommand), optionsEnd("--");
        std::string program("--app-name=Vardelwatch");
        char* const words[] = {name.data(),      program.data(), optionsEnd.data(),
                               heading.data(), body.data(),    nullptr};
        const SilentStreams streams;
        const PlainSignals signals;
        pid_t process;
        if (posix_spawnp(&process, kCommand, streams.Get(), signals.Get(), words, environ) == 0)
            running_.push_back(process);
    }

  private:
    void CollectEnded() {
        std::erase_if(running_, [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
    }

    std::vector<pid_t> running_;
};

}  // namespace

DesktopNotice& SystemDesktopNotice() {
    static NotifySend notice;
    return notice;
}

}  // namespace vardel

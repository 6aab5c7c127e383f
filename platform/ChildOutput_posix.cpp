#include "platform/ChildOutput_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

extern char** environ;

namespace vardel {

namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kEndLook{5};

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const { return number_; }
    void Close() {
        if (number_ >= 0) close(number_);
        number_ = -1;
    }

  private:
    int number_;
};

// What a child starts with: standard output to the pipe, no other descriptor of ours, a process group of its own
// and the signals as a program expects them, whatever the calling thread has blocked.
class SpawnPlan {
  public:
    explicit SpawnPlan(int outputEnd) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        failed_ =
            posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0) != 0 ||
            posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0) != 0 ||
            posix_spawn_file_actions_adddup2(&actions_, outputEnd, STDOUT_FILENO) != 0 ||
            posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1) != 0 ||
            posix_spawnattr_setsigmask(&attributes_, &none) != 0 ||
            posix_spawnattr_setsigdefault(&attributes_, &all) != 0 ||
            posix_spawnattr_setpgroup(&attributes_, 0) != 0 ||
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                       POSIX_SPAWN_SETPGROUP) != 0;
    }
    ~SpawnPlan() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&actions_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    // The child's id, -1 on failure.
    pid_t Spawn(const std::vector<std::string>& words) const {
        std::vector<char*> arguments;
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        pid_t child = -1;
        if (failed_ || posix_spawnp(&child, arguments[0], &actions_, &attributes_, arguments.data(), environ) != 0)
            return -1;
        return child;
    }

  private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
    bool failed_ = true;
};

// A child that is waited for in any case; one that still runs is ended first, with its process group.
class Child {
  public:
    explicit Child(pid_t id) : id_(id) {}
    ~Child() {
        if (id_ <= 0) return;
        kill(-id_, SIGKILL);
        while (waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // True when it ended by then with exit code 0.
    bool EndsWellBy(SteadyClock::time_point deadline) {
        for (;;) {
            int status = 0;
            const pid_t ended = waitpid(id_, &status, WNOHANG);
            if (ended < 0 && errno == EINTR) continue;
            if (ended != 0) {
                id_ = -1;
                return ended > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
            }
            if (SteadyClock::now() >= deadline) return false;
            std::this_thread::sleep_for(kEndLook);
        }
    }

  private:
    pid_t id_;
};

int MillisecondsUntil(SteadyClock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

// Up to the end of the pipe; false when that doesn't come by the deadline or lies behind the limit.
bool ReadAll(int pipeEnd, SteadyClock::time_point deadline, std::size_t limit, std::string& output) {
    for (;;) {
        pollfd readable{pipeEnd, POLLIN, 0};
        const int ready = poll(&readable, 1, MillisecondsUntil(deadline));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        char block[16 * 1024];
        const ssize_t size = read(pipeEnd, block, sizeof block);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return size == 0;
        if (static_cast<std::size_t>(size) > limit - output.size()) return false;
        output.append(block, static_cast<std::size_t>(size));
        if (SteadyClock::now() >= deadline) return false;
    }
}

}  // namespace

bool RunForOutput(const std::vector<std::string>& words, int timeoutMs, std::size_t limit, std::string& output) {
    output.clear();
    const SteadyClock::time_point deadline = SteadyClock::now() + std::chrono::milliseconds(timeoutMs);
    int ends[2];
    if (words.empty() || pipe2(ends, O_CLOEXEC) != 0) return false;
    Descriptor readEnd(ends[0]), writeEnd(ends[1]);
    const pid_t id = SpawnPlan(writeEnd.Number()).Spawn(words);
    writeEnd.Close();
    if (id <= 0) return false;
    Child child(id);
    return ReadAll(readEnd.Number(), deadline, limit, output) && child.EndsWellBy(deadline);
}

}  // namespace vardel

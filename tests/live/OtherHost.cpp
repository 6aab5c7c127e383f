#include "tests/live/OtherHost.h"

#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace vardel::test {

namespace {

// One byte for each message: whether what it says was done. Ends when the test closes its side.
[[noreturn]] void BeTheOtherHost(int commands) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    char done = unshare(CLONE_NEWNET) == 0;
    char command[4096];
    while (send(commands, &done, 1, MSG_NOSIGNAL) == 1) {
        const ssize_t size = recv(commands, command, sizeof command - 1, 0);
        if (size <= 0) break;
        command[size] = 0;
        done = std::system(command) == 0;
    }
    _exit(0);
}

}  // namespace

OtherHost::OtherHost() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
        close(ends[0]);
        BeTheOtherHost(ends[1]);
    }
    close(ends[1]);
    commands_ = ends[0];
    char done = 0;
    ready_ = process_ > 0 && recv(commands_, &done, 1, 0) == 1 && done;
}

OtherHost::~OtherHost() {
    if (commands_ >= 0) close(commands_);
    if (process_ > 0) waitpid(process_, nullptr, 0);
}

bool OtherHost::Takes(const std::string& name) {
    return ready_ && std::system(("ip link set " + name + " netns " + std::to_string(process_)).c_str()) == 0;
}

bool OtherHost::Runs(const std::string& command) {
    char done = 0;
    return ready_ && send(commands_, command.data(), command.size(), MSG_NOSIGNAL) > 0 &&
           recv(commands_, &done, 1, 0) == 1 && done;
}

}  // namespace vardel::test

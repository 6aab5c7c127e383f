// What a test does in a network namespace of its own: in a child process, which the namespace ends with.
#pragma once

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>

namespace vardel::test {

// What became of the child.
constexpr int kGood = 0, kNoNamespace = 77;

inline bool EnterOwnNamespace() {
    return unshare(CLONE_NEWNET) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
}

inline bool DropAllRights() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

inline bool ShellRuns(const char* command) { return system(command) == 0; }

// Runs `act`, which gives kGood or a number of its own that says what went wrong, and gives what it gave.
template <class Act>
int InOwnNamespace(Act act) {
    const pid_t child = fork();
    if (child == 0) _exit(EnterOwnNamespace() ? act() : kNoNamespace);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    if (WEXITSTATUS(status) == kNoNamespace)
        std::cout << "This machine grants no network namespace: nothing was done, nothing was tested.\n";
    return WEXITSTATUS(status);
}

}  // namespace vardel::test

#define EXPECT_GOOD_IF_GRANTED(result) \
    EXPECT_TRUE((result) == ::vardel::test::kGood || (result) == ::vardel::test::kNoNamespace) << (result)

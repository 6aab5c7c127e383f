#include "platform/ChildOutput_posix.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

constexpr int kPlentyMs = 20000;
constexpr std::size_t kPlenty = 1 << 20;

bool Runs(const std::vector<std::string>& words, std::string& output, int timeoutMs = kPlentyMs,
         std::size_t limit = kPlenty) {
    return RunForOutput(words, timeoutMs, limit, output);
}

bool Exists(pid_t process) { return kill(process, 0) == 0; }

TEST(ChildOutput, GivesWhatACommandWrites) {
    std::string output;
    EXPECT_TRUE(Runs({"printf", "%s|%s", "a b", "$HOME `x` *"}, output));
    EXPECT_EQ(output, "a b|$HOME `x` *");
    EXPECT_TRUE(Runs({"true"}, output));
    EXPECT_EQ(output, "");
}

TEST(ChildOutput, AMissingCommandAndAFailureAreNoSuccess) {
    std::string output;
    EXPECT_FALSE(Runs({"vardel-no-such-command"}, output));
    EXPECT_FALSE(Runs({}, output));
    EXPECT_FALSE(Runs({"false"}, output));
    EXPECT_FALSE(Runs({"sh", "-c", "echo half; kill -9 $$"}, output));
}

TEST(ChildOutput, TakesExactlyAsMuchAsTheLimit) {
    std::string output;
    EXPECT_TRUE(Runs({"head", "-c", "100000", "/dev/zero"}, output, kPlentyMs, 100000));
    EXPECT_EQ(output.size(), 100000u);
    EXPECT_FALSE(Runs({"head", "-c", "100001", "/dev/zero"}, output, kPlentyMs, 100000));
    EXPECT_FALSE(Runs({"cat", "/dev/zero"}, output, kPlentyMs, 100000));
}

TEST(ChildOutput, EndsWhatTakesTooLongWithAllThatItStarted) {
    const test::TestFolder folder;
    const std::string file = folder.Path("started");
    std::string output;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(Runs({"sh", "-c", "sleep 600 & echo $! >\"$0.new\"; mv \"$0.new\" \"$0\"; wait", file}, output, 2000));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
    pid_t started = 0;
    std::ifstream(file) >> started;
    ASSERT_GT(started, 0);
    for (int looks = 0; Exists(started) && looks < 500; ++looks)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::ifstream state("/proc/" + std::to_string(started) + "/stat");
    std::string id, name, letter;
    // Where nobody collects orphans it stays as a zombie.
    if (state >> id >> name >> letter) {
        EXPECT_EQ(letter, "Z");
    }
}

TEST(ChildOutput, EndsACommandThatClosedItsOutputAndGoesOn) {
    std::string output;
    EXPECT_FALSE(Runs({"sh", "-c", "exec >&-; exec sleep 600"}, output, 300));
}

TEST(ChildOutput, TheCommandGetsNoInputNoDescriptorsAndPlainSignals) {
    const int held = open("/dev/null", O_RDONLY);  // nothing keeps it from being passed on
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    std::string output;
    EXPECT_TRUE(Runs({"sh", "-c", "cat; ls /proc/self/fd | wc -l; grep SigBlk /proc/self/status"}, output));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(held);
    // Standard input, output and error, and the folder that is listed.
    EXPECT_EQ(output, "4\nSigBlk:\t0000000000000000\n");
}

}  // namespace
}  // namespace vardel

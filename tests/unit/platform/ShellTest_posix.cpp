#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include "platform/Shell.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

bool Await(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// A folder with programs of the test's own on the PATH. Each tells in a file of its name + ".told" how it was called.
class ShellPosix : public testing::Test {
  protected:
    static constexpr char kTellArguments[] = R"(printf '%s' "$#"; for word; do printf '|%s' "$word"; done)";

    void MakeProgram(const std::string& name, const std::string& commands = kTellArguments) {
        const std::string path = folder.Write(name, "#!/bin/sh\n{ " + commands + "; } > \"$0.part\"\n" +
                                                        "mv \"$0.part\" \"$0.told\"\n");
        chmod(path.c_str(), 0700);
    }
    // What the program told; "nothing" when it never did.
    std::string Told(const std::string& name) {
        const std::string path = folder.Path(name + ".told");
        return Await([&] { return access(path.c_str(), F_OK) == 0; }) ? folder.Read(name + ".told") : "nothing";
    }
    bool Open(const std::string& file, const std::vector<std::string>& arguments = {}) {
        return SystemShell().Execute(ShellVerb::Open, file, arguments);
    }

    test::TestFolder folder;
    test::EnvironmentVariable searched{"PATH", (folder.Path() + ":/usr/bin:/bin").c_str()};
};

TEST_F(ShellPosix, AProgramGetsItsArgumentsOneByOne) {
    MakeProgram("tool");
    EXPECT_TRUE(Open(folder.Path("tool"), {"one two", "", "three"}));
    EXPECT_EQ(Told("tool"), "3|one two||three");
}

TEST_F(ShellPosix, NothingInAnArgumentIsACommand) {
    MakeProgram("tool");
    const std::string hostile = "; touch " + folder.Path("owned") + " & $(id) `id` | > < \" ' * \n";
    EXPECT_TRUE(Open(folder.Path("tool"), {hostile}));
    EXPECT_EQ(Told("tool"), "1|" + hostile);
    EXPECT_NE(access(folder.Path("owned").c_str(), F_OK), 0);
}

TEST_F(ShellPosix, ANameWithoutAFolderIsSearchedForInThePath) {
    MakeProgram("tool");
    EXPECT_TRUE(Open("tool", {"x"}));
    EXPECT_EQ(Told("tool"), "1|x");
}

TEST_F(ShellPosix, AnAddressGoesToTheDesktopsOpener) {
    MakeProgram("xdg-open");
    EXPECT_TRUE(Open("https://printer.example/?a=1&b=2", {"of no use"}));
    EXPECT_EQ(Told("xdg-open"), "1|https://printer.example/?a=1&b=2");
}

TEST_F(ShellPosix, ADocumentGoesToTheOpenerUnderItsFullPath) {
    MakeProgram("xdg-open");
    const std::string document = folder.Write("notes.txt", "text");
    EXPECT_TRUE(Open(folder.Path() + "/../" + folder.Path().substr(folder.Path().rfind('/') + 1) + "/notes.txt"));
    char* full = realpath(document.c_str(), nullptr);
    EXPECT_EQ(Told("xdg-open"), "1|" + std::string(full));
    free(full);
}

TEST_F(ShellPosix, AFolderGoesToTheOpenerUnderEveryVerb) {
    for (const ShellVerb verb : {ShellVerb::Open, ShellVerb::Explore, ShellVerb::Find}) {
        MakeProgram("xdg-open");
        unlink(folder.Path("xdg-open.told").c_str());
        folder.Write("inside/file", "");
        EXPECT_TRUE(SystemShell().Execute(verb, folder.Path("inside"), {}));
        EXPECT_TRUE(Told("xdg-open").ends_with("/inside"));
    }
}

TEST_F(ShellPosix, OnlyAFolderIsExplored) {
    MakeProgram("xdg-open");
    EXPECT_FALSE(SystemShell().Execute(ShellVerb::Explore, folder.Write("file", ""), {}));
    EXPECT_FALSE(SystemShell().Execute(ShellVerb::Find, "https://printer.example/", {}));
}

TEST_F(ShellPosix, WhatIsMarkedAsAProgramAndIsNoneIsADocument) {
    MakeProgram("xdg-open");
    const std::string document = folder.Write("picture.bmp", "BM, no program at all");
    chmod(document.c_str(), 0700);
    EXPECT_TRUE(Open(document));
    EXPECT_TRUE(Told("xdg-open").ends_with("/picture.bmp"));
}

TEST_F(ShellPosix, WhatIsNotThereStartsNothing) {
    MakeProgram("xdg-open");
    EXPECT_FALSE(Open(""));
    EXPECT_FALSE(Open("no-such-program-anywhere"));
    EXPECT_FALSE(Open(folder.Path("gone")));
    EXPECT_FALSE(Open("://nothing"));
    EXPECT_NE(access(folder.Path("xdg-open.told").c_str(), F_OK), 0);
}

TEST_F(ShellPosix, WithoutAnOpenerADocumentStartsNothing) {
    const test::EnvironmentVariable bare("PATH", folder.Path().c_str());
    EXPECT_FALSE(Open(folder.Write("notes.txt", "text")));
    EXPECT_FALSE(Open("https://printer.example/"));
}

TEST_F(ShellPosix, AProgramOfTheCurrentFolderIsNotOnThePath) {
    const test::EnvironmentVariable current("PATH", ":.:");
    EXPECT_FALSE(Open("sh"));
}

TEST_F(ShellPosix, AStartedProgramLeavesNoZombie) {
    MakeProgram("tool", "echo $$");
    EXPECT_TRUE(Open(folder.Path("tool")));
    const std::string process = "/proc/" + std::to_string(std::stoi(Told("tool")));
    EXPECT_TRUE(Await([&] { return access(process.c_str(), F_OK) != 0; }));
}

// The program blocks the signals that end it in all its threads; what it starts must not be deaf to them.
TEST_F(ShellPosix, SignalsOfAStartedProgramAreAsTheSystemMadeThem) {
    // Read by the interpreter itself: while it waits for another program it blocks signals of its own accord.
    MakeProgram("tool", "while read -r name value; do case $name in SigBlk: | SigIgn:) echo $value ;; esac; done"
                        " < /proc/$$/status");
    sigset_t blocked, before;
    sigemptyset(&blocked);
    for (const int number : {SIGINT, SIGTERM, SIGUSR1}) sigaddset(&blocked, number);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = signal(SIGPIPE, SIG_IGN);
    EXPECT_TRUE(Open(folder.Path("tool")));
    signal(SIGPIPE, handler);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    // Signals 32 and 33 belong to the C library, which sees to them itself.
    constexpr unsigned long long kOfTheLibrary = 3ull << 31;
    std::istringstream masks(Told("tool"));
    unsigned long long mask = 0;
    for (const char* kind : {"blocked", "ignored"}) {
        ASSERT_TRUE(masks >> std::hex >> mask) << kind;
        EXPECT_EQ(mask & ~kOfTheLibrary, 0u) << kind;
    }
}

TEST_F(ShellPosix, AStartedProgramInheritsNoFile) {
    constexpr int kNumber = 200;
    MakeProgram("tool", "for file in 0 2 200; do readlink /proc/$$/fd/$file || echo closed; done");
    const int inherited = open("/dev/zero", O_RDONLY);
    ASSERT_EQ(dup2(inherited, kNumber), kNumber);
    EXPECT_TRUE(Open(folder.Path("tool")));
    close(kNumber);
    close(inherited);
    EXPECT_EQ(Told("tool"), "/dev/null\n/dev/null\nclosed\n");
}

// A Ctrl-C in our terminal is not for the programs that we started.
TEST_F(ShellPosix, AStartedProgramHasASessionOfItsOwn) {
    MakeProgram("tool", "cat /proc/$$/stat");
    EXPECT_TRUE(Open(folder.Path("tool")));
    const std::string told = Told("tool");
    std::istringstream fields(told.substr(told.rfind(')') + 1));
    std::string state, parent, group, session;
    fields >> state >> parent >> group >> session;
    EXPECT_EQ(session, told.substr(0, told.find(' ')));
}

TEST_F(ShellPosix, ParametersAreSplitAsAWindowsCommandLineIs) {
    EXPECT_EQ(SystemShell().ParameterPieces(R"(-a "%VDLW_HOST% x" b)"),
              (std::vector<std::string>{"-a", "%VDLW_HOST% x", "b"}));
    EXPECT_TRUE(SystemShell().ParameterPieces("").empty());
}

}  // namespace
}  // namespace vardel

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "platform/Process.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

// Another process of the same user that claims a name and then lives until it is ended.
class OtherProcess {
  public:
    explicit OtherProcess(const char* name) {
        int answer[2];
        if (pipe(answer) != 0) return;
        process_ = fork();
        if (process_ == 0) {
            const char taken = SystemProcess().ClaimName(name) ? 'y' : 'n';
            if (write(answer[1], &taken, 1) == 1) pause();
            _exit(0);
        }
        close(answer[1]);
        char taken = '?';
        answered_ = read(answer[0], &taken, 1) == 1;
        foundTaken_ = taken == 'y';
        close(answer[0]);
    }
    ~OtherProcess() { End(); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    bool Claimed() const { return answered_ && !foundTaken_; }
    bool FoundTaken() const { return answered_ && foundTaken_; }
    void End() {
        if (process_ <= 0) return;
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }

  private:
    pid_t process_ = -1;
    bool answered_ = false;
    bool foundTaken_ = false;
};

class ProcessPosix : public testing::Test {
  protected:
    static bool Claim(const char* name) { return SystemProcess().ClaimName(name); }
    test::TestFolder runtime;
    test::EnvironmentVariable environment{"XDG_RUNTIME_DIR", runtime.Path().c_str()};
};

TEST_F(ProcessPosix, ANameHeldByALivingProcessIsTaken) {
    OtherProcess other("Held");
    ASSERT_TRUE(other.Claimed());
    EXPECT_TRUE(Claim("Held"));
    EXPECT_TRUE(Claim("Held"));
}

TEST_F(ProcessPosix, ANameIsFreeAgainWhenItsHolderDied) {
    OtherProcess other("Freed");
    ASSERT_TRUE(other.Claimed());
    EXPECT_TRUE(Claim("Freed"));
    other.End();
    EXPECT_FALSE(Claim("Freed"));
}

TEST_F(ProcessPosix, AFreeNameIsClaimedForThisProcess) {
    // Claimed through a fresh process each, since a child shares its parent's claims.
    OtherProcess first("Mine");
    ASSERT_TRUE(first.Claimed());
    OtherProcess second("Mine");
    EXPECT_TRUE(second.FoundTaken());
}

TEST_F(ProcessPosix, ThisProcessMeetsNoOtherInItsOwnClaim) {
    EXPECT_FALSE(Claim("Own"));
    EXPECT_FALSE(Claim("Own"));
}

TEST_F(ProcessPosix, NamesAreApart) {
    OtherProcess other("One");
    ASSERT_TRUE(other.Claimed());
    EXPECT_FALSE(Claim("Two"));
}

TEST_F(ProcessPosix, APlantedLinkIsNotFollowedAndDoesNotBarTheStart) {
    const std::string victim = runtime.Path("victim");
    ASSERT_EQ(symlink(victim.c_str(), runtime.Path("Planted.lock").c_str()), 0);
    EXPECT_FALSE(Claim("Planted"));
    struct stat status;
    EXPECT_NE(stat(victim.c_str(), &status), 0) << "the link's target was made";
}

TEST_F(ProcessPosix, AFileWithASecondNameIsNotUsed) {
    const std::string victim = runtime.Path("victim");
    close(open(victim.c_str(), O_CREAT | O_WRONLY, 0600));
    ASSERT_EQ(link(victim.c_str(), runtime.Path("Linked.lock").c_str()), 0);
    OtherProcess other("Linked");
    EXPECT_TRUE(other.Claimed());
    EXPECT_FALSE(Claim("Linked"));
}

TEST_F(ProcessPosix, ASeparatorInANameLeadsToNoOtherFolder) {
    EXPECT_FALSE(Claim("../escape"));
    struct stat status;
    EXPECT_EQ(stat(runtime.Path(".._escape.lock").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(ProcessPosix, TheFileIsClosedOnStartingAProgram) {
    EXPECT_FALSE(Claim("Inherited"));
    // The lock must not live on in a started program, which knows nothing of it.
    struct stat lock;
    ASSERT_EQ(stat(runtime.Path("Inherited.lock").c_str(), &lock), 0);
    bool seen = false;
    for (int descriptor = 3; descriptor < 256; ++descriptor) {
        struct stat status;
        if (fstat(descriptor, &status) != 0 || status.st_ino != lock.st_ino || status.st_dev != lock.st_dev)
            continue;
        seen = true;
        EXPECT_TRUE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_TRUE(seen);
}

TEST(ProcessPosixFallback, WithoutARuntimeFolderTheFileBearsTheUsersNumber) {
    const test::EnvironmentVariable environment("XDG_RUNTIME_DIR", nullptr);
    const std::string name = "vardel-test-" + std::to_string(getpid());
    const std::string path = "/tmp/." + name + "-" + std::to_string(geteuid()) + ".lock";
    EXPECT_FALSE(SystemProcess().ClaimName(name.c_str()));
    struct stat status;
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(unlink(path.c_str()), 0);
}

}  // namespace
}  // namespace vardel

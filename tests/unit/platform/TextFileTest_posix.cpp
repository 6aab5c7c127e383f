#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/TextFile.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

struct TextFilePosix : testing::Test {
    struct stat Status(const char* name) {
        struct stat status {};
        EXPECT_EQ(lstat(folder.Path(name).c_str(), &status), 0) << name;
        return status;
    }
    test::TestFolder folder;
};

// For the length of its life no file of this process may grow past some bytes.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler_ = signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(TextFilePosix, AWriteThatBreaksOffLeavesTheOldContent) {
    folder.Write("file", "the old report");
    bool written;
    {
        const FullDisk full(1000);
        written = WriteTextFile(folder.Path("file"), std::string(5000, 'x'));
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(folder.Read("file"), "the old report");
    EXPECT_NE(access(folder.Path("vardelwatch.part").c_str(), F_OK), 0);
}

TEST_F(TextFilePosix, AReaderOfTheOldFileKeepsIt) {
    folder.Write("file", "old");
    const int reader = open(folder.Path("file").c_str(), O_RDONLY);
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "new"));
    char text[4] = "";
    EXPECT_EQ(read(reader, text, 3), 3);
    EXPECT_STREQ(text, "old");
    close(reader);
}

TEST_F(TextFilePosix, TheRightsOfTheOldFileStay) {
    folder.Write("file", "old");
    chmod(folder.Path("file").c_str(), 0640);
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "new"));
    EXPECT_EQ(Status("file").st_mode & 07777, 0640u);
    EXPECT_EQ(folder.Read("file"), "new");
}

TEST_F(TextFilePosix, TheFileBehindALinkIsReplaced) {
    folder.Write("behind/file", "old");
    ASSERT_EQ(symlink("behind/file", folder.Path("link").c_str()), 0);
    EXPECT_TRUE(WriteTextFile(folder.Path("link"), "new"));
    EXPECT_TRUE(S_ISLNK(Status("link").st_mode));
    EXPECT_EQ(folder.Read("behind/file"), "new");
}

TEST_F(TextFilePosix, AFileOfTwoNamesKeepsBoth) {
    folder.Write("file", "a longer old text");
    ASSERT_EQ(link(folder.Path("file").c_str(), folder.Path("other").c_str()), 0);
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "new"));
    EXPECT_EQ(folder.Read("other"), "new");
}

TEST_F(TextFilePosix, APipeThatNobodyReadsHoldsNobodyUp) {
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(WriteTextFile(folder.Path("pipe"), "text"));
    std::string text;
    EXPECT_FALSE(ReadTextFile(folder.Path("pipe"), text));
    EXPECT_TRUE(S_ISFIFO(Status("pipe").st_mode));
}

TEST_F(TextFilePosix, ADeviceIsNoFileToRead) {
    std::string text;
    EXPECT_FALSE(ReadTextFile("/dev/zero", text));
}

}  // namespace
}  // namespace vardel

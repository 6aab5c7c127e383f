// The log on a disk that is full.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>

#include "tests/unit/support/TestFolder.h"
#include "watchers/EventLogFile.h"

namespace vardel {

namespace {

// Files of this process may not grow past `bytes` for the life of the object.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        oldHandler_ = signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        signal(SIGXFSZ, oldHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit old_{};
    void (*oldHandler_)(int);
};

void Batch(EventLogFile& file, const std::string& line) {
    file.Open();
    file.Write(line, 0);
    file.Close();
}

TEST(EventLogOnAFullDisk, LosesItsLinesAndGoesOn) {
    test::TestFolder folder;
    std::filesystem::create_symlink("/dev/full", folder.Path("vdl-events.log"));
    EventLogFile file(folder.Path("vdl-events.log"));
    file.CreateIfMissing();
    Batch(file, "lost\n");
    Batch(file, std::string(100'000, 'x') + "\n");
    std::filesystem::remove(folder.Path("vdl-events.log"));
    Batch(file, "kept\n");
    EXPECT_EQ(folder.Read("vdl-events.log"), "kept\n");
}

TEST(EventLogOnAFullDisk, KeepsWhatFittedAndAppendsWhenThereIsRoomAgain) {
    test::TestFolder folder;
    folder.Write("vdl-events.log", "old\n");
    EventLogFile file(folder.Path("vdl-events.log"));
    {
        FileSizeLimit full(6);
        Batch(file, "lost\n");
        Batch(file, "lost too\n");
    }
    Batch(file, "\nkept\n");
    EXPECT_EQ(folder.Read("vdl-events.log"), "old\nlo\nkept\n");
}

}  // namespace

}  // namespace vardel

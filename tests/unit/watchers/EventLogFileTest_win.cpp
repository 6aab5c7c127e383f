// The log while another program keeps it locked, as editors and scanners on Windows do.
#include <gtest/gtest.h>

#include "platform/WindowsApi.h"
#include "tests/unit/support/TestFolder.h"
#include "watchers/EventLogFile.h"

namespace vardel {

namespace {

void Batch(EventLogFile& file, const std::string& line) {
    file.Open();
    file.Write(line, 0);
    file.Close();
}

TEST(LockedEventLog, DropsTheLinesOfTheBatchAndGoesOnAfterwards) {
    test::TestFolder folder;
    const std::string path = folder.Write("vdl-events.log", "old\r\n");
    EventLogFile file(path);
    const HANDLE lock =
        CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    file.CreateIfMissing();
    Batch(file, "dropped\n");
    CloseHandle(lock);
    Batch(file, "kept\n");
    EXPECT_EQ(folder.Read("vdl-events.log"), "old\r\nkept\r\n");
}

}  // namespace

}  // namespace vardel

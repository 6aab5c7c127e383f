#include "watchers/EventLogFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {

namespace {

using test::TestFolder;

constexpr const char* kLog = "vdl-events.log";

// What text mode makes of "\n".
const std::string kLineEnd = std::filesystem::path::preferred_separator == '\\' ? "\r\n" : "\n";

std::string LineOf(std::size_t length) {
    return std::string(length - 1, 'x') + "\n";
}

std::string OnDisk(const std::string& line) {
    return line.substr(0, line.size() - 1) + kLineEnd;
}

TEST(EventLine, JoinsFiveColumnsWithInfoBeforeHost) {
    EXPECT_EQ(FormEventLine({.timeOfDay = "12:34:56",
                             .kind = "Share accessed from remote",
                             .info = "C$",
                             .host = "WS1",
                             .text = "alice"}),
              "12:34:56 | Share accessed from remote | C$ | WS1 | alice\n");
}

TEST(EventLine, EmptyColumnsLeaveTheirSeparators) {
    EXPECT_EQ(
        FormEventLine({.timeOfDay = "12:34:56", .kind = "New host found", .info = "10.0.0.5", .host = "nas"}),
        "12:34:56 | New host found | 10.0.0.5 | nas | \n");
    EXPECT_EQ(FormEventLine(EventLogColumns{}), " |  |  |  | \n");
}

TEST(EventLine, OfARecordHasItsLocalTimeAndItsKindsText) {
    test::TestServices system;
    VardelData data(system.services);
    EventRecord event;
    event.kind = 5;
    event.time = 1'700'000'000;
    event.info = "10.0.0.5";
    event.host = "nas";
    char time[kTimeOfDaySize];
    FormatTimeOfDay(event.time, time);
    EXPECT_EQ(FormEventLine(event, data), std::string(time) + " | New host found | 10.0.0.5 | nas | \n");
}

TEST(EventLine, TextFromTheNetworkIsNoFormat) {
    test::TestServices system;
    VardelData data(system.services);
    EventRecord event;
    event.kind = 10;
    event.host = "10.0.0.9";
    event.text = "%s%n%d | <13>\\n";
    const std::string line = FormEventLine(event, data);
    EXPECT_EQ(line.substr(line.find(" | ")), " | Syslog notification |  | 10.0.0.9 | %s%n%d | <13>\\n\n");
}

TEST(EventLine, CutsTheKindsTextAt199Characters) {
    test::TestServices system;
    system.strings.texts[137] = std::string(300, 'k');
    VardelData data(system.services);
    EventRecord event;
    event.kind = 1;
    const std::string line = FormEventLine(event, data);
    EXPECT_EQ(line.substr(8), " | " + std::string(199, 'k') + " |  |  | \n");
}

TEST(EventLine, TakesLongTextsWhole) {
    test::TestServices system;
    VardelData data(system.services);
    EventRecord event;
    event.kind = 10;
    event.text = std::string(5000, 't').c_str();
    const std::string line = FormEventLine(event, data);
    EXPECT_EQ(line.size(), 8 + std::string(" | Syslog notification |  |  | \n").size() + 5000);
}

TEST(EventLogLimit, CountsTheLineAndTheFile) {
    EXPECT_TRUE(FitsInEventLog(24, 1000, 1));
    EXPECT_FALSE(FitsInEventLog(25, 1000, 1));
    EXPECT_TRUE(FitsInEventLog(1024, 0, 1));
    EXPECT_FALSE(FitsInEventLog(1, 1024, 1));
    EXPECT_TRUE(FitsInEventLog(1, 2047, 2));
}

TEST(EventLogLimit, NoneAtZeroOrBelow) {
    EXPECT_TRUE(FitsInEventLog(100, 1'000'000'000, 0));
    EXPECT_TRUE(FitsInEventLog(100, 1'000'000'000, -1));
}

TEST(EventLogLimit, LargeLimitsDoNotWrap) {
    EXPECT_TRUE(FitsInEventLog(100, 3'000'000'000, 4 * 1024 * 1024));
    EXPECT_FALSE(FitsInEventLog(1, i64{2147483647} * 1024, 2147483647));
}

TEST(EventLogPath, LiesInTheLocalApplicationData) {
    test::ScriptedFolders folders;
    folders.localApplicationData = "C:\\Users\\u\\AppData\\Local";
    folders.separator = '\\';
    EXPECT_EQ(EventLogPath(folders), "C:\\Users\\u\\AppData\\Local\\vdl-events.log");
    folders.localApplicationData = "";
    EXPECT_EQ(EventLogPath(folders), "");
}

class EventLog : public testing::Test {
  protected:
    void Batch(const std::vector<std::string>& lines, i32 limitKb) {
        file.Open();
        for (const std::string& line : lines) file.Write(line, limitKb);
        file.Close();
    }
    std::string Content() { return folder.Read(kLog); }

    TestFolder folder;
    EventLogFile file{folder.Path(kLog)};
};

TEST_F(EventLog, IsCreatedEmptyAndKeptWhenItIsThere) {
    file.CreateIfMissing();
    EXPECT_TRUE(std::filesystem::exists(folder.Path(kLog)));
    EXPECT_EQ(Content(), "");
    folder.Write(kLog, "old");
    file.CreateIfMissing();
    EXPECT_EQ(Content(), "old");
}

TEST_F(EventLog, AppendsWithTheSystemsLineEnd) {
    folder.Write(kLog, "old" + kLineEnd);
    Batch({"one\n", "two\n"}, 0);
    Batch({"three\n"}, 0);
    EXPECT_EQ(Content(), "old" + kLineEnd + "one" + kLineEnd + "two" + kLineEnd + "three" + kLineEnd);
}

TEST_F(EventLog, TakesTheLineThatJustFits) {
    const std::string old(1000, 'o');
    folder.Write(kLog, old);
    Batch({LineOf(24)}, 1);
    EXPECT_EQ(Content(), old + OnDisk(LineOf(24)));
}

TEST_F(EventLog, DropsTheLineThatDoesNotFitAndTheRestOfItsBatch) {
    const std::string old(1000, 'o');
    folder.Write(kLog, old);
    Batch({LineOf(25), LineOf(3)}, 1);
    EXPECT_EQ(Content(), old);  // never emptied
}

TEST_F(EventLog, CountsTheLinesOfTheBatch) {
    folder.Write(kLog, std::string(1000, 'o'));
    Batch({LineOf(20), LineOf(5), LineOf(4)}, 1);
    EXPECT_EQ(Content(), std::string(1000, 'o') + OnDisk(LineOf(20)));
}

TEST_F(EventLog, ShorterLineStillFitsInALaterBatch) {
    folder.Write(kLog, std::string(1000, 'o'));
    Batch({LineOf(25)}, 1);
    Batch({LineOf(10)}, 1);
    EXPECT_EQ(Content(), std::string(1000, 'o') + OnDisk(LineOf(10)));
}

TEST_F(EventLog, GrowsWithoutALimit) {
    const std::string old(1'000'000, 'o');
    folder.Write(kLog, old);
    Batch({LineOf(25)}, 0);
    Batch({LineOf(26)}, -5);
    EXPECT_EQ(Content(), old + OnDisk(LineOf(25)) + OnDisk(LineOf(26)));
}

TEST_F(EventLog, LimitThatChangesWithinABatchHoldsFromThere) {
    folder.Write(kLog, std::string(1024, 'o'));
    file.Open();
    file.Write(LineOf(10), 0);
    file.Write(LineOf(11), 1);
    file.Write(LineOf(12), 0);  // the stream is closed for the rest of the batch
    file.Close();
    EXPECT_EQ(Content(), std::string(1024, 'o') + OnDisk(LineOf(10)));
}

TEST_F(EventLog, FailedOpenDropsTheBatchAndNoMore) {
    std::filesystem::create_directories(folder.Path(kLog));
    file.CreateIfMissing();
    Batch({LineOf(10)}, 0);
    Batch({LineOf(10)}, 1);
    std::filesystem::remove(folder.Path(kLog));
    Batch({LineOf(11)}, 1);
    EXPECT_EQ(Content(), OnDisk(LineOf(11)));
}

TEST_F(EventLog, FolderThatIsGoneDropsTheBatch) {
    EventLogFile deep(folder.Path("data/vdl-events.log"));
    deep.CreateIfMissing();
    EXPECT_TRUE(std::filesystem::exists(folder.Path("data/vdl-events.log")));
    std::filesystem::remove_all(folder.Path("data"));
    deep.Open();
    deep.Write(LineOf(10), 0);
    deep.Close();
    EXPECT_FALSE(std::filesystem::exists(folder.Path("data")));
}

TEST_F(EventLog, MissingFoldersAreMade) {
    EventLogFile deep(folder.Path("home/.local/share/vdl-events.log"));
    deep.CreateIfMissing();
    EXPECT_TRUE(std::filesystem::exists(folder.Path("home/.local/share/vdl-events.log")));
}

TEST_F(EventLog, WithoutAPathNothingIsOpened) {
    EventLogFile none("");
    none.CreateIfMissing();
    none.Open();
    none.Write(LineOf(10), 0);
    none.Write(LineOf(10), 1);
    none.Close();
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace

}  // namespace vardel

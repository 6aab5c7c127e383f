#include <gtest/gtest.h>

#include <ctime>
#include <regex>
#include <sstream>

#include "tests/unit/support/ExamplePlugins.h"
#include "tests/unit/support/UdpReceiver.h"

namespace vardel {
namespace {

using test::ExamplePluginTest;
using test::UdpReceiver;
using Lines = std::vector<std::string>;

class WakeOnLan : public ExamplePluginTest {};
class MacColumns : public ExamplePluginTest {};
class WatchDiary : public ExamplePluginTest {
  protected:
    // Without the moments.
    Lines Diary(const std::string& name = "watch_diary.log") const {
        Lines notes;
        std::istringstream text(folder.Read(name));
        for (std::string line; std::getline(text, line);) {
            while (!line.empty() && line.back() == '\r') line.pop_back();
            notes.push_back(line.size() > 20 ? line.substr(20) : line);
        }
        return notes;
    }
};

// Wake on LAN

TEST_F(WakeOnLan, SendsTheMagicPacketOfTheClickedHost) {
    UdpReceiver lan;
    LoadedPlugin* plugin = Load("wake_on_lan", "address = 127.0.0.1\nport = " + lan.Port() + "\n");
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->info.type, PLUGIN_TYPE_VIEW);
    ASSERT_TRUE(RunPluginOnHost(*plugin, nullptr, HostText("10.0.0.5", "00:1a:2b:3c:4d:fe", "nas")));
    std::string expected(6, '\xff');
    for (int repeat = 0; repeat < 16; ++repeat) expected += std::string("\x00\x1a\x2b\x3c\x4d\xfe", 6);
    EXPECT_EQ(lan.Next(), expected);
    EXPECT_TRUE(lan.IsSilent());
}

// MAC columns

TEST_F(MacColumns, DefinesTwo) {
    LoadedPlugin* plugin = Load("mac_columns");
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->info.type, PLUGIN_TYPE_COLUMNS);
    const std::vector<PluginColumn> columns = DefinePluginColumns(*plugin);
    ASSERT_EQ(columns.size(), 2u);
    EXPECT_EQ(columns[0].title, "MAC address is");
    EXPECT_EQ(columns[1].title, "First seen");
    for (const PluginColumn& column : columns) EXPECT_GT(column.width, 0);
}

TEST_F(MacColumns, TellsWhetherTheAddressIsMadeUp) {
    LoadedPlugin* plugin = Load("mac_columns");
    ASSERT_NE(plugin, nullptr);
    const auto kind = [&](const char* mac) {
        return PluginCellText(*plugin, 0, HostText("10.0.0.5", mac, ""));
    };
    EXPECT_EQ(kind("00:1a:2b:3c:4d:5e"), "maker's own");
    EXPECT_EQ(kind("02:00:00:00:00:01"), "randomised");
    EXPECT_EQ(kind("da:a1:19:00:00:01"), "randomised");
    EXPECT_EQ(kind("fc:00:00:00:00:01"), "maker's own");
    EXPECT_EQ(kind(""), "");
    EXPECT_EQ(kind("not known"), "");
}

std::string MomentText(std::time_t moment) {
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", std::localtime(&moment));
    return text;
}

TEST_F(MacColumns, KeepsTheFirstMomentOfAnAddressFromRunToRun) {
    folder.Write("mac_columns.seen", "10.0.0.5 1700000000\n");
    LoadedPlugin* plugin = Load("mac_columns");
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(PluginCellText(*plugin, 1, HostText("10.0.0.5", "", "")), MomentText(1'700'000'000));
    const std::time_t before = std::time(nullptr);
    const std::string asked = PluginCellText(*plugin, 1, HostText("10.0.0.6", "", ""));
    EXPECT_TRUE(asked == MomentText(before) || asked == MomentText(std::time(nullptr)));
    EXPECT_EQ(PluginCellText(*plugin, 1, HostText("", "", "")), "");
    Unload();
    std::istringstream kept(folder.Read("mac_columns.seen"));
    std::string first, second;
    long long firstMoment = 0, secondMoment = 0;
    kept >> first >> firstMoment >> second >> secondMoment;
    EXPECT_EQ(first, "10.0.0.5");
    EXPECT_EQ(firstMoment, 1'700'000'000);
    EXPECT_EQ(second, "10.0.0.6");
    EXPECT_GE(secondMoment, before);
    plugin = LoadAgain();
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(PluginCellText(*plugin, 1, HostText("10.0.0.6", "", "")), asked);
}

TEST_F(MacColumns, WritesNothingWhereNothingWasAsked) {
    ASSERT_NE(Load("mac_columns"), nullptr);
    Unload();
    EXPECT_FALSE(std::filesystem::exists(folder.Path("mac_columns.seen")));
}

TEST_F(MacColumns, ComparesInTheDirectionOfTheList) {
    folder.Write("mac_columns.seen", "10.0.0.5 100\n10.0.0.6 200\n");
    LoadedPlugin* plugin = Load("mac_columns");
    ASSERT_NE(plugin, nullptr);
    const PluginHostText maker = HostText("10.0.0.6", "00:1a:2b:3c:4d:5e", "");
    const PluginHostText madeUp = HostText("10.0.0.5", "02:00:00:00:00:01", "");
    EXPECT_LT(ComparePluginHosts(*plugin, 0, 1, maker, madeUp), 0);
    EXPECT_GT(ComparePluginHosts(*plugin, 0, 0, maker, madeUp), 0);
    EXPECT_EQ(ComparePluginHosts(*plugin, 0, 1, maker, maker), 0);
    EXPECT_GT(ComparePluginHosts(*plugin, 1, 1, maker, madeUp), 0);  // seen later
    EXPECT_LT(ComparePluginHosts(*plugin, 1, 0, maker, madeUp), 0);
}

// Watch diary

TEST_F(WatchDiary, KeepsNothingUntilItIsSwitchedOn) {
    LoadedPlugin* plugin = Load("watch_diary");
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->info.type, PLUGIN_TYPE_ALERT);
    EXPECT_NE(plugin->info.Configure, nullptr);
    EXPECT_NE(plugin->info.About, nullptr);
    Unload();
    EXPECT_FALSE(std::filesystem::exists(folder.Path("watch_diary.log")));
}

TEST_F(WatchDiary, NotesBeginAndEndOfEachWatch) {
    ASSERT_NE(Load("watch_diary", "keep=yes\n"), nullptr);
    EXPECT_EQ(Diary(), Lines{"the watch began"});
    Unload();
    ASSERT_NE(LoadAgain(), nullptr);
    Unload();
    EXPECT_EQ(Diary(), (Lines{"the watch began", "the watch ended", "the watch began", "the watch ended"}));
    EXPECT_TRUE(std::regex_search(folder.Read("watch_diary.log"),
                                  std::regex("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d the")));
}

TEST_F(WatchDiary, TellsOfAWatchThatDidNotEndInOrder) {
    folder.Write("own.log", "2026-01-01 00:00:00 the watch began\n");
    const std::string path = std::filesystem::absolute(folder.Path("own.log")).string();
    ASSERT_NE(Load("watch_diary", "# where to\nkeep=yes\nfile=" + path + "\n"), nullptr);
    Unload();
    EXPECT_EQ(Diary("own.log"), (Lines{"the watch began", "the watch before did not end in order",
                                       "the watch began", "the watch ended"}));
}

}  // namespace
}  // namespace vardel

// What the example plugins tell the user: lines of standard error here, boxes elsewhere.
#include <gtest/gtest.h>

#include "tests/unit/support/ExamplePlugins.h"
#include "tests/unit/support/UdpReceiver.h"

namespace vardel {
namespace {

class ExamplePluginsPosix : public test::ExamplePluginTest {
  protected:
    template <class Call>
    static std::string Told(Call call) {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(ExamplePluginsPosix, TheDiaryIsSwitchedOnAndOffByItsConfiguration) {
    LoadedPlugin* plugin = Load("watch_diary");
    ASSERT_NE(plugin, nullptr);
    const auto press = [&] { ConfigurePlugin(*plugin, nullptr); };
    EXPECT_EQ(Told(press),
              "Watch diary: The diary is kept from now on: " + folder.Path("watch_diary.log") + "\n");
    EXPECT_EQ(folder.Read("watch_diary.ini"), "keep=yes\n");
    EXPECT_NE(folder.Read("watch_diary.log").find("the watch began\n"), std::string::npos);
    EXPECT_EQ(Told(press), "Watch diary: The diary is no longer kept.\n");
    EXPECT_EQ(folder.Read("watch_diary.ini"), "keep=no\n");
    EXPECT_TRUE(folder.Read("watch_diary.log").ends_with("the watch ended\n"));
}

TEST_F(ExamplePluginsPosix, EachTellsAboutItself) {
    const char* const names[][2] = {{"watch_diary", "Watch diary: "},
                                    {"wake_on_lan", "Wake on LAN: "},
                                    {"mac_columns", "MAC columns: "},
                                    {"syslog_forwarder", "Syslog forwarder: "}};
    for (const auto& [name, title] : names) {
        LoadedPlugin* plugin = Load(name);
        ASSERT_NE(plugin, nullptr);
        EXPECT_TRUE(Told([&] { EXPECT_TRUE(AboutPlugin(*plugin, nullptr)); }).starts_with(title)) << name;
        Unload();
        std::filesystem::remove(folder.Path(std::string(name) + SystemModules().Ending()));
    }
}

TEST_F(ExamplePluginsPosix, AHostWithoutACardsAddressIsNotWoken) {
    test::UdpReceiver lan;
    LoadedPlugin* plugin = Load("wake_on_lan", "address=127.0.0.1\nport=" + lan.Port() + "\n");
    ASSERT_NE(plugin, nullptr);
    for (const char* mac :
         {"", "00:00:00:00:00:00", "00:1a:2b:3c:4d", "00:1a:2b:3c:4d:5e:6f", "00:1a:2b:3c:4d:zz"}) {
        EXPECT_EQ(Told([&] { RunPluginOnHost(*plugin, nullptr, HostText("10.0.0.5", mac, "")); }),
                  "Wake on LAN: The card's address of 10.0.0.5 is not known.\n")
            << mac;
    }
    EXPECT_TRUE(lan.IsSilent());
}

TEST_F(ExamplePluginsPosix, TheMenuItemOfTheColumnsTellsBoth) {
    folder.Write("mac_columns.seen", "10.0.0.5 1700000000\n");
    LoadedPlugin* plugin = Load("mac_columns");
    ASSERT_NE(plugin, nullptr);
    const std::string told =
        Told([&] { RunPluginOnHost(*plugin, nullptr, HostText("10.0.0.5", "02:00:00:00:00:01", "")); });
    EXPECT_TRUE(
        told.starts_with("MAC columns: 10.0.0.5: the MAC address is randomised, first seen 2023-11-1"))
        << told;
}

TEST_F(ExamplePluginsPosix, TheForwarderTellsWhereItsMessagesGo) {
    LoadedPlugin* plugin = Load("syslog_forwarder", "server=collector.example\nport=5140\n");
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(Told([&] { ConfigurePlugin(*plugin, nullptr); }),
              "Syslog forwarder: Notifications go to collector.example, port 5140. To change this, edit " +
                  folder.Path("syslog_forwarder.ini") + " and start the program anew.\n");
}

}  // namespace
}  // namespace vardel

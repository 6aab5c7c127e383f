#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/DesktopNotice.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

// A notify-send of the test's own, which writes down its words, each ended by "|" and a line feed.
struct DesktopNoticePosix : testing::Test {
    void Install(const std::string& script) {
        chmod(folder.Write("notify-send", "#!/bin/sh\n" + script).c_str(), 0700);
    }
    void InstallRecorder() {
        Install("printf '%s|\\n' \"$@\" > '" + folder.Path("writing") + "'\nmv '" + folder.Path("writing") + "' '" +
                folder.Path("words") + "'\n");
    }
    bool Comes(const std::string& name) {
        for (int tries = 0; tries < 500; ++tries) {
            if (std::filesystem::exists(folder.Path(name))) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    void NothingComes() {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_FALSE(std::filesystem::exists(folder.Path("words")));
    }

    test::TestFolder folder;
    test::EnvironmentVariable path{"PATH", (folder.Path() + ":/usr/bin:/bin").c_str()};
    test::EnvironmentVariable bus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"};
    test::EnvironmentVariable runtime{"XDG_RUNTIME_DIR", folder.Path().c_str()};
};

TEST_F(DesktopNoticePosix, TheTextsAreArgumentsAndNothingElse) {
    InstallRecorder();
    SystemDesktopNotice().Show("Vardelwatch", "--icon=x $(touch '" + folder.Path("owned") + "'); `id` \"q\"\n\t<b>");
    ASSERT_TRUE(Comes("words"));
    EXPECT_EQ(folder.Read("words"), "--app-name=Vardelwatch|\n--|\nVardelwatch|\n--icon=x $(touch '" +
                                        folder.Path("owned") + "'); `id` \"q\"\n\t&lt;b&gt;|\n");
    EXPECT_FALSE(std::filesystem::exists(folder.Path("owned")));
}

TEST_F(DesktopNoticePosix, IsSilentWithoutASessionBus) {
    test::EnvironmentVariable none("DBUS_SESSION_BUS_ADDRESS", "");
    InstallRecorder();
    SystemDesktopNotice().Show("title", "text");
    NothingComes();
}

TEST_F(DesktopNoticePosix, IsSilentWithoutTheCommand) {
    test::EnvironmentVariable nowhere("PATH", folder.Path().c_str());
    SystemDesktopNotice().Show("title", "text");
    NothingComes();
}

TEST_F(DesktopNoticePosix, ManyThatHangAreNotJoinedByMore) {
    Install("echo x >> '" + folder.Path("count") + "'\nwhile [ ! -e '" + folder.Path("go") +
            "' ]; do sleep 0.02; done\n");
    for (int i = 0; i < 30; ++i) SystemDesktopNotice().Show("title", "text");
    ASSERT_TRUE(Comes("count"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_LE(folder.Read("count").size(), 8u * 2);
    // Once they have gone there is room again.
    folder.Write("go", "");
    InstallRecorder();
    for (int tries = 0; tries < 100 && !std::filesystem::exists(folder.Path("words")); ++tries) {
        SystemDesktopNotice().Show("title", "text");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_TRUE(std::filesystem::exists(folder.Path("words")));
}

}  // namespace
}  // namespace vardel

#include <gtest/gtest.h>

#include "platform/Folders.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"

namespace vardel {
namespace {

using test::EnvironmentVariable;

TEST(FoldersPosix, TakesTheDataFolderOfTheEnvironment) {
    const EnvironmentVariable data("XDG_DATA_HOME", "/somewhere/data//");
    EXPECT_EQ(SystemFolders().LocalApplicationData(), "/somewhere/data");
}

TEST(FoldersPosix, FallsBackOnTheHomeFolder) {
    const EnvironmentVariable data("XDG_DATA_HOME", nullptr);
    const EnvironmentVariable home("HOME", "/somewhere/home/");
    EXPECT_EQ(SystemFolders().LocalApplicationData(), "/somewhere/home/.local/share");
}

TEST(FoldersPosix, ARelativeDataFolderCountsAsNone) {
    const EnvironmentVariable data("XDG_DATA_HOME", "data");
    const EnvironmentVariable home("HOME", "/somewhere/home");
    EXPECT_EQ(SystemFolders().LocalApplicationData(), "/somewhere/home/.local/share");
}

TEST(FoldersPosix, WithoutAHomeInTheEnvironmentTheUserDatabaseTellsIt) {
    const EnvironmentVariable data("XDG_DATA_HOME", nullptr);
    const EnvironmentVariable home("HOME", nullptr);
    const std::string folder = SystemFolders().LocalApplicationData();
    EXPECT_TRUE(folder.ends_with("/.local/share")) << folder;
}

}  // namespace
}  // namespace vardel

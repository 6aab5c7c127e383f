#include "platform/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vardel {
namespace {

TEST(Folders, NamesTheRunningProgram) {
    const std::filesystem::path program = SystemFolders().ProgramPath();
    EXPECT_TRUE(program.is_absolute()) << program;
    EXPECT_TRUE(std::filesystem::is_regular_file(program)) << program;
    EXPECT_EQ(program.stem(), "unit_tests");
}

TEST(Folders, TheSeparatorIsTheOneOfThePaths) {
    EXPECT_NE(SystemFolders().ProgramPath().find(SystemFolders().Separator()), std::string::npos);
}

TEST(Folders, LocalApplicationDataIsAnAbsoluteFolderWithoutTrailingSeparator) {
    const std::string folder = SystemFolders().LocalApplicationData();
    ASSERT_FALSE(folder.empty());
    EXPECT_TRUE(std::filesystem::path(folder).is_absolute()) << folder;
    EXPECT_NE(folder.back(), SystemFolders().Separator());
}

}  // namespace
}  // namespace vardel

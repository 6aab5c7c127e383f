#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/Shell.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

TEST(ShellWindows, AProgramGetsItsParameterTextAsItStands) {
    const test::TestFolder folder;
    folder.Write("tell.cmd", "@echo [%*]> \"%~dp0told.part\"\r\n@ren \"%~dp0told.part\" told\r\n");
    EXPECT_TRUE(SystemShell().Execute(ShellVerb::Open, folder.Path("tell.cmd"), {R"(one "two three")"}));
    for (int tries = 0; tries < 400 && folder.Read("told").empty(); ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(folder.Read("told"), "[one \"two three\"]\r\n");
}

TEST(ShellWindows, ParametersAreOnePiece) {
    EXPECT_EQ(SystemShell().ParameterPieces(R"(-a "b c" d)"), (std::vector<std::string>{R"(-a "b c" d)"}));
    EXPECT_EQ(SystemShell().ParameterPieces(""), (std::vector<std::string>{""}));
}

TEST(ShellWindows, WhatIsNotThereStartsNothing) {
    const test::TestFolder folder;
    EXPECT_FALSE(SystemShell().Execute(ShellVerb::Open, "", {}));
    EXPECT_FALSE(SystemShell().Execute(ShellVerb::Open, folder.Path("gone.exe"), {"x"}));
}

}  // namespace
}  // namespace vardel

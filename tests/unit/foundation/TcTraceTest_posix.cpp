#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "foundation/TcTrace.h"
#include "platform/Folders.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/OwnDataFolder.h"

namespace vardel {
namespace {

TEST(TcTracePosix, WithoutAFileLinesGoToStandardError) {
    testing::internal::CaptureStderr();
    ASSERT_TRUE(TcTrace::SetupTracing(0, 1));
    EXPECT_TRUE(TcTrace::Trace("Vardel", "MainRun", "Create app", "x.cpp", 1, "day", 0));
    TcTrace::SetupTracing(0, 0);
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(text.ends_with(" Vardel::MainRun: Create app [x.cpp:1, day, 0]\n")) << text;
}

// In a process of its own: threads that traced before have taken their numbers for good.
TEST(TcTracePosix, ThreadsAreNumberedFromOneInTheOrderOfTheirFirstLine) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto trace = [](const char* step) { TcTrace::Trace("Vardel", "Steps", step, "x.cpp", 1, "day", 0); };
    const auto traceFromTwoThreads = [&] {
        TcTrace::SetupTracing(0, 1);
        trace("first");
        std::thread(trace, "second").join();
        trace("third");
        std::_Exit(0);
    };
    EXPECT_EXIT(traceFromTwoThreads(), testing::ExitedWithCode(0),
                "[0-9:]{8} 1 Vardel::Steps: first .*[0-9:]{8} 2 Vardel::Steps: second .*"
                "[0-9:]{8} 1 Vardel::Steps: third ");
}

TEST(TcTracePosix, AFileThatCannotBeWrittenLeavesTracingOff) {
    const test::EnvironmentVariable data("XDG_DATA_HOME", "/dev/null/no-folder");
    EXPECT_FALSE(TcTrace::SetupTracing(1, 1));
    EXPECT_FALSE(TcTrace::IsOn());
    EXPECT_FALSE(VARDEL_TRACE("Vardel", "MainRun", "Create app"));
}

TEST(TcTracePosix, ALineThatFindsTheDiskFullIsToldOf) {
    const test::OwnDataFolder folder;
    const std::string data = SystemFolders().LocalApplicationData();
    std::filesystem::create_directories(data);
    std::filesystem::create_symlink("/dev/full", data + "/" + kTraceFileName);
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    EXPECT_FALSE(TcTrace::Trace("Vardel", "MainRun", "Create app", "x.cpp", 1, "day", 0));
    TcTrace::SetupTracing(0, 0);
}

}  // namespace
}  // namespace vardel

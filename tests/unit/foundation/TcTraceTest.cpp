#include "foundation/TcTrace.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "platform/Folders.h"
#include "tests/unit/support/OwnDataFolder.h"

namespace vardel {
namespace {

class TcTraceFile : public testing::Test {
  protected:
    void TearDown() override {
        TcTrace::SetupTracing(0, 0);
        std::remove(Path().c_str());
    }
    static std::string Path() {
        return SystemFolders().LocalApplicationData() + SystemFolders().Separator() + kTraceFileName;
    }
    static std::vector<std::string> Lines() {
        std::ifstream file(Path());
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }
    test::OwnDataFolder folder;
};

// Time of day and number of the thread.
constexpr char kTime[] = "[0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]+ ";

TEST_F(TcTraceFile, ALineHoldsAllArguments) {
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    EXPECT_TRUE(
        TcTrace::Trace("Vardel", "MainRun", "Create app", "capture/Vardel.cpp", 123, "Jan  2 2024", 7));
    EXPECT_TRUE(
        TcTrace::TraceInt("Vardel", "MainRun", "Create SnifferThread - ID: ", -4711, "a.cpp", 9, "day", 0));
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(std::regex_match(
        lines[0], std::regex(std::string(kTime) +
                             R"(Vardel::MainRun: Create app \[capture/Vardel\.cpp:123, Jan  2 2024, 7\])")))
        << lines[0];
    EXPECT_TRUE(std::regex_match(
        lines[1], std::regex(std::string(kTime) +
                             R"(Vardel::MainRun: Create SnifferThread - ID: -4711 \[a\.cpp:9, day, 0\])")))
        << lines[1];
}

TEST_F(TcTraceFile, TheMacroNamesThePlaceFromTheProjectRoot) {
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    EXPECT_TRUE(VARDEL_TRACE("Vardel", "~Vardel", "exit sniffer thread"));
    EXPECT_TRUE(VARDEL_TRACE_INT("Vardel", "MainRun", "ID: ", 5u));
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find("Vardel::~Vardel: exit sniffer thread [tests/unit/foundation/TcTraceTest.cpp:"),
              std::string::npos)
        << lines[0];
    EXPECT_NE(lines[0].find(__DATE__), std::string::npos);
    EXPECT_NE(lines[1].find("ID: 5 ["), std::string::npos) << lines[1];
}

TEST_F(TcTraceFile, WritesNothingWhileOff) {
    int evaluated = 0;
    const auto message = [&] { return ++evaluated, "never"; };
    EXPECT_FALSE(TcTrace::IsOn());
    EXPECT_FALSE(VARDEL_TRACE("Vardel", "MainRun", message()));
    EXPECT_FALSE(VARDEL_TRACE_INT("Vardel", "MainRun", message(), 1));
    EXPECT_EQ(evaluated, 0);
    EXPECT_FALSE(TcTrace::Trace("a", "b", "c", "d", 1, "e", 0));
    EXPECT_FALSE(TcTrace::TraceInt("a", "b", "c", 1, "d", 1, "e", 0));
    EXPECT_TRUE(Lines().empty());
}

TEST_F(TcTraceFile, AFileAloneTurnsNothingOn) {
    EXPECT_TRUE(TcTrace::SetupTracing(1, 0));
    EXPECT_FALSE(TcTrace::IsOn());
    EXPECT_FALSE(std::ifstream(Path()).is_open());
}

TEST_F(TcTraceFile, BeginsAnewWithEachRun) {
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
        EXPECT_TRUE(VARDEL_TRACE_INT("Test", "Run", "run ", run));
        TcTrace::SetupTracing(0, 0);
    }
    ASSERT_EQ(Lines().size(), 1u);
    EXPECT_NE(Lines()[0].find("run 1"), std::string::npos);
}

TEST_F(TcTraceFile, ATextFromOutsideCannotForgeALine) {
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    EXPECT_TRUE(VARDEL_TRACE("Test", "Run", "one\r\ntwo\tthree%s%n"));
    ASSERT_EQ(Lines().size(), 1u);
    EXPECT_NE(Lines()[0].find("one  two three%s%n"), std::string::npos);
}

TEST_F(TcTraceFile, NullTextsCountAsEmpty) {
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    EXPECT_TRUE(TcTrace::Trace(nullptr, nullptr, nullptr, nullptr, 1, nullptr, 0));
    EXPECT_EQ(Lines().size(), 1u);
}

// What one thread of the next test writes; long, so that a torn line would show.
std::string MessageOf(int thread) {
    return "thread " + std::to_string(thread) + ' ' + std::string(200, static_cast<char>('a' + thread)) + ' ';
}

TEST_F(TcTraceFile, LinesOfManyThreadsAreNeverTorn) {
    constexpr int kThreads = 8, kLinesEach = 500;
    ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([thread] {
            const std::string message = MessageOf(thread);
            for (int i = 0; i < kLinesEach; ++i)
                TcTrace::TraceInt("Test", "Run", message.c_str(), i, "f", 1, "d", 0);
        });
    for (auto& thread : threads) thread.join();

    std::vector<int> next(kThreads, 0);
    const auto lines = Lines();
    for (const std::string& line : lines) {
        int hour, minute, second, number, thread = -1;
        ASSERT_EQ(std::sscanf(line.c_str(), "%2d:%2d:%2d %d Test::Run: thread %d", &hour, &minute, &second,
                              &number, &thread),
                  5)
            << line;
        ASSERT_TRUE(thread >= 0 && thread < kThreads) << line;
        // Each thread's lines stand whole and in their order.
        const std::string text =
            "Test::Run: " + MessageOf(thread) + std::to_string(next[thread]++) + " [f:1, d, 0]";
        ASSERT_EQ(line.substr(line.find("Test")), text);
    }
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kLinesEach));
}

TEST_F(TcTraceFile, MayBeTurnedOnAndOffWhileThreadsTrace) {
    std::atomic<bool> stop{false};
    std::thread tracer([&] {
        while (!stop) VARDEL_TRACE("Test", "Run", "step");
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(TcTrace::SetupTracing(1, 0));
        EXPECT_FALSE(VARDEL_TRACE("Test", "Run", "mine"));
        EXPECT_TRUE(TcTrace::SetupTracing(1, 1));
        EXPECT_TRUE(VARDEL_TRACE("Test", "Run", "mine"));
    }
    stop = true;
    tracer.join();
    const auto lines = Lines();
    EXPECT_FALSE(lines.empty());
    for (const std::string& line : lines) EXPECT_TRUE(line.ends_with(", 0]")) << line;
}

TEST_F(TcTraceFile, OnlyALineThatStandsInTheFileCountsAsTraced) {
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(TcTrace::SetupTracing(1, 1));
        std::atomic<bool> stop{false};
        std::atomic<std::size_t> traced{0};
        const auto trace = [&] {
            while (!stop)
                if (VARDEL_TRACE("Test", "Run", "step")) ++traced;
        };
        std::thread one(trace), other(trace);
        while (traced < 20) std::this_thread::yield();
        TcTrace::SetupTracing(0, 0);  // while they form their lines
        stop = true;
        one.join();
        other.join();
        ASSERT_EQ(Lines().size(), traced);
    }
}

}  // namespace
}  // namespace vardel

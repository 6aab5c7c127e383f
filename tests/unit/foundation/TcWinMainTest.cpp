#include "foundation/TcWinMain.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

class Application : public TcWinMain {
  public:
    using TcWinMain::TcWinMain;
    u32 MainRun() override { return 0; }
};

class TcWinMainTest : public testing::Test {
  protected:
    test::ScriptedProcess process;
    Application application{process};
};

TEST_F(TcWinMainTest, KeepsInstanceAndRawCommandLine) {
    const auto instance = reinterpret_cast<ModuleHandle>(0x400000);
    EXPECT_TRUE(application.MainInit(instance, nullptr, "-debug  -file", 1));
    EXPECT_EQ(application.GetInstance(), instance);
    EXPECT_STREQ(application.GetCmdLine(), "-debug  -file");
}

TEST_F(TcWinMainTest, HasAnEmptyCommandLineBeforeAndWithoutOne) {
    EXPECT_STREQ(application.GetCmdLine(), "");
    EXPECT_TRUE(application.MainInit(nullptr, nullptr, nullptr, 0));
    EXPECT_STREQ(application.GetCmdLine(), "");
    EXPECT_EQ(application.GetInstance(), nullptr);
}

TEST_F(TcWinMainTest, AnswersWhetherAnotherInstanceRuns) {
    EXPECT_FALSE(application.CheckRunningInstance("Vardelwatch"));
    process.anotherRuns = true;
    EXPECT_TRUE(application.CheckRunningInstance("Vardelwatch"));
    EXPECT_EQ(process.claimed, (std::vector<std::string>{"Vardelwatch", "Vardelwatch"}));
}

}  // namespace
}  // namespace vardel

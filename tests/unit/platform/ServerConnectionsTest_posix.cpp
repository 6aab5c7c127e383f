// The connections that Samba tells, through a command "smbstatus" of the test's own at the front of PATH.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "platform/ServerConnections.h"
#include "tests/unit/support/EnvironmentVariable_posix.h"
#include "tests/unit/support/SampleBytes.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

class SambaConnectionsTest : public testing::Test {
  protected:
    void Smbstatus(const std::string& script) {
        chmod(folder.Write("smbstatus", "#!/bin/sh\n" + script).c_str(), 0755);
    }
    static std::string CatSample() { return "cat \"" + test::SamplePath("samba/two-clients.json") + "\"\n"; }
    static std::string PathWith(const std::string& front) {
        const char* rest = std::getenv("PATH");
        return front + ":" + (rest ? rest : "/usr/bin:/bin");
    }
    test::TestFolder folder;
    test::EnvironmentVariable path{"PATH", PathWith(folder.Path()).c_str()};
    ServerConnections& connections = SystemServerConnections();
};

TEST_F(SambaConnectionsTest, TellsWhatTheCommandTells) {
    Smbstatus("[ \"$*\" = --json ] && " + CatSample());
    ASSERT_TRUE(connections.EnterThread());
    const std::vector<ServerConnection> rows = connections.List();
    ASSERT_EQ(rows.size(), 3u);
    for (const ServerConnection& row : rows) EXPECT_GT(row.activeTime, 0);
    connections.LeaveThread();
}

TEST_F(SambaConnectionsTest, ACommandThatFailsTellsNothing) {
    Smbstatus(CatSample() + "exit 1\n");
    EXPECT_TRUE(connections.List().empty());
    Smbstatus("echo 'not authorised'\n");
    EXPECT_TRUE(connections.List().empty());
}

TEST(SambaConnections, WithoutTheCommandNobodyIsConnected) {
    const test::TestFolder empty;
    const test::EnvironmentVariable path("PATH", empty.Path().c_str());
    ASSERT_TRUE(SystemServerConnections().EnterThread());
    EXPECT_TRUE(SystemServerConnections().List().empty());
    SystemServerConnections().LeaveThread();
}

}  // namespace
}  // namespace vardel

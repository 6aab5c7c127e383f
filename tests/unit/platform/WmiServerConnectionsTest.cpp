#include <gtest/gtest.h>

#include "platform/ServerConnections.h"
#include "tests/unit/support/ScriptedWmi.h"

namespace vardel {
namespace {

using test::WmiRow;
using test::WmiScript;
using Lines = std::vector<std::string>;

constexpr WmiResult kFailure = static_cast<WmiResult>(0x80041003);

WmiRow Connection(const char* computer, const char* share, const char* user, i32 seconds) {
    return {.properties = {{"ComputerName", computer}, {"ShareName", share}, {"UserName", user}, {"ActiveTime", seconds}}};
}

class WmiServerConnectionsTest : public testing::Test {
  protected:
    ~WmiServerConnectionsTest() override { EXPECT_EQ(wmi.alive, 0); }
    std::vector<ServerConnection> ListOf(const WmiScript& script) {
        wmi.scripts = {script};
        return connections.List();
    }
    test::ScriptedWmi wmi;
    WmiServerConnections connections{wmi};
};

TEST_F(WmiServerConnectionsTest, AsksTheLocalServiceAsOneselfForTheClass) {
    ListOf({});
    EXPECT_EQ(wmi.calls, (Lines{"locator", "connect root\\cimv2", "blanket connection level 3 as oneself",
                                "query SELECT * FROM Win32_ServerConnection", "next", "release objects",
                                "release connection", "release locator"}));
}

TEST_F(WmiServerConnectionsTest, GivesARowForEachObject) {
    const auto rows = ListOf({.rows = {Connection("10.0.0.5", "Public", "ann", 12),
                                       Connection("PC-6", "IPC$", "", 0)}});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].computer, "10.0.0.5");
    EXPECT_EQ(rows[0].share, "Public");
    EXPECT_EQ(rows[0].user, "ann");
    EXPECT_EQ(rows[0].activeTime, 12);
    EXPECT_EQ(rows[1].computer, "PC-6");
    EXPECT_EQ(rows[1].user, "");
    EXPECT_EQ(rows[1].activeTime, 0);
}

TEST_F(WmiServerConnectionsTest, PropertiesOfAnotherTypeCountAsNotTold) {
    WmiRow row = Connection("10.0.0.5", "Public", "ann", 12);
    row.properties["UserName"] = std::monostate();
    row.properties["ActiveTime"] = "12";
    const auto rows = ListOf({.rows = {Connection("10.0.0.4", "Music", "bob", 3), row}});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].user, "");
    EXPECT_EQ(rows[1].activeTime, -1);
}

TEST_F(WmiServerConnectionsTest, AFailureInTheMiddleLeavesTheRowsBeforeIt) {
    EXPECT_EQ(ListOf({.rows = {Connection("10.0.0.5", "Public", "ann", 12)}, .end = kFailure}).size(), 1u);
}

TEST_F(WmiServerConnectionsTest, EachFailureEndsThePassWithoutRows) {
    const std::vector<WmiRow> rows = {Connection("10.0.0.5", "Public", "ann", 12)};
    EXPECT_TRUE(ListOf({.connect = kFailure, .rows = rows}).empty());
    EXPECT_TRUE(ListOf({.givesConnection = false, .rows = rows}).empty());
    EXPECT_TRUE(ListOf({.blanket = kFailure, .rows = rows}).empty());
    EXPECT_TRUE(ListOf({.query = kFailure, .rows = rows}).empty());
    EXPECT_TRUE(ListOf({.givesObjects = false, .rows = rows}).empty());
    wmi.givesLocator = false;
    EXPECT_TRUE(ListOf({.rows = rows}).empty());
    wmi.locator = kFailure;
    EXPECT_TRUE(ListOf({.rows = rows}).empty());
    wmi.locator = kWmiOk;
    wmi.givesLocator = true;
    EXPECT_EQ(ListOf({.rows = rows}).size(), 1u);
}

TEST_F(WmiServerConnectionsTest, EntersWithTheApartmentAndSecurity) {
    EXPECT_TRUE(connections.EnterThread());
    connections.LeaveThread();
    wmi.security = kWmiSecurityAlreadySet;
    EXPECT_TRUE(connections.EnterThread());
    connections.LeaveThread();
    EXPECT_EQ(wmi.calls, (Lines{"enter", "security", "leave", "enter", "security", "leave"}));
}

TEST_F(WmiServerConnectionsTest, DoesNotEnterWithoutTheApartment) {
    wmi.enter = kFailure;
    EXPECT_FALSE(connections.EnterThread());
    EXPECT_EQ(wmi.calls, (Lines{"enter"}));
}

TEST_F(WmiServerConnectionsTest, LeavesAgainWhereSecurityIsRefused) {
    wmi.security = kFailure;
    EXPECT_FALSE(connections.EnterThread());
    EXPECT_EQ(wmi.calls, (Lines{"enter", "security", "leave"}));
}

}  // namespace
}  // namespace vardel

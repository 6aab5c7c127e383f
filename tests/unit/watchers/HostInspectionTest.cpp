#include "watchers/HostInspection.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/unit/support/InspectedHost.h"

namespace vardel {
namespace {

using test::Answering;
using test::Refusing;
using Lines = std::vector<std::string>;

class HostInspectionTest : public test::InspectedHostTest {};

// The two texts

TEST(HostInspection, CutsALocalNameAtTheBarAndTakesOneTrademarkSignOut) {
    EXPECT_TRUE(CutLocalName("Windows\x99 7\x99 Pro|C:\\Windows|\\Device\\Harddisk0") == "Windows 7\x99 Pro");
    EXPECT_TRUE(CutLocalName("Windows 7") == "Windows 7");
    EXPECT_TRUE(CutLocalName("|C:\\Windows") == "");
    EXPECT_TRUE(CutLocalName("Windows|C:\\\x99") == "Windows");
    EXPECT_TRUE(CutLocalName("") == "");
}

TEST(HostInspection, CutsARemoteNameAtTheBarAndLeavesTheTrademarkSign) {
    EXPECT_TRUE(CutRemoteName("Windows\x99 7 Pro|C:\\Windows|\\Device") == "Windows\x99 7 Pro");
    EXPECT_TRUE(CutRemoteName("Windows\x99 7") == "Windows\x99 7");
    EXPECT_TRUE(CutRemoteName("|C:\\Windows") == "|C:\\Windows");
    EXPECT_TRUE(CutRemoteName("") == "");
}

TEST(HostInspection, TheResourceNamesTheHost) {
    EXPECT_EQ(RemoteResource("10.0.0.5"), "\\\\10.0.0.5\\root\\cimv2");
}

// The status

TEST(HostInspection, TellsTheClassesOfConnectFailureApart) {
    EXPECT_EQ(ClassOfConnectFailure(kWmiServerUnavailable), ConnectFailure::Blocked);
    EXPECT_EQ(ClassOfConnectFailure(kWmiAccessDenied), ConnectFailure::Denied);
    EXPECT_EQ(ClassOfConnectFailure(kWmiOutOfMemory), ConnectFailure::Denied);
    EXPECT_EQ(ClassOfConnectFailure(test::kOtherWmiFailure), ConnectFailure::Other);
    EXPECT_EQ(ClassOfConnectFailure(kWmiOk), ConnectFailure::Other);
}

TEST(HostInspection, TheStatusOnlyFalls) {
    EXPECT_EQ(StatusAfterFailure(999, ConnectFailure::Blocked), 200);
    EXPECT_EQ(StatusAfterFailure(300, ConnectFailure::Blocked), 200);
    EXPECT_EQ(StatusAfterFailure(999, ConnectFailure::Denied), 100);
    EXPECT_EQ(StatusAfterFailure(200, ConnectFailure::Denied), 100);
    EXPECT_EQ(StatusAfterFailure(100, ConnectFailure::Blocked), 100);
    EXPECT_EQ(StatusAfterFailure(0, ConnectFailure::Denied), 0);
    for (const i32 status : {999, 300, 200, 100, 0})
        EXPECT_EQ(StatusAfterFailure(status, ConnectFailure::Other), status);
}

// Remote: accounts

TEST_F(HostInspectionTest, WithoutAnAccountARemoteHostTellsSoAndIsNotAsked) {
    system.wmi.security = test::kOtherWmiFailure;
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 300);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_TRUE(system.wmi.calls.empty());
}

TEST_F(HostInspectionTest, WithoutAnAccountALocalHostShowsItsOperatingSystem) {
    system.wmi.scripts = {Answering("Windows\x99 11|C:\\Windows|\\Device")};
    InspectLocal();
    EXPECT_EQ(Os(), "Windows 11");
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(HostInspectionTest, AsksWithTheAccountAndItsDecodedPassword) {
    Accounts({{4, {"admin", "s3cret pass"}}});
    system.wmi.scripts = {Answering("Windows\x99 10|C:\\Windows|\\Device")};
    InspectRemote();
    EXPECT_EQ(system.wmi.calls,
              (Lines{"security", "locator", "connect \\\\10.0.0.5\\root\\cimv2 admin s3cret pass",
                     "identity admin s3cret pass", "blanket connection level 0 as admin",
                     "query Select * from Win32_OperatingSystem", "blanket objects level 0 as admin", "next",
                     "get Name", "release object", "next", "release objects", "release connection",
                     "release identity", "release locator"}));
    EXPECT_EQ(Os(), "Windows\x99 10");
    EXPECT_EQ(host.wmiStatus, 0);
    EXPECT_EQ(host.wmiOsKnown, 1);
    EXPECT_EQ(host.rowDirty, 1);
    EXPECT_EQ(item.accountKey, 4u);
}

TEST_F(HostInspectionTest, ARefusedAccountIsFollowedByTheNextAndTheRestIsLeft) {
    Accounts({{0, {"one", "1"}}, {1, {"two", "2"}}, {2, {"three", "3"}}});
    system.wmi.scripts = {Refusing(kWmiAccessDenied), Answering("Windows 10|x"), Answering("never asked")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(host.wmiStatus, 0);
    EXPECT_EQ(item.accountKey, 1u);
    EXPECT_EQ(system.wmi.CallsOf("connect"), (Lines{"connect \\\\10.0.0.5\\root\\cimv2 one 1",
                                                    "connect \\\\10.0.0.5\\root\\cimv2 two 2"}));
    EXPECT_EQ(system.wmi.CallsOf("locator").size(), 2u);
    EXPECT_EQ(system.wmi.CallsOf("security").size(), 1u);
}

TEST_F(HostInspectionTest, AccountsAreTriedInTheOrderOfTheirKeys) {
    Accounts({{7, {"last", ""}}, {-1, {"first", ""}}, {3, {"middle", ""}}});
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect"), (Lines{"connect \\\\10.0.0.5\\root\\cimv2 first ",
                                                    "connect \\\\10.0.0.5\\root\\cimv2 middle ",
                                                    "connect \\\\10.0.0.5\\root\\cimv2 last "}));
}

TEST_F(HostInspectionTest, NamesThatFillTheirFieldAreTakenWhole) {
    const std::string name(50, 'n'), password(64, 'p');
    Accounts({{0, {name, password}}});
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect"),
              (Lines{"connect \\\\10.0.0.5\\root\\cimv2 " + name + " " + password}));
}

TEST_F(HostInspectionTest, APasswordThatWasNeverEncodedIsTriedAsAnEmptyOne) {
    AdminAccount account{};
    std::memset(account.password, 'x', sizeof account.password);
    std::memcpy(account.userName, "admin", 6);
    data.settings.accounts.Write({{0, account}});
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect"), (Lines{"connect \\\\10.0.0.5\\root\\cimv2 admin "}));
}

}  // namespace
}  // namespace vardel

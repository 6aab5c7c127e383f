#include "watchers/HostInspection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "capture/ThreadParams.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel {
namespace {

using test::WmiRow;
using test::WmiScript;
using Lines = std::vector<std::string>;

constexpr WmiResult kOtherFailure = static_cast<WmiResult>(0x80041003);

WmiRow Named(const std::string& name) { return {.properties = {{"Name", name}}}; }
WmiScript Answering(const std::string& name) { return {.rows = {Named(name)}}; }
WmiScript Refusing(WmiResult result) { return {.connect = result}; }

class HostInspectionTest : public testing::Test {
  protected:
    HostInspectionTest() { host.ip = "10.0.0.5"; }

    // Each account's name and password, by ascending key.
    void Accounts(const std::map<i32, std::pair<std::string, std::string>>& named) {
        std::map<i32, AdminAccount> accounts;
        for (const auto& [key, credentials] : named) {
            AdminAccount account{};
            credentials.first.copy(account.userName, sizeof account.userName);
            credentials.second.copy(account.password, sizeof account.password);
            TcBlowfish().Encode(reinterpret_cast<unsigned char*>(account.password),
                                static_cast<int>(credentials.second.size()));
            accounts.emplace(key, account);
        }
        data.settings.accounts.Write(accounts);
    }
    void TwoAccounts() { Accounts({{0, {"admin", "first"}}, {1, {"other", "second"}}}); }
    void InspectRemote() { Inspect(0); }
    void InspectLocal() { Inspect(1); }
    void Inspect(u8 isLocal) {
        item.host = &host;
        item.isLocal = isLocal;
        HostInspection(data, &params).Inspect(item);
        EXPECT_EQ(system.wmi.alive, 0);
    }
    std::string Os() const { return TcString(host.os).GetContent(); }
    // What was traced of the host, by the label.
    Lines Traced(const std::string& label) const {
        const std::string prefix = "[ 10.0.0.5 ] : VardelARPImpl::" + label + ": ";
        Lines lines;
        for (const std::string& line : traced.Steps())
            if (line.starts_with(prefix)) lines.push_back(line.substr(prefix.size()));
        return lines;
    }

    test::TestServices system;
    VardelData data{system.services};
    ThreadParams params;
    HostRecord host;
    WmiWorkItem item;
    test::TracedLines traced;
};

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
    EXPECT_EQ(ClassOfConnectFailure(kOtherFailure), ConnectFailure::Other);
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
    system.wmi.security = kOtherFailure;
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

// Remote: failures

TEST_F(HostInspectionTest, BlockedAndThenDeniedEndsAtDenied) {
    TwoAccounts();
    system.wmi.scripts = {Refusing(kWmiServerUnavailable), Refusing(kWmiAccessDenied)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
    EXPECT_EQ(host.rowDirty, 1);
    EXPECT_EQ(Traced("TestWMIAccess"),
              (Lines{"CoInitializeSecurity - SUCCESS", "CoCreateInstance - SUCCESS",
                     "ConnectServer (Access blocked) - FAILED", "CoCreateInstance - SUCCESS",
                     "ConnectServer (Access denied) - FAILED"}));
}

TEST_F(HostInspectionTest, DeniedAndThenBlockedStaysAtDenied) {
    TwoAccounts();
    system.wmi.scripts = {Refusing(kWmiAccessDenied), Refusing(kWmiServerUnavailable)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
}

TEST_F(HostInspectionTest, OutOfMemoryCountsAsDenied) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.scripts = {Refusing(kWmiOutOfMemory)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer (Access denied) - FAILED");
}

TEST_F(HostInspectionTest, AnotherErrorForAllAccountsGivesNoVerdict) {
    TwoAccounts();
    system.wmi.scripts = {Refusing(kOtherFailure), Refusing(kOtherFailure)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer - FAILED");
}

TEST_F(HostInspectionTest, ASuccessWithoutAConnectionGivesNoVerdict) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.scripts = {WmiScript{.givesConnection = false}};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer - FAILED");
}

TEST_F(HostInspectionTest, AStatusThatStandsIsNotMarkedForRedrawingAgain) {
    Accounts({{0, {"admin", "x"}}});
    host.wmiStatus = 200;
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 200);
    EXPECT_EQ(host.rowDirty, 0);
}

TEST_F(HostInspectionTest, FailedSecurityLeavesARemoteHostUntried) {
    TwoAccounts();
    system.wmi.security = kOtherFailure;
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(system.wmi.calls, (Lines{"security"}));
    EXPECT_EQ(Traced("TestWMIAccess"), (Lines{"CoInitializeSecurity - FAILED"}));
}

TEST_F(HostInspectionTest, SecurityThatWasSetBeforeIsGoodEnough) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.security = kWmiSecurityAlreadySet;
    system.wmi.scripts = {Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(HostInspectionTest, WithoutALocatorTheNextAccountIsTried) {
    TwoAccounts();
    system.wmi.locator = kOtherFailure;
    InspectRemote();
    EXPECT_EQ(system.wmi.calls, (Lines{"security", "locator", "locator"}));
    EXPECT_EQ(Traced("TestWMIAccess"), (Lines{"CoInitializeSecurity - SUCCESS", "CoCreateInstance - FAILED",
                                              "CoCreateInstance - FAILED"}));
    system.wmi.locator = kWmiOk;
    system.wmi.givesLocator = false;
    InspectRemote();
    EXPECT_TRUE(system.wmi.CallsOf("connect").empty());
    EXPECT_EQ(host.wmiStatus, 999);
}

TEST_F(HostInspectionTest, WithoutMemoryForTheIdentityTheSameAccountIsTriedAgain) {
    Accounts({{0, {"admin", "x"}}, {1, {"other", "y"}}});
    system.wmi.identitiesRefused = 2;
    system.wmi.scripts = {Answering("no"), Answering("no"), Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect"), Lines(3, "connect \\\\10.0.0.5\\root\\cimv2 admin x"));
    EXPECT_EQ(Os(), "Windows 10");
    const Lines lines = Traced("TestWMIAccess");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "creating AuthIdentity - FAILED"), 2);
}

TEST_F(HostInspectionTest, TheStopRequestEndsTryingAgainWithoutMemory) {
    TwoAccounts();
    params.stop = 1;
    system.wmi.identitiesRefused = 1000;
    system.wmi.scripts = {Answering("no"), Answering("no")};
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect").size(), 1u);
    EXPECT_EQ(host.wmiOsKnown, 0);
}

TEST_F(HostInspectionTest, ARefusedBlanketIsFollowedByTheNextAccount) {
    TwoAccounts();
    system.wmi.scripts = {WmiScript{.blanket = kOtherFailure}, Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(Traced("TestWMIAccess")[2], "CoSetProxyBlanket - FAILED");
    EXPECT_EQ(system.wmi.CallsOf("query").size(), 1u);
}

TEST_F(HostInspectionTest, AFailedQueryIsFollowedByTheNextAccount) {
    Accounts({{0, {"one", ""}}, {1, {"two", ""}}, {2, {"three", ""}}});
    system.wmi.scripts = {WmiScript{.query = kOtherFailure}, WmiScript{.givesObjects = false},
                          Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(item.accountKey, 2u);
    const Lines lines = Traced("TestWMIAccess");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ExecQuery - FAILED"), 2);
}

TEST_F(HostInspectionTest, TheKeyOfAConnectedAccountIsKeptAlsoWhenItGaveNoName) {
    Accounts({{5, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.blanket = kOtherFailure}};
    InspectRemote();
    EXPECT_EQ(item.accountKey, 5u);
    EXPECT_EQ(host.wmiStatus, 999);
}

TEST_F(HostInspectionTest, ARefusedBlanketOfTheAnswerKeepsItUnread) {
    Accounts({{0, {"admin", ""}}});
    WmiScript script = Answering("Windows 10|x");
    script.objectsBlanket = kOtherFailure;
    system.wmi.scripts = {script};
    InspectRemote();
    EXPECT_TRUE(system.wmi.CallsOf("next").empty());
    EXPECT_EQ(host.wmiOsKnown, 0);
    EXPECT_EQ(host.wmiStatus, 999);
}

// Reading

TEST_F(HostInspectionTest, AnAnswerWithoutObjectsIsFollowedByTheNextAccount) {
    TwoAccounts();
    system.wmi.scripts = {WmiScript{}, Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(Traced("TestWMIAccess")[4], "no more data - CONTINUE");
}

TEST_F(HostInspectionTest, APropertyOfAnotherTypeIsPassedOver) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.rows = {{.properties = {{"Name", 7}}}, {}, Named("Windows 10|x")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(system.wmi.CallsOf("next").size(), 4u);
}

TEST_F(HostInspectionTest, AFailedPropertyEndsTheReading) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {
        WmiScript{.rows = {{.properties = {{"Name", "x"}}, .result = kOtherFailure}, Named("never read")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "");
    EXPECT_EQ(host.wmiOsKnown, 0);
    EXPECT_EQ(system.wmi.CallsOf("next").size(), 1u);
}

TEST_F(HostInspectionTest, AFailureInsteadOfAnObjectEndsTheReading) {
    Accounts({{0, {"admin", ""}}});
    WmiScript script = Answering("Windows 10|x");
    script.end = kWmiServerUnavailable;
    system.wmi.scripts = {script};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(HostInspectionTest, TheLastOfSeveralNamesCounts) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.rows = {Named("One|x"), Named("Two|x")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "Two");
}

// Local

TEST_F(HostInspectionTest, TheLocalPathAsksAsOneself) {
    TwoAccounts();
    system.wmi.scripts = {Answering("Windows 11|x")};
    InspectLocal();
    EXPECT_EQ(system.wmi.calls,
              (Lines{"security", "locator", "connect root\\cimv2", "blanket connection level 0 as oneself",
                     "query Select * from Win32_OperatingSystem", "next", "get Name", "release object", "next",
                     "release objects", "release connection", "release locator"}));
    EXPECT_EQ(host.rowDirty, 1);
    EXPECT_EQ(host.wmiOsKnown, 1);
    EXPECT_EQ(Traced("TestWMIAccess - Local"),
              (Lines{"CoInitializeSecurity - SUCCESS", "CoCreateInstance - SUCCESS", "CoSetProxyBlanket - SUCCESS",
                     "ExecQuery - SUCCESS", "data enumerated - SUCCESS", "getting OS - SUCCESS", "Windows 11|x",
                     "no more data - CONTINUE"}));
    EXPECT_TRUE(Traced("TestWMIAccess").empty());
}

TEST_F(HostInspectionTest, LocalFailuresAreTracedAndGiveNoVerdict) {
    struct Case {
        const char* label;
        const char* message;
        std::function<void(test::ScriptedWmi&)> spoil;
    };
    const Case cases[] = {
        {"TestWMIAccess", "CoInitializeSecurity - FAILED", [](auto& wmi) { wmi.security = kOtherFailure; }},
        {"TestWMIAccess - Local", "CoCreateInstance - FAILED", [](auto& wmi) { wmi.locator = kOtherFailure; }},
        {"TestWMIAccess - Local", "CoCreateInstance - FAILED", [](auto& wmi) { wmi.givesLocator = false; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {Refusing(kWmiAccessDenied)}; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {Refusing(kWmiServerUnavailable)}; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.givesConnection = false}}; }},
        {"TestWMIAccess - Local", "CoSetProxyBlanket - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.blanket = kOtherFailure}}; }},
        {"TestWMIAccess - Local", "ExecQuery - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.query = kOtherFailure}}; }},
        {"TestWMIAccess - Local", "ExecQuery - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.givesObjects = false}}; }},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.message);
        system.wmi.security = system.wmi.locator = kWmiOk;
        system.wmi.givesLocator = true;
        system.wmi.scripts = {Answering("Windows 11|x")};
        one.spoil(system.wmi);
        InspectLocal();
        ASSERT_FALSE(Traced(one.label).empty());
        EXPECT_EQ(Traced(one.label).back(), one.message);
        EXPECT_EQ(host.wmiStatus, 999);
        EXPECT_EQ(host.rowDirty, 0);
        EXPECT_EQ(Os(), "");
    }
}

}  // namespace
}  // namespace vardel

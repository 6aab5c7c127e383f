#include "watchers/HostInspection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/unit/support/InspectedHost.h"

namespace vardel {
namespace {

using test::Answering;
using test::Named;
using test::Refusing;
using test::WmiScript;
using Lines = std::vector<std::string>;

class HostInspectionFailures : public test::InspectedHostTest {};

// Remote: failures

TEST_F(HostInspectionFailures, BlockedAndThenDeniedEndsAtDenied) {
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

TEST_F(HostInspectionFailures, DeniedAndThenBlockedStaysAtDenied) {
    TwoAccounts();
    system.wmi.scripts = {Refusing(kWmiAccessDenied), Refusing(kWmiServerUnavailable)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
}

TEST_F(HostInspectionFailures, OutOfMemoryCountsAsDenied) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.scripts = {Refusing(kWmiOutOfMemory)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 100);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer (Access denied) - FAILED");
}

TEST_F(HostInspectionFailures, AnotherErrorForAllAccountsGivesNoVerdict) {
    TwoAccounts();
    system.wmi.scripts = {Refusing(test::kOtherWmiFailure), Refusing(test::kOtherWmiFailure)};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer - FAILED");
}

TEST_F(HostInspectionFailures, ASuccessWithoutAConnectionGivesNoVerdict) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.scripts = {WmiScript{.givesConnection = false}};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(Traced("TestWMIAccess").back(), "ConnectServer - FAILED");
}

TEST_F(HostInspectionFailures, AStatusThatStandsIsNotMarkedForRedrawingAgain) {
    Accounts({{0, {"admin", "x"}}});
    host.wmiStatus = 200;
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 200);
    EXPECT_EQ(host.rowDirty, 0);
}

TEST_F(HostInspectionFailures, FailedSecurityLeavesARemoteHostUntried) {
    TwoAccounts();
    system.wmi.security = test::kOtherWmiFailure;
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 999);
    EXPECT_EQ(system.wmi.calls, (Lines{"security"}));
    EXPECT_EQ(Traced("TestWMIAccess"), (Lines{"CoInitializeSecurity - FAILED"}));
}

TEST_F(HostInspectionFailures, SecurityThatWasSetBeforeIsGoodEnough) {
    Accounts({{0, {"admin", "x"}}});
    system.wmi.security = kWmiSecurityAlreadySet;
    system.wmi.scripts = {Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(HostInspectionFailures, WithoutALocatorTheNextAccountIsTried) {
    TwoAccounts();
    system.wmi.locator = test::kOtherWmiFailure;
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

TEST_F(HostInspectionFailures, WithoutMemoryForTheIdentityTheSameAccountIsTriedAgain) {
    Accounts({{0, {"admin", "x"}}, {1, {"other", "y"}}});
    system.wmi.identitiesRefused = 2;
    system.wmi.scripts = {Answering("no"), Answering("no"), Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect"), Lines(3, "connect \\\\10.0.0.5\\root\\cimv2 admin x"));
    EXPECT_EQ(Os(), "Windows 10");
    const Lines lines = Traced("TestWMIAccess");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "creating AuthIdentity - FAILED"), 2);
}

TEST_F(HostInspectionFailures, TheStopRequestEndsTryingAgainWithoutMemory) {
    TwoAccounts();
    params.stop = 1;
    system.wmi.identitiesRefused = 1000;
    system.wmi.scripts = {Answering("no"), Answering("no")};
    InspectRemote();
    EXPECT_EQ(system.wmi.CallsOf("connect").size(), 1u);
    EXPECT_EQ(host.wmiOsKnown, 0);
}

TEST_F(HostInspectionFailures, ARefusedBlanketIsFollowedByTheNextAccount) {
    TwoAccounts();
    system.wmi.scripts = {WmiScript{.blanket = test::kOtherWmiFailure}, Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(Traced("TestWMIAccess")[2], "CoSetProxyBlanket - FAILED");
    EXPECT_EQ(system.wmi.CallsOf("query").size(), 1u);
}

TEST_F(HostInspectionFailures, AFailedQueryIsFollowedByTheNextAccount) {
    Accounts({{0, {"one", ""}}, {1, {"two", ""}}, {2, {"three", ""}}});
    system.wmi.scripts = {WmiScript{.query = test::kOtherWmiFailure}, WmiScript{.givesObjects = false},
                          Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(item.accountKey, 2u);
    const Lines lines = Traced("TestWMIAccess");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ExecQuery - FAILED"), 2);
}

TEST_F(HostInspectionFailures, TheKeyOfAConnectedAccountIsKeptAlsoWhenItGaveNoName) {
    Accounts({{5, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.blanket = test::kOtherWmiFailure}};
    InspectRemote();
    EXPECT_EQ(item.accountKey, 5u);
    EXPECT_EQ(host.wmiStatus, 999);
}

TEST_F(HostInspectionFailures, ARefusedBlanketOfTheAnswerKeepsItUnread) {
    Accounts({{0, {"admin", ""}}});
    WmiScript script = Answering("Windows 10|x");
    script.objectsBlanket = test::kOtherWmiFailure;
    system.wmi.scripts = {script};
    InspectRemote();
    EXPECT_TRUE(system.wmi.CallsOf("next").empty());
    EXPECT_EQ(host.wmiOsKnown, 0);
    EXPECT_EQ(host.wmiStatus, 999);
}

// Reading

TEST_F(HostInspectionFailures, AnAnswerWithoutObjectsIsFollowedByTheNextAccount) {
    TwoAccounts();
    system.wmi.scripts = {WmiScript{}, Answering("Windows 10|x")};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(Traced("TestWMIAccess")[4], "no more data - CONTINUE");
}

TEST_F(HostInspectionFailures, APropertyOfAnotherTypeIsPassedOver) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.rows = {{.properties = {{"Name", 7}}}, {}, Named("Windows 10|x")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(system.wmi.CallsOf("next").size(), 4u);
}

TEST_F(HostInspectionFailures, AFailedPropertyEndsTheReading) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {
        WmiScript{.rows = {{.properties = {{"Name", "x"}}, .result = test::kOtherWmiFailure}, Named("never read")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "");
    EXPECT_EQ(host.wmiOsKnown, 0);
    EXPECT_EQ(system.wmi.CallsOf("next").size(), 1u);
}

TEST_F(HostInspectionFailures, AFailureInsteadOfAnObjectEndsTheReading) {
    Accounts({{0, {"admin", ""}}});
    WmiScript script = Answering("Windows 10|x");
    script.end = kWmiServerUnavailable;
    system.wmi.scripts = {script};
    InspectRemote();
    EXPECT_EQ(Os(), "Windows 10");
    EXPECT_EQ(host.wmiStatus, 0);
}

TEST_F(HostInspectionFailures, TheLastOfSeveralNamesCounts) {
    Accounts({{0, {"admin", ""}}});
    system.wmi.scripts = {WmiScript{.rows = {Named("One|x"), Named("Two|x")}}};
    InspectRemote();
    EXPECT_EQ(Os(), "Two");
}

// Local

TEST_F(HostInspectionFailures, TheLocalPathAsksAsOneself) {
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

TEST_F(HostInspectionFailures, LocalFailuresAreTracedAndGiveNoVerdict) {
    struct Case {
        const char* label;
        const char* message;
        std::function<void(test::ScriptedWmi&)> spoil;
    };
    const Case cases[] = {
        {"TestWMIAccess", "CoInitializeSecurity - FAILED", [](auto& wmi) { wmi.security = test::kOtherWmiFailure; }},
        {"TestWMIAccess - Local", "CoCreateInstance - FAILED", [](auto& wmi) { wmi.locator = test::kOtherWmiFailure; }},
        {"TestWMIAccess - Local", "CoCreateInstance - FAILED", [](auto& wmi) { wmi.givesLocator = false; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {Refusing(kWmiAccessDenied)}; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {Refusing(kWmiServerUnavailable)}; }},
        {"TestWMIAccess - Local", "ConnectServer - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.givesConnection = false}}; }},
        {"TestWMIAccess - Local", "CoSetProxyBlanket - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.blanket = test::kOtherWmiFailure}}; }},
        {"TestWMIAccess - Local", "ExecQuery - FAILED",
         [](auto& wmi) { wmi.scripts = {WmiScript{.query = test::kOtherWmiFailure}}; }},
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

#include "views/ApplicationLaunch.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

struct ApplicationLaunch : testing::Test {
    ApplicationLaunch() {
        host.ip = "10.0.0.5";
        host.hostName = "desk";
        host.mac = "00:11:22:33:44:55";
    }
    void ChooseAdapter() {
        auto adapter = std::make_unique<AdapterRecord>();
        adapter->ipAddress = "10.0.0.1";
        adapter->hostName = "here";
        adapter->netMask = "255.255.255.0";
        data.adapters.emplace(2, std::move(adapter));
        data.adapterIndex = 2;
    }
    std::string Expand(const char* parameters) {
        return ExpandAppParameters(parameters, host, data).GetContent();
    }
    using Launches = std::vector<test::RecordingShell::Launch>;

    test::TestServices system;
    VardelData data{system.services};
    HostRecord host;
};

TEST_F(ApplicationLaunch, EachTagHasItsValue) {
    ChooseAdapter();
    EXPECT_EQ(Expand("%VDLW_IP%|%VDLW_HOST%|%VDLW_MAC%|%VDLW_LIP%|%VDLW_LHOST%|%VDLW_LSUB%"),
              "10.0.0.5|desk|00:11:22:33:44:55|10.0.0.1|here|255.255.255.0");
}

TEST_F(ApplicationLaunch, ATagIsReplacedAtAllItsPlaces) {
    EXPECT_EQ(Expand("%VDLW_IP% and %VDLW_IP%"), "10.0.0.5 and 10.0.0.5");
}

TEST_F(ApplicationLaunch, TextWithoutTagsIsPassedOn) {
    EXPECT_EQ(Expand("-v \"100 %\" %VDLW_ip%"), "-v \"100 %\" %VDLW_ip%");
    EXPECT_EQ(Expand(""), "");
}

TEST_F(ApplicationLaunch, AnEmptyHostNameRemovesItsTag) {
    host.hostName = "";
    EXPECT_EQ(Expand("[%VDLW_HOST%]"), "[]");
}

TEST_F(ApplicationLaunch, WithoutAChosenAdapterItsTagsAreOneBlankEach) {
    EXPECT_EQ(Expand("[%VDLW_LIP%][%VDLW_LHOST%][%VDLW_LSUB%]"), "[ ][ ][ ]");
}

TEST_F(ApplicationLaunch, AnAdapterWithoutItsRecordLeavesItsTags) {
    data.adapters.emplace(2, nullptr);
    data.adapterIndex = 2;
    EXPECT_EQ(Expand("%VDLW_IP% %VDLW_LIP% %VDLW_LHOST% %VDLW_LSUB%"),
              "10.0.0.5 %VDLW_LIP% %VDLW_LHOST% %VDLW_LSUB%");
}

TEST_F(ApplicationLaunch, ValuesAreNotQuoted) {
    host.hostName = "my desk";
    EXPECT_EQ(Expand("ping %VDLW_HOST%"), "ping my desk");
    EXPECT_EQ(Expand("ping \"%VDLW_HOST%\""), "ping \"my desk\"");
}

TEST_F(ApplicationLaunch, WhereParametersAreOneTextItIsExpandedWhole) {
    ChooseAdapter();
    EXPECT_TRUE(LaunchForHost(data, "C:\\tools\\ping.exe", "-n 1 %VDLW_IP% %VDLW_LIP%", host));
    EXPECT_EQ(system.shell.launches,
              (Launches{{ShellVerb::Open, "C:\\tools\\ping.exe", {"-n 1 10.0.0.5 10.0.0.1"}}}));
}

TEST_F(ApplicationLaunch, WithoutParametersItStartsAllTheSame) {
    EXPECT_TRUE(LaunchForHost(data, "tool", "", host));
    system.shell.splitsParameters = true;
    EXPECT_TRUE(LaunchForHost(data, "tool", "", host));
    EXPECT_EQ(system.shell.launches, (Launches{{ShellVerb::Open, "tool", {""}}, {ShellVerb::Open, "tool", {}}}));
}

TEST_F(ApplicationLaunch, WhereArgumentsAreGivenOneByOneAHostileNameStaysOne) {
    system.shell.splitsParameters = true;
    for (const char* hostile : {"a b", "\" -o \"", "; rm -rf /", "$(reboot)", "a\tb\nc", "\\\"", ""}) {
        host.hostName = hostile;
        system.shell.launches.clear();
        EXPECT_TRUE(LaunchForHost(data, "/usr/bin/tool", "-h %VDLW_HOST% --name=%VDLW_HOST% end", host));
        EXPECT_EQ(system.shell.launches,
                  (Launches{{ShellVerb::Open,
                             "/usr/bin/tool",
                             {"-h", hostile, std::string("--name=") + hostile, "end"}}}));
    }
}

TEST_F(ApplicationLaunch, AFailedStartIsOnlyToldToTheCaller) {
    system.shell.succeeds = false;
    EXPECT_FALSE(LaunchForHost(data, "gone", "%VDLW_IP%", host));
    EXPECT_FALSE(LaunchApplication(system.shell, "gone", ""));
    EXPECT_EQ(system.shell.launches.size(), 2u);
}

TEST_F(ApplicationLaunch, WithoutAHostTagsStay) {
    EXPECT_TRUE(LaunchApplication(system.shell, "tool", "%VDLW_IP% x"));
    EXPECT_EQ(system.shell.launches, (Launches{{ShellVerb::Open, "tool", {"%VDLW_IP% x"}}}));
}

TEST_F(ApplicationLaunch, EachHostHasAStartOfItsOwn) {
    HostRecord other;
    other.ip = "10.0.0.6";
    for (const HostRecord* each : {&host, &other}) LaunchForHost(data, "tool", "%VDLW_IP%", *each);
    EXPECT_EQ(system.shell.launches,
              (Launches{{ShellVerb::Open, "tool", {"10.0.0.5"}}, {ShellVerb::Open, "tool", {"10.0.0.6"}}}));
}

}  // namespace
}  // namespace vardel

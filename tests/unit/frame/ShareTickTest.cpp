#include "frame/ShareTick.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using test::Calls;
using test::kWarningColors;

constexpr char kShareColors[] = "host colors (255,255,255) (255,255,255) (0,0,0) (22,122,233)";

class ShareTickTest : public test::TickFixture {
  protected:
    ShareTickTest() {
        VardelSettings& settings = data.settings;
        settings.RAVisualization = settings.ShareVisualization = 1;
        settings.RAVisualizationType = settings.ShareUseToolTips = 0;
        settings.RAIgnoreIPCNoUsername = settings.RAIgnoreLocalhost = settings.RAIgnoreTrustedHosts = 0;
    }
    Calls AfterTick() {
        Tick(kShareTimer);
        return TakeCalls();
    }
};

// ---- remote access ----

TEST_F(ShareTickTest, RemoteAccessIsToldInRedWithoutAReset) {
    Connects("10.0.0.5", "music", "ann");
    Connects("desk", "films", "");
    EXPECT_EQ(AfterTick(), (Calls{kWarningColors, "host time 7500",
                                  "host show Remoteaccess detected :\n10.0.0.5 connected on music with user 'ann'\n"
                                  "desk connected on films with user ''",
                                  "plugins 2: 10.0.0.5 desk"}));
    EXPECT_TRUE(data.shareAccesses.IsEmpty());
    EXPECT_EQ(data.remoteAccesses.Count(), 2u);
    EXPECT_TRUE(IsFree(Fence::Shares));
}

TEST_F(ShareTickTest, ABalloonOfRemoteAccessLeavesTheBareProductNameAsTooltip) {
    data.settings.RAVisualizationType = 1;
    surface.host.showing = true;
    Connects("10.0.0.5", "music", "ann");
    EXPECT_EQ(AfterTick(), (Calls{"tray 110 Remoteaccess detected :\n10.0.0.5 connected on music with user 'ann' | ",
                                  "plugins 2: 10.0.0.5"}));
}

TEST_F(ShareTickTest, RemoteAccessWaitsForThePopup) {
    surface.host.showing = true;
    Connects("10.0.0.5", "music", "ann");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_TRUE(IsFree(Fence::Shares));
    Connects("10.0.0.6", "music", "bob");
    surface.host.showing = false;
    EXPECT_EQ(AfterTick().back(), "plugins 2: 10.0.0.5 10.0.0.6");
}

TEST_F(ShareTickTest, WithoutAPopupRemoteAccessIsConsumedUnseen) {
    surface.hasHost = false;
    Connects("10.0.0.5", "music", "ann");
    EXPECT_EQ(AfterTick(), Calls{"plugins 2: 10.0.0.5"});
    EXPECT_TRUE(data.shareAccesses.IsEmpty());
}

TEST_F(ShareTickTest, SwitchedOffRemoteAccessIsKeptUntilItIsSwitchedOn) {
    data.settings.RAVisualization = 0;
    Connects("10.0.0.5", "music", "ann");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.shareAccesses.Count(), 1u);
    EXPECT_EQ(events.resets, 0);
    data.settings.RAVisualization = 1;
    EXPECT_EQ(AfterTick().back(), "plugins 2: 10.0.0.5");
}

TEST_F(ShareTickTest, AccessesThatAreAllFilteredReachThePluginsAndLeaveTheList) {
    data.settings.RAIgnoreLocalhost = 1;
    surface.host.showing = true;
    Connects("127.0.0.1", "music", "ann");
    EXPECT_EQ(AfterTick(), Calls{"plugins 2: 127.0.0.1"});
    EXPECT_TRUE(data.shareAccesses.IsEmpty());
}

TEST_F(ShareTickTest, OneAccessThatIsToldKeepsTheFilteredOnesWaitingToo) {
    data.settings.RAIgnoreLocalhost = 1;
    surface.host.showing = true;
    Connects("127.0.0.1", "music", "ann");
    Connects("10.0.0.5", "music", "ann");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.shareAccesses.Count(), 2u);
    surface.host.showing = false;
    const Calls calls = AfterTick();
    EXPECT_EQ(calls[2], "host show Remoteaccess detected :\n10.0.0.5 connected on music with user 'ann'");
    EXPECT_EQ(calls[3], "plugins 2: 127.0.0.1 10.0.0.5");
}

struct FilterRow {
    const char* name;
    Shared<u8> VardelSettings::*flag;
    const char* computer;
    const char* share;
    const char* user;
    bool isTold;  // with the flag set
};

class RemoteAccessFilterTest : public ShareTickTest, public testing::WithParamInterface<FilterRow> {};

TEST_P(RemoteAccessFilterTest, LeavesOutWhatItsFlagNames) {
    const FilterRow& row = GetParam();
    Knows("10.0.0.1").isLocal = 1;
    Knows("10.0.0.2").isLocal = 0;
    Trusts("10.0.0.3");
    Connects(row.computer, row.share, row.user);
    // Without the flag everything is told.
    EXPECT_EQ(AfterTick().size(), 4u);
    surface.host.showing = false;
    data.settings.*row.flag = 1;
    Connects(row.computer, row.share, row.user);
    EXPECT_EQ(AfterTick().size(), row.isTold ? 4u : 1u);
}

constexpr auto kIpc = &VardelSettings::RAIgnoreIPCNoUsername;
constexpr auto kLocal = &VardelSettings::RAIgnoreLocalhost;
constexpr auto kTrusted = &VardelSettings::RAIgnoreTrustedHosts;

INSTANTIATE_TEST_SUITE_P(
    Rows, RemoteAccessFilterTest,
    testing::Values(FilterRow{"IpcWithoutUser", kIpc, "10.0.0.5", "IPC$", "", false},
                    FilterRow{"IpcWithUser", kIpc, "10.0.0.5", "IPC$", "ann", true},
                    FilterRow{"IpcInOtherCase", kIpc, "10.0.0.5", "ipc$", "", true},
                    FilterRow{"OtherShareWithoutUser", kIpc, "10.0.0.5", "music", "", true},
                    FilterRow{"Loopback", kLocal, "127.0.0.1", "music", "ann", false},
                    FilterRow{"OtherLoopback", kLocal, "127.0.0.2", "music", "ann", true},
                    FilterRow{"OwnAddress", kLocal, "10.0.0.1", "music", "ann", false},
                    FilterRow{"OtherKnownHost", kLocal, "10.0.0.2", "music", "ann", true},
                    FilterRow{"UnknownHost", kLocal, "10.0.0.9", "music", "ann", true},
                    FilterRow{"TrustedHost", kTrusted, "10.0.0.3", "music", "ann", false},
                    FilterRow{"UntrustedHost", kTrusted, "10.0.0.5", "music", "ann", true}),
    [](const testing::TestParamInfo<FilterRow>& row) { return std::string(row.param.name); });

// ---- new shares ----

TEST_F(ShareTickTest, NewSharesAreToldInTheHostPopup) {
    Offers("music");
    Offers("films");
    EXPECT_EQ(AfterTick(), (Calls{"host reset", kShareColors, "host show New remote share(s) found :\n\tmusic\n\tfilms",
                                  "plugins 1: music films"}));
    EXPECT_TRUE(data.newShares.IsEmpty());
    EXPECT_TRUE(IsFree(Fence::NetRes));
}

TEST_F(ShareTickTest, ABalloonOfNewSharesLeavesTheBareProductNameAsTooltip) {
    data.settings.ShareUseToolTips = 1;
    surface.host.showing = true;
    Offers("music");
    EXPECT_EQ(AfterTick(), (Calls{"tray 121 New remote share(s) found :\n\tmusic | ", "plugins 1: music"}));
}

TEST_F(ShareTickTest, NewSharesWaitForThePopup) {
    surface.host.showing = true;
    Offers("music");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.newShares.Count(), 1u);
    EXPECT_TRUE(IsFree(Fence::NetRes));
    surface.host.showing = false;
    EXPECT_EQ(AfterTick().back(), "plugins 1: music");
}

TEST_F(ShareTickTest, WithoutAPopupNewSharesAreConsumedUnseen) {
    surface.hasHost = false;
    Offers("music");
    EXPECT_EQ(AfterTick(), Calls{"plugins 1: music"});
    EXPECT_TRUE(data.newShares.IsEmpty());
}

TEST_F(ShareTickTest, SwitchedOffNewSharesAreConsumedUnseenAndReachThePlugins) {
    data.settings.ShareVisualization = 0;
    surface.host.showing = true;
    Offers("music");
    EXPECT_EQ(AfterTick(), Calls{"plugins 1: music"});
    EXPECT_TRUE(data.newShares.IsEmpty());
    EXPECT_TRUE(IsFree(Fence::NetRes));
}

TEST_F(ShareTickTest, NewSharesWaitForThePopupOfRemoteAccessOfTheSameTick) {
    Connects("10.0.0.5", "music", "ann");
    Offers("films");
    EXPECT_EQ(AfterTick().back(), "plugins 2: 10.0.0.5");
    EXPECT_EQ(data.newShares.Count(), 1u);
}

TEST_F(ShareTickTest, NewSharesAreToldAlsoWhileRemoteAccessIsKept) {
    data.settings.ShareUseToolTips = 1;
    surface.host.showing = true;
    Connects("10.0.0.5", "music", "ann");
    Offers("films");
    EXPECT_EQ(AfterTick().back(), "plugins 1: films");
    EXPECT_EQ(data.shareAccesses.Count(), 1u);
}

TEST_F(ShareTickTest, WhatJoinsDuringATickIsThereForTheNext) {
    Connects("10.0.0.5", "music", "ann");
    Offers("films");
    surface.hasHost = false;
    deeds.onQueue = [&](u32 kind) {
        if (kind == kNotifyShareAccesses) Connects("10.0.0.6", "music", "bob");
        if (kind == kNotifyNewShares) Offers("late");
        EXPECT_EQ(IsFree(Fence::Shares), kind != kNotifyShareAccesses);
        EXPECT_EQ(IsFree(Fence::NetRes), kind != kNotifyNewShares);
    };
    EXPECT_EQ(AfterTick(), (Calls{"plugins 2: 10.0.0.5", "plugins 1: films"}));
    EXPECT_EQ(data.shareAccesses.Count(), 1u);
    EXPECT_EQ(data.newShares.Count(), 1u);
}

TEST_F(ShareTickTest, WithNothingNewItDoesNothing) {
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(events.resets, 0);
}

}  // namespace
}  // namespace vardel

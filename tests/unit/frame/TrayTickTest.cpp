#include "frame/TrayTick.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using test::Calls;
using test::kWarningColors;

constexpr char kNewHostColors[] = "host colors (180,196,228) (180,196,228) (0,0,0) (51,153,255)";

class TrayTickTest : public test::TickFixture {
  protected:
    TrayTickTest() { TellHostsInPopups(); }
    Calls AfterTick() {
        Tick(kTrayTimer);
        return TakeAlerts();
    }
    static std::string Tray(int icon, const std::string& text, int hosts) {
        return "tray " + std::to_string(icon) + " " + text + " | Vardelwatch - " + std::to_string(hosts) +
               " host(s) found";
    }
    static Calls Starts(const Calls& calls) {
        Calls starts;
        for (const std::string& call : calls)
            if (call.starts_with("start ")) starts.push_back(call);
        return starts;
    }
};

// ---- the tooltip and the host count ----

TEST_F(TrayTickTest, EveryTickCountsTheHostsForThePluginsAndRefreshesTheTooltip) {
    Knows("10.0.0.5");
    for (int round = 0; round < 2; ++round) {
        Tick(kTrayTimer);
        EXPECT_EQ(TakeCalls(), (Calls{"plugins 32:", Tray(102, "Vardelwatch", 1)}));
    }
}

TEST_F(TrayTickTest, TheHostCountComesFirst) {
    Arrives("10.0.0.5");
    Tick(kTrayTimer);
    EXPECT_EQ(TakeCalls().front(), "plugins 32:");
}

TEST_F(TrayTickTest, TheTooltipIsCutToItsRoom) {
    system.strings.texts[IDS_TRAY_TOOLTIP] = std::string(200, 'x') + "%s" + std::string(100, 'y');
    char tip[kTooltipSize];
    FormTooltip(data, nullptr, tip);
    EXPECT_EQ(std::string(tip), std::string(200, 'x') + "Vardelwatch" + std::string(44, 'y'));
}

TEST_F(TrayTickTest, OtherTagsOfATranslationStandAsTheyAre) {
    system.strings.texts[IDS_TRAY_TOOLTIP] = "100% %n %d %";
    char tip[kTooltipSize];
    FormTooltip(data, nullptr, tip);
    EXPECT_STREQ(tip, "100% %n 0 %");
}

// ---- new hosts: the form of the alert ----

TEST_F(TrayTickTest, NewHostsAreToldInTheHostPopup) {
    Arrives("10.0.0.5", "desk");
    Arrives("10.0.0.6", "printer");
    EXPECT_EQ(AfterTick(),
              (Calls{"host reset", kNewHostColors,
                     "host show New host(s) found :\n\tdesk [10.0.0.5]\n\tprinter [10.0.0.6]",
                     "plugins 0: 10.0.0.5 10.0.0.6"}));
    EXPECT_TRUE(data.newEntries.IsEmpty());
    EXPECT_TRUE(IsFree(Fence::NewEntries));
}

TEST_F(TrayTickTest, NewHostsAreToldInABalloon) {
    data.settings.Visualization = 1;
    Arrives("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(),
              (Calls{Tray(121, "New host(s) found :\n\tdesk [10.0.0.5]", 1), "plugins 0: 10.0.0.5"}));
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, ABalloonIsRaisedAlsoWhileThePopupShows) {
    data.settings.Visualization = 2;
    surface.host.showing = true;
    Arrives("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick().front(), Tray(121, "New host(s) found :\n\tdesk [10.0.0.5]", 1));
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, AnEmptyNameStillHasItsLine) {
    Arrives("10.0.0.5", "");
    EXPECT_EQ(AfterTick()[2], "host show New host(s) found :\n\t [10.0.0.5]");
}

TEST_F(TrayTickTest, WithoutAPopupNewHostsAreConsumedUnseen) {
    surface.hasHost = false;
    data.settings.OtherApp = "app";
    Arrives("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), (Calls{"start app  for 10.0.0.5", "plugins 0: 10.0.0.5"}));
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, WhileThePopupShowsNothingIsConsumed) {
    surface.host.showing = true;
    data.settings.OtherApp = "app";
    Arrives("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.newEntries.Count(), 1u);
    EXPECT_TRUE(IsFree(Fence::NewEntries));
}

TEST_F(TrayTickTest, TenHostsOverSeveralTicksMakeOnePopupOnceItIsFree) {
    surface.host.showing = true;
    std::string text = "host show New host(s) found :", items = "plugins 0:";
    for (int i = 0; i < 10; ++i) {
        const std::string ip = "10.0.0." + std::to_string(i);
        Arrives(ip, "h" + std::to_string(i));
        text += "\n\th" + std::to_string(i) + " [" + ip + "]";
        items += " " + ip;
        if (i % 3 == 0) {
            EXPECT_EQ(AfterTick(), Calls{});
        }
    }
    surface.host.showing = false;
    EXPECT_EQ(AfterTick(), (Calls{"host reset", kNewHostColors, text, items}));
    EXPECT_EQ(AfterTick(), Calls{Tray(102, "Vardelwatch", 10)});
}

TEST_F(TrayTickTest, WhatJoinsDuringATickIsThereForTheNext) {
    Arrives("10.0.0.5", "desk");
    deeds.onQueue = [&](u32 kind) {
        if (kind == kNotifyNewHosts && !data.arpMap.FindValue("10.0.0.6")) Arrives("10.0.0.6", "late");
    };
    EXPECT_EQ(AfterTick().back(), "plugins 0: 10.0.0.5");
    surface.host.showing = false;
    EXPECT_EQ(AfterTick(), (Calls{"host reset", kNewHostColors, "host show New host(s) found :\n\tlate [10.0.0.6]",
                                  "plugins 0: 10.0.0.6"}));
}

TEST_F(TrayTickTest, AHostThatWasToldStaysInTheTable) {
    HostRecord& host = Arrives("10.0.0.5", "desk");
    AfterTick();
    EXPECT_EQ(data.arpMap.FindValue("10.0.0.5"), &host);
}

// ---- new hosts: Silent Mode ----

TEST_F(TrayTickTest, SilentModeLosesNewHostsToTheAlertsForGood) {
    data.settings.UseToolTips = 0;
    data.settings.OtherApp = "app";
    Arrives("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), (Calls{"plugins 0: 10.0.0.5", Tray(102, "Vardelwatch", 1)}));
    EXPECT_TRUE(IsFree(Fence::NewEntries));
    data.settings.UseToolTips = 1;
    EXPECT_EQ(AfterTick(), Calls{Tray(102, "Vardelwatch", 1)});
}

TEST_F(TrayTickTest, SilentModeConsumesNewHostsAlsoWhileThePopupShows) {
    data.settings.UseToolTips = 0;
    surface.host.showing = true;
    Arrives("10.0.0.5", "desk");
    AfterTick();
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, SilentModeWithNothingNewOnlyRefreshesTheTooltip) {
    data.settings.UseToolTips = 0;
    EXPECT_EQ(AfterTick(), Calls{Tray(102, "Vardelwatch", 0)});
    EXPECT_EQ(events.resets, 0);
}

TEST_F(TrayTickTest, SilentModeTellsMacSpoofingAllTheSame) {
    data.settings.UseToolTips = 0;
    IsSpoofed("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick()[4], "host show MAC spoofing alert on following addresses :\ndesk (10.0.0.5)");
}

// ---- new hosts: trusted ones left out ----

TEST_F(TrayTickTest, TrustedHostsAreToldUnlessTheUserLeavesThemOut) {
    Trusts("10.0.0.5");
    Arrives("10.0.0.5", "mine");
    EXPECT_EQ(AfterTick()[2], "host show New host(s) found :\n\tmine [10.0.0.5]");
}

TEST_F(TrayTickTest, TrustedHostsLeftOutHaveNoLine) {
    data.settings.NotifyTrusted = 1;
    Trusts("10.0.0.5");
    Arrives("10.0.0.5", "mine");
    Arrives("10.0.0.6", "other");
    const Calls calls = AfterTick();
    EXPECT_EQ(calls[2], "host show New host(s) found :\n\tother [10.0.0.6]");
    EXPECT_EQ(calls[3], "plugins 0: 10.0.0.5 10.0.0.6");
}

TEST_F(TrayTickTest, OnlyTrustedHostsShowNoAlertButStartApplicationsAndReachPlugins) {
    data.settings.NotifyTrusted = 1;
    data.settings.TrustedApp = "app";
    data.settings.TrustedAppParams = "%VDLW_IP%";
    Trusts("10.0.0.5");
    Trusts("10.0.0.6");
    Arrives("10.0.0.5");
    Arrives("10.0.0.6");
    EXPECT_EQ(AfterTick(), (Calls{Tray(102, "Vardelwatch", 2), "start app %VDLW_IP% for 10.0.0.5",
                                  "start app %VDLW_IP% for 10.0.0.6", "plugins 0: 10.0.0.5 10.0.0.6"}));
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, OnlyTrustedHostsAreConsumedAlsoWhileThePopupShows) {
    data.settings.NotifyTrusted = 1;
    surface.host.showing = true;
    Trusts("10.0.0.5");
    Arrives("10.0.0.5");
    EXPECT_EQ(AfterTick(), (Calls{Tray(102, "Vardelwatch", 1), "plugins 0: 10.0.0.5"}));
    EXPECT_TRUE(data.newEntries.IsEmpty());
}

TEST_F(TrayTickTest, OneUntrustedHostAmongTrustedOnesKeepsTheListWhileThePopupShows) {
    data.settings.NotifyTrusted = 1;
    surface.host.showing = true;
    Trusts("10.0.0.5");
    Arrives("10.0.0.5");
    Arrives("10.0.0.6");
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.newEntries.Count(), 2u);
}

TEST_F(TrayTickTest, OnlyTrustedHostsWithBalloonsRefreshTheTooltip) {
    data.settings.NotifyTrusted = 1;
    data.settings.Visualization = 1;
    Trusts("10.0.0.5");
    Arrives("10.0.0.5");
    EXPECT_EQ(AfterTick().front(), Tray(102, "Vardelwatch", 1));
}

// ---- applications ----

TEST_F(TrayTickTest, TrustedAndOtherHostsStartTheirOwnApplication) {
    data.settings.TrustedApp = "good";
    data.settings.TrustedAppParams = "-t";
    data.settings.OtherApp = "bad";
    data.settings.OtherAppParams = "-o";
    Trusts("10.0.0.5");
    Arrives("10.0.0.5");
    Arrives("10.0.0.6");
    EXPECT_EQ(Starts(AfterTick()), (Calls{"start good -t for 10.0.0.5", "start bad -o for 10.0.0.6"}));
}

TEST_F(TrayTickTest, WithoutATrustedApplicationATrustedHostStartsTheOther) {
    data.settings.OtherApp = "bad";
    data.settings.OtherAppUnknown = 1;
    Trusts("10.0.0.5");
    Arrives("10.0.0.5");
    EXPECT_EQ(Starts(AfterTick()), Calls{"start bad  for 10.0.0.5"});
}

TEST_F(TrayTickTest, WithoutTheOtherApplicationNothingStartsForOtherHosts) {
    data.settings.TrustedApp = "good";
    Arrives("10.0.0.6");
    EXPECT_EQ(Starts(AfterTick()), Calls{});
}

TEST_F(TrayTickTest, ApplicationsStartAlsoAfterABalloon) {
    data.settings.Visualization = 1;
    data.settings.OtherApp = "bad";
    Arrives("10.0.0.6");
    EXPECT_EQ(AfterTick()[1], "start bad  for 10.0.0.6");
}

struct OtherAppRow {
    u8 distrustedFlag, unknownFlag;
    bool startsForDistrusted, startsForUnknown;
};

class OtherAppTest : public TrayTickTest, public testing::WithParamInterface<OtherAppRow> {};

TEST_P(OtherAppTest, TheFlagsSayForWhomItStarts) {
    const OtherAppRow& row = GetParam();
    data.settings.OtherApp = "bad";
    data.settings.OtherAppDistrusted = row.distrustedFlag;
    data.settings.OtherAppUnknown = row.unknownFlag;
    Distrusts("10.0.0.5");
    Arrives("10.0.0.5");
    Arrives("10.0.0.6");
    Calls expected;
    if (row.startsForDistrusted) expected.push_back("start bad  for 10.0.0.5");
    if (row.startsForUnknown) expected.push_back("start bad  for 10.0.0.6");
    EXPECT_EQ(Starts(AfterTick()), expected);
}

INSTANTIATE_TEST_SUITE_P(Flags, OtherAppTest,
                         testing::Values(OtherAppRow{0, 0, true, true}, OtherAppRow{1, 0, true, false},
                                         OtherAppRow{0, 1, false, true}, OtherAppRow{1, 1, true, true}));

// ---- MAC spoofing ----

TEST_F(TrayTickTest, MacSpoofingIsToldInRedForLonger) {
    IsSpoofed("10.0.0.5", "desk");
    IsSpoofed("10.0.0.6", "printer");
    EXPECT_EQ(AfterTick(),
              (Calls{Tray(102, "Vardelwatch", 2), "host reset", kWarningColors, "host time 7500",
                     "host show MAC spoofing alert on following addresses :\ndesk (10.0.0.5)\nprinter (10.0.0.6)",
                     "plugins 4: 10.0.0.5 10.0.0.6"}));
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
    EXPECT_TRUE(IsFree(Fence::MacSpoofs));
}

TEST_F(TrayTickTest, MacSpoofingIsToldInABalloon) {
    data.settings.MACSpoofingVisualizationStyle = 1;
    surface.host.showing = true;
    IsSpoofed("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(),
              (Calls{Tray(102, "Vardelwatch", 1),
                     Tray(119, "MAC spoofing alert on following addresses :\ndesk (10.0.0.5)", 1),
                     "plugins 4: 10.0.0.5"}));
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

TEST_F(TrayTickTest, MacSpoofingWaitsForThePopup) {
    surface.host.showing = true;
    IsSpoofed("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), Calls{Tray(102, "Vardelwatch", 1)});
    EXPECT_EQ(data.macSpoofs.Count(), 1u);
    EXPECT_TRUE(IsFree(Fence::MacSpoofs));
    IsSpoofed("10.0.0.6", "printer");
    surface.host.showing = false;
    EXPECT_EQ(AfterTick().back(), "plugins 4: 10.0.0.5 10.0.0.6");
}

TEST_F(TrayTickTest, MacSpoofingWaitsForThePopupOfNewHostsOfTheSameTick) {
    Arrives("10.0.0.5", "desk");
    IsSpoofed("10.0.0.5");
    EXPECT_EQ(AfterTick().back(), "plugins 0: 10.0.0.5");
    EXPECT_EQ(data.macSpoofs.Count(), 1u);
}

TEST_F(TrayTickTest, MacSpoofingIsToldWhileNewHostsWait) {
    data.settings.MACSpoofingVisualizationStyle = 1;
    surface.host.showing = true;
    Arrives("10.0.0.5", "desk");
    IsSpoofed("10.0.0.5");
    EXPECT_EQ(AfterTick().back(), "plugins 4: 10.0.0.5");
    EXPECT_EQ(data.newEntries.Count(), 1u);
}

TEST_F(TrayTickTest, WithoutAPopupMacSpoofingIsConsumedUnseen) {
    surface.hasHost = false;
    IsSpoofed("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), (Calls{Tray(102, "Vardelwatch", 1), "plugins 4: 10.0.0.5"}));
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
}

TEST_F(TrayTickTest, SwitchedOffMacSpoofingIsConsumedWithoutItsFence) {
    data.settings.MACSpoofingVisualization = 0;
    surface.host.showing = true;
    IsSpoofed("10.0.0.5", "desk");
    EXPECT_EQ(AfterTick(), (Calls{Tray(102, "Vardelwatch", 1), "plugins 4: 10.0.0.5"}));
    EXPECT_TRUE(data.macSpoofs.IsEmpty());
    EXPECT_EQ(events.resets, 0);
}

TEST_F(TrayTickTest, ASpoofThatJoinsDuringATickIsThereForTheNext) {
    IsSpoofed("10.0.0.5", "desk");
    deeds.onQueue = [&](u32 kind) {
        if (kind == kNotifyMacSpoofs) IsSpoofed("10.0.0.6");
    };
    AfterTick();
    EXPECT_EQ(data.macSpoofs.Count(), 1u);
}

// ---- the fences ----

TEST_F(TrayTickTest, NeverHoldsTwoListFencesAtOnce) {
    Arrives("10.0.0.5");
    IsSpoofed("10.0.0.6");
    surface.hasHost = false;
    deeds.onQueue = [&](u32 kind) {
        EXPECT_EQ(IsFree(Fence::NewEntries), kind != kNotifyNewHosts);
        EXPECT_EQ(IsFree(Fence::MacSpoofs), kind != kNotifyMacSpoofs);
    };
    AfterTick();
    EXPECT_EQ(events.resets, 2);
    EXPECT_EQ(events.sets, 2);
}

TEST_F(TrayTickTest, MemoryThatRunsOutLeavesTheListAndLowersTheFence) {
    Arrives("10.0.0.5");
    surface.onTray = [] { throw std::bad_alloc(); };
    data.settings.Visualization = 1;
    Tick(kTrayTimer);
    EXPECT_EQ(data.newEntries.Count(), 1u);
    EXPECT_TRUE(IsFree(Fence::NewEntries));
}

}  // namespace
}  // namespace vardel

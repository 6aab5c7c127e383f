#include "frame/SyslogTick.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TickFixture.h"

namespace vardel {
namespace {

using test::Calls;

class SyslogTickTest : public test::TickFixture {
  protected:
    Calls AfterTick() {
        Tick(kSyslogTimer);
        return TakeCalls();
    }
    // What the popup says of one message.
    std::string Told(const std::string& text, i32 severity = 3, i32 facility = 0) {
        Logs("10.0.0.5", text, severity, facility);
        const Calls calls = AfterTick();
        surface.syslog.showing = false;
        return calls.size() == 1 ? calls[0].substr(calls[0].find("show ") + 5) : "nothing";
    }
    Calls AMessageIsKept() {
        Logs("10.0.0.5", "text");
        const Calls calls = AfterTick();
        EXPECT_EQ(data.syslogNotifications.Count(), 1u);
        EXPECT_TRUE(IsFree(Fence::SysLog));
        return calls;
    }
};

TEST_F(SyslogTickTest, TellsOfAMessageInTheSyslogPopup) {
    Logs("10.0.0.5", "disk failed", 2, 4);
    EXPECT_EQ(AfterTick(), Calls{"syslog show Syslog message from 10.0.0.5 : [ Critical - security/authorization ]"
                                 "\n\tdisk failed"});
    EXPECT_TRUE(data.syslogNotifications.IsEmpty());
    EXPECT_TRUE(IsFree(Fence::SysLog));
}

TEST_F(SyslogTickTest, JoinsMessagesByALineFeed) {
    Logs("10.0.0.5", "one");
    Logs("10.0.0.6", "two");
    EXPECT_EQ(AfterTick(), Calls{"syslog show Syslog message from 10.0.0.5 : [ Error - kernel message ]\n\tone\n"
                                 "Syslog message from 10.0.0.6 : [ Error - kernel message ]\n\ttwo"});
}

TEST_F(SyslogTickTest, ElevenMessagesMakeOnePopupOfTenAndThenOneOfOne) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%4";
    for (int i = 0; i < 11; ++i) Logs("10.0.0.5", std::to_string(i));
    EXPECT_EQ(AfterTick(), Calls{"syslog show 0\n1\n2\n3\n4\n5\n6\n7\n8\n9"});
    EXPECT_EQ(data.syslogNotifications.Count(), 1u);
    EXPECT_EQ(AfterTick(), Calls{});
    surface.syslog.showing = false;
    EXPECT_EQ(AfterTick(), Calls{"syslog show 10"});
    EXPECT_TRUE(data.syslogNotifications.IsEmpty());
}

TEST_F(SyslogTickTest, AMessageOfSixtyCharactersIsShownWhole) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%4";
    EXPECT_EQ(Told(std::string(60, 'x')), std::string(60, 'x'));
}

TEST_F(SyslogTickTest, AMessageOfSixtyOneCharactersIsCutToSixty) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%4";
    EXPECT_EQ(Told(std::string(60, 'x') + "y"), std::string(60, 'x') + "...");
}

TEST_F(SyslogTickTest, WaitsForTheHostPopup) {
    surface.host.showing = true;
    EXPECT_EQ(AMessageIsKept(), Calls{});
}

TEST_F(SyslogTickTest, WaitsForTheSyslogPopup) {
    surface.syslog.showing = true;
    EXPECT_EQ(AMessageIsKept(), Calls{});
}

TEST_F(SyslogTickTest, DoesNotWaitForTheWatchPopup) {
    surface.watch.showing = true;
    surface.hasWatch = false;
    EXPECT_NE(Told("text"), "nothing");
}

TEST_F(SyslogTickTest, KeepsMessagesWhereOneOfThePopupsIsMissing) {
    surface.hasHost = false;
    EXPECT_EQ(AMessageIsKept(), Calls{});
    surface.hasHost = true;
    surface.hasSyslog = false;
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(data.syslogNotifications.Count(), 1u);
}

TEST_F(SyslogTickTest, KeepsMessagesWithoutATemplate) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "";
    EXPECT_EQ(AMessageIsKept(), Calls{});
}

TEST_F(SyslogTickTest, WithNothingWaitingItTakesNoFence) {
    EXPECT_EQ(AfterTick(), Calls{});
    EXPECT_EQ(events.resets, 0);
}

TEST_F(SyslogTickTest, OnlyTheFirstOfEachTagIsReplaced) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%1 %1 %4 %4";
    EXPECT_EQ(Told("x"), "10.0.0.5 %1 x %4");
}

TEST_F(SyslogTickTest, AMessageIsNeverTakenForATemplate) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%1 %2: %4";
    Logs("10.0.0.5", "100%1 %2 %4 %s%n");
    Logs("10.0.0.6", "next");
    EXPECT_EQ(AfterTick(), Calls{"syslog show 10.0.0.5 Error: 100%1 %2 %4 %s%n\n10.0.0.6 Error: next"});
}

TEST_F(SyslogTickTest, EmptyTextsStillHaveTheirLine) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "[%1] [%4]";
    Logs("", "");
    EXPECT_EQ(AfterTick(), Calls{"syslog show [] []"});
}

TEST_F(SyslogTickTest, NamesEveryLevel) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%2";
    const char* const names[] = {"Emergency", "Alert",  "Critical",    "Error",
                                 "Warning",   "Notice", "Information", "Debug"};
    for (int level = 0; level < 8; ++level) EXPECT_EQ(Told("x", level), names[level]);
    EXPECT_EQ(Told("x", -1), "Unknown");
    EXPECT_EQ(Told("x", 8), "Unknown");
}

TEST_F(SyslogTickTest, NamesTheFacility) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "%3";
    EXPECT_EQ(Told("x", 3, 0), "kernel message");
    EXPECT_EQ(Told("x", 3, 23), "local7");
    EXPECT_EQ(Told("x", 3, 24), "unknown");
}

TEST_F(SyslogTickTest, AFacilityBeyondTheListPicksNoOtherTextOfTheProgram) {
    system.strings.texts[IDS_ALERT_SYSLOG] = "<%3>";
    EXPECT_EQ(Told("x", 3, 25), "<unknown>");
    EXPECT_EQ(Told("x", 3, 127), "<unknown>");
    EXPECT_EQ(Told("x", 3, -1), "<unknown>");
}

}  // namespace
}  // namespace vardel

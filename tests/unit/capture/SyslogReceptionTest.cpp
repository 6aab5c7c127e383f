#include "capture/SyslogReception.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/unit/support/ForwardingEvents.h"
#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

const std::string kSenderIp = "10.0.0.7";

class SyslogReception : public testing::Test {
  protected:
    SyslogReception() { lan.data.settings.Syslog = 1; }
    void Sends(const std::string& message, const std::string& source = kSenderIp) {
        lan.Says(SyslogDatagram{.sourceIp = source, .message = message});
    }
    std::vector<SyslogRecord> Stored() { return lan.MessagesOf(kSenderIp); }
    // The one message that is stored.
    SyslogRecord Only() {
        const auto stored = Stored();
        EXPECT_EQ(stored.size(), 1u);
        return stored.empty() ? SyslogRecord() : stored.front();
    }
    void ExpectNothingStored() {
        EXPECT_EQ(lan.data.syslogs.Count(), 0u);
        EXPECT_TRUE(lan.SeenEvents().empty());
    }
    VardelSettings& Settings() { return lan.data.settings; }

    WatchedLan lan;
};

// ---- taking a message apart ----

TEST_F(SyslogReception, TakesFacilitySeverityAndText) {
    Sends("<13>hello");
    const SyslogRecord record = Only();
    EXPECT_EQ(record.facility, 1);
    EXPECT_EQ(record.severity, 5);
    EXPECT_STREQ(record.text, "hello");
    EXPECT_EQ(std::string(record.source), kSenderIp);
    EXPECT_EQ(record.serial, 1u);
    EXPECT_EQ(record.expired, 0);
    EXPECT_NEAR(static_cast<double>(record.received), static_cast<double>(SystemClock().Now()), 5);
}

struct PriCase {
    const char* message;
    i32 facility, severity;
    const char* text;
};

class SyslogPri : public testing::TestWithParam<PriCase> {};

TEST_P(SyslogPri, IsReadAsItStands) {
    const PriCase& expected = GetParam();
    WatchedLan lan;
    lan.data.settings.Syslog = 1;
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = expected.message});
    const auto stored = lan.MessagesOf(kSenderIp);
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0].facility, expected.facility);
    EXPECT_EQ(stored[0].severity, expected.severity);
    EXPECT_STREQ(stored[0].text, expected.text);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, SyslogPri,
    testing::Values(PriCase{"<0>zero", 0, 0, "zero"}, PriCase{"<7>seven", 0, 7, "seven"},
                    PriCase{"<8>eight", 1, 0, "eight"}, PriCase{"<191>most", 23, 7, "most"},
                    PriCase{"<999>beyond", 124, 7, "beyond"},
                    PriCase{"<1234>x", 15, 3, "4>x"},  // the fourth digit ends the number
                    PriCase{"<013>padded", 1, 5, "padded"}, PriCase{"<0013>padded", 0, 1, "3>padded"},
                    PriCase{"<13hello", 1, 5, "hello"},  // the bracket may be missing
                    PriCase{"<>text", 0, 0, "text"}, PriCase{"<text", 0, 0, "text"},
                    PriCase{"<13>>text", 1, 5, ">text"}, PriCase{"<13> text", 1, 5, " text"},
                    PriCase{"< 13>text", 0, 0, " 13>text"}, PriCase{"<-1>text", 0, 0, "-1>text"},
                    PriCase{"<1/2:", 0, 1, "/2:"}, PriCase{"<1:", 0, 1, ":"},
                    PriCase{"<34>Oct 11 22:14:15 mymachine su: 'su root' failed", 4, 2,
                            "Oct 11 22:14:15 mymachine su: 'su root' failed"}));

TEST_F(SyslogReception, DropsWhatDoesNotBeginWithABracket) {
    for (const char* message : {"13>hello", " <13>hello", ">", "hello", ""}) Sends(message);
    ExpectNothingStored();
}

TEST_F(SyslogReception, DropsAMessageWithoutText) {
    Sends("<13>");  // Ethernet padding follows: the text begins with a NUL
    for (const char* message : {"<13>", "<13", "<", "<>", "<123>", "<123"})
        lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = message, .padded = false});
    ExpectNothingStored();
}

TEST_F(SyslogReception, KeepsATextOfOneCharacter) {
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = "<13>x", .padded = false});
    EXPECT_STREQ(Only().text, "x");
}

TEST_F(SyslogReception, KeepsATextOf1023CharactersAndDropsALongerOneWhole) {
    const std::string fits(1023, 'x');
    Sends("<191>" + fits + "x");
    Sends("<191>" + fits + std::string(400, 'x'));
    ExpectNothingStored();
    Sends("<191>" + fits);
    EXPECT_EQ(std::string(Only().text), fits);
}

// The limit is on what was captured, so the same text without its bracket is one character longer.
TEST_F(SyslogReception, CountsTheLengthFromTheEndOfThePri) {
    Sends("<13" + std::string(1024, 'x'));
    ExpectNothingStored();
    Sends("<13" + std::string(1023, 'x'));
    EXPECT_EQ(Only().text.GetLength(), 1023);
}

TEST_F(SyslogReception, TakesTheLengthFromTheCaptureAndNotFromTheUdpHeader) {
    lan.Says(
        UdpFrame{.sourceIp = kSenderIp, .destinationPort = 514, .payload = "<13>all of it", .udpLength = u16{9}});
    EXPECT_STREQ(Only().text, "all of it");
}

TEST_F(SyslogReception, EndsTheTextAtItsFirstNul) {
    Sends(std::string("<13>seen\0hidden", 15));
    EXPECT_STREQ(Only().text, "seen");
    Sends(std::string("<13>\0hidden", 11));
    EXPECT_EQ(Stored().size(), 1u);
}

TEST_F(SyslogReception, StripsLineFeedsFromTheEndAndNothingElse) {
    Sends("<13>one\n");
    Sends("<13>two\n\n");
    Sends("<13>carriage\r\n");
    Sends("<13>in\nside \n");
    Sends("<13>\n\n");
    const auto stored = Stored();
    ASSERT_EQ(stored.size(), 5u);
    EXPECT_STREQ(stored[0].text, "one");
    EXPECT_STREQ(stored[1].text, "two");
    EXPECT_STREQ(stored[2].text, "carriage\r");
    EXPECT_STREQ(stored[3].text, "in\nside ");
    EXPECT_STREQ(stored[4].text, "");
}

TEST_F(SyslogReception, TakesAnyByteOfTheSystemsCodePage) {
    Sends("<13>%s%n \xe4\xff\x01");
    EXPECT_STREQ(Only().text, "%s%n \xe4\xff\x01");
}

TEST_F(SyslogReception, KeepsNothingOfTheMessageBefore) {
    Sends("<13>a long message that comes first");
    Sends("<13>short");
    EXPECT_STREQ(Stored()[1].text, "short");
}

TEST_F(SyslogReception, StoresNothingWhileItIsOff) {
    Sends("<13>one");
    Settings().Syslog = 0;
    Settings().SyslogNotification = 1;
    Settings().SyslogNotificationLevel = 7;
    Sends("<13>two");
    EXPECT_EQ(Stored().size(), 1u);
    EXPECT_EQ(lan.data.syslogs.FindValue(kSenderIp.c_str())->MessageCount(), 1u);
    EXPECT_TRUE(lan.SeenEvents().empty());
}

// ---- by sender ----

TEST_F(SyslogReception, NumbersMessagesBySender) {
    Sends("<13>a", "10.0.0.1");
    Sends("<13>b", "10.0.0.2");
    Sends("<13>c", "10.0.0.1");
    EXPECT_EQ(lan.data.syslogs.Count(), 2u);
    const auto first = lan.MessagesOf("10.0.0.1");
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].serial, 1u);
    EXPECT_EQ(first[1].serial, 2u);
    EXPECT_EQ(lan.MessagesOf("10.0.0.2")[0].serial, 1u);
}

TEST_F(SyslogReception, NeedsNoKnownHost) {
    Sends("<13>from a stranger", "192.168.77.200");
    EXPECT_EQ(lan.MessagesOf("192.168.77.200").size(), 1u);
    EXPECT_EQ(lan.data.arpMap.Count(), 0u);
}

TEST_F(SyslogReception, PassesOverASenderWhoseEntryHoldsNoList) {
    lan.data.syslogs.Insert(kSenderIp.c_str(), static_cast<SyslogSourceList*>(nullptr));
    Settings().SyslogNotification = 1;
    Sends("<0>nowhere to go");
    EXPECT_TRUE(Stored().empty());
    EXPECT_TRUE(lan.SeenEvents().empty());
}

// ---- the limit ----

std::vector<int> ExpiredOf(const std::vector<SyslogRecord>& records) {
    std::vector<int> expired;
    for (const SyslogRecord& record : records) expired.push_back(record.expired);
    return expired;
}

TEST_F(SyslogReception, MarksTheOldestMessagePastTheLimitAndRemovesNone) {
    Settings().SyslogMaxEntries = 2;
    for (const char* message : {"<13>1", "<13>2"}) Sends(message);
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{0, 0}));
    Sends("<13>3");
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{1, 0, 0}));
    Sends("<13>4");
    Sends("<13>5");
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{1, 1, 1, 0, 0}));
}

TEST_F(SyslogReception, ALimitOfOneLeavesTheNewestAlone) {
    Settings().SyslogMaxEntries = 1;
    for (int i = 0; i < 4; ++i) Sends("<13>x");
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{1, 1, 1, 0}));
}

TEST_F(SyslogReception, WithoutALimitNothingExpires) {
    for (int i = 0; i < 300; ++i) Sends("<13>x");
    EXPECT_EQ(ExpiredOf(Stored()), std::vector<int>(300, 0));
}

// One message past the limit marks one, however far past the list is.
TEST_F(SyslogReception, ALimitLoweredLaterIsReachedOneMarkAMessage) {
    for (int i = 0; i < 5; ++i) Sends("<13>x");
    Settings().SyslogMaxEntries = 2;
    Sends("<13>x");
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{1, 0, 0, 0, 0, 0}));
}

TEST_F(SyslogReception, APurgeLeavesTheUnmarkedAndTheCountGoesOn) {
    Settings().SyslogMaxEntries = 2;
    for (int i = 0; i < 5; ++i) Sends("<13>x");
    SyslogSourceList* list = lan.data.syslogs.FindValue(kSenderIp.c_str());
    EXPECT_EQ(list->PurgeExpired(), 3u);
    auto stored = Stored();
    ASSERT_EQ(stored.size(), 2u);
    EXPECT_EQ(stored[0].serial, 4u);
    EXPECT_EQ(stored[1].serial, 5u);
    Sends("<13>x");
    stored = Stored();
    EXPECT_EQ(ExpiredOf(stored), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(stored[2].serial, 6u);
    EXPECT_EQ(list->MessageCount(), 6u);
}

TEST_F(SyslogReception, MarksCountTowardsTheLimitUntilTheyArePurged) {
    Settings().SyslogMaxEntries = 2;
    for (int i = 0; i < 3; ++i) Sends("<13>x");
    Settings().SyslogMaxEntries = 0;
    Sends("<13>x");
    Settings().SyslogMaxEntries = 4;
    Sends("<13>x");  // four are there, one of them marked
    EXPECT_EQ(ExpiredOf(Stored()), (std::vector<int>{1, 1, 0, 0, 0}));
}

// ---- notification ----

class SyslogNotification : public SyslogReception {
  protected:
    SyslogNotification() {
        Settings().SyslogNotification = 1;
        Settings().SyslogNotificationLevel = 3;
        Settings().SyslogNotificationFacility = 20;
    }
    bool Notifies(const std::string& message) {
        const std::size_t before = lan.SeenEvents().size();
        const std::size_t stored = Stored().size();
        Sends(message);
        EXPECT_EQ(Stored().size(), stored + 1);
        return lan.SeenEvents().size() == before + 1;
    }
};

std::string Pri(int facility, int severity) {
    return "<" + std::to_string(facility * 8 + severity) + ">";
}

TEST_F(SyslogNotification, TellsOfMessagesOfTheLevelAndBelow) {
    for (int severity = 0; severity < 8; ++severity)
        EXPECT_EQ(Notifies(Pri(1, severity) + "x"), severity <= 3) << severity;
}

TEST_F(SyslogNotification, TellsOfTheFacilityWhateverTheSeverity) {
    EXPECT_TRUE(Notifies(Pri(20, 7) + "x"));
    EXPECT_FALSE(Notifies(Pri(19, 7) + "x"));
    EXPECT_FALSE(Notifies(Pri(21, 7) + "x"));
    Settings().SyslogNotificationFacility = -1;
    EXPECT_FALSE(Notifies(Pri(20, 7) + "x"));
}

TEST_F(SyslogNotification, LevelZeroAndFacilityZeroAreValuesLikeOthers) {
    Settings().SyslogNotificationLevel = 0;
    Settings().SyslogNotificationFacility = 0;
    lan.data.ParseNotificationWords("nowhere");
    EXPECT_TRUE(Notifies(Pri(0, 7) + "kernel"));
    EXPECT_TRUE(Notifies(Pri(9, 0) + "emergency"));
    EXPECT_FALSE(Notifies(Pri(9, 1) + "alert"));
}

TEST_F(SyslogNotification, AnUnknownLevelTellsOfAll) {
    Settings().SyslogNotificationLevel = 8;
    EXPECT_TRUE(Notifies(Pri(1, 7) + "x"));
    Settings().SyslogNotificationLevel = 0xffffffffu;
    EXPECT_TRUE(Notifies(Pri(1, 7) + "x"));
}

TEST_F(SyslogNotification, TellsOfAWordAnywhereInTheTextInItsExactCase) {
    lan.data.ParseNotificationWords("denied,fail");
    EXPECT_TRUE(Notifies(Pri(1, 7) + "login failed"));
    EXPECT_TRUE(Notifies(Pri(1, 7) + "denied"));
    EXPECT_FALSE(Notifies(Pri(1, 7) + "Login FAILED, Denied"));
    EXPECT_FALSE(Notifies(Pri(1, 7) + "fai led"));
}

TEST_F(SyslogNotification, LooksForWordsInTheTextAlone) {
    lan.data.ParseNotificationWords("15>,x\n");
    EXPECT_FALSE(Notifies("<15>x\n"));
}

TEST_F(SyslogNotification, TellsNothingWhileItIsOff) {
    Settings().SyslogNotification = 0;
    lan.data.ParseNotificationWords("x");
    EXPECT_FALSE(Notifies(Pri(20, 0) + "x"));
}

TEST_F(SyslogNotification, PostsOneEventHoweverManyTestsFit) {
    lan.data.ParseNotificationWords("all,of,them");
    EXPECT_TRUE(Notifies(Pri(20, 1) + "all of them"));
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{10, kSenderIp, "", "all of them", 20 << 16 | 1}}));
}

TEST_F(SyslogNotification, TheEventCarriesTheTextWithoutItsLineFeeds) {
    Sends(Pri(23, 3) + "over\n\n");
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{10, kSenderIp, "", "over", 23 << 16 | 3}}));
}

TEST_F(SyslogNotification, QueuesACopyOfItsOwn) {
    Sends(Pri(4, 2) + "first\n");
    Sends(Pri(4, 7) + "silent");
    Sends(Pri(5, 3) + "second");
    const auto queued = lan.Notifications();
    ASSERT_EQ(queued.size(), 2u);
    EXPECT_STREQ(queued[0].text, "first");
    EXPECT_STREQ(queued[1].text, "second");
    EXPECT_EQ(queued[1].facility, 5);
    EXPECT_EQ(queued[1].severity, 3);
    EXPECT_EQ(std::string(queued[1].source), kSenderIp);
    EXPECT_EQ(queued[0].serial, 0u);
    EXPECT_EQ(Stored().size(), 3u);
    // Freed by the tick; the stored messages stay as they are.
    lan.data.syslogNotifications.ClearTo(lan.data.syslogNotifications.TakeMark(),
                                         [](SyslogRecord* record) { delete record; });
    EXPECT_STREQ(Stored()[0].text, "first");
}

TEST_F(SyslogNotification, WithAnotherTypeTheEventAloneIsLeft) {
    for (u32 type : {1u, 2u}) {
        Settings().SyslogNotificationType = type;
        EXPECT_TRUE(Notifies(Pri(1, 0) + "x"));
    }
    EXPECT_TRUE(lan.Notifications().empty());
}

// ---- what fails ----

// Events whose wait can fail the way an allocation does, and that record who is waited for.
class FailingEvents : public ForwardingEvents {
  public:
    WaitResult Wait(EventHandle event, u32 timeoutMs) override {
        waits.push_back({event, timeoutMs});
        if (fails) throw std::bad_alloc();
        return SystemEvents().Wait(event, 0);
    }
    struct Waited {
        EventHandle event;
        u32 timeoutMs;
    };
    std::vector<Waited> waits;
    bool fails = false;
};

class SyslogFailure : public testing::Test {
  protected:
    SyslogFailure() {
        lan.data.settings.Syslog = 1;
        lan.data.settings.SyslogNotification = 1;
        lan.data.settings.SyslogNotificationLevel = 8;
    }
    FailingEvents events;
    WatchedLan lan{&events};
};

TEST_F(SyslogFailure, DropsTheDatagramAndGoesOnWithTheNextFrame) {
    events.fails = true;
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = "<13>lost"});
    EXPECT_TRUE(lan.MessagesOf(kSenderIp).empty());
    EXPECT_TRUE(lan.Notifications().empty());
    events.fails = false;
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = "<13>kept"});
    ASSERT_EQ(lan.MessagesOf(kSenderIp).size(), 1u);
    EXPECT_EQ(lan.MessagesOf(kSenderIp)[0].serial, 2u);
    EXPECT_EQ(lan.Notifications().size(), 1u);
    EXPECT_EQ(lan.ip.packetCount, 2u);
}

TEST_F(SyslogFailure, WaitsForTheTakerOfTheNotificationsAndAddsAfterATimeOut) {
    ASSERT_TRUE(lan.data.fences.CreateAll());
    lan.data.fences.Raise(Fence::SysLog);
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = "<13>late"});
    ASSERT_EQ(events.waits.size(), 1u);
    EXPECT_EQ(events.waits[0].event, lan.data.fences.Handle(Fence::SysLog));
    EXPECT_EQ(events.waits[0].timeoutMs, 30000u);
    EXPECT_EQ(lan.Notifications().size(), 1u);
    EXPECT_EQ(lan.MessagesOf(kSenderIp).size(), 1u);
}

TEST_F(SyslogFailure, WaitsForNobodyWhereNothingIsQueued) {
    lan.data.settings.SyslogNotificationType = 1;
    lan.Says(SyslogDatagram{.sourceIp = kSenderIp, .message = "<13>x"});
    EXPECT_TRUE(events.waits.empty());
}

}  // namespace
}  // namespace vardel::test

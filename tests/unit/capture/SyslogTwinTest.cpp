// Syslog reception against its literal twin, over random messages and settings.
#include <gtest/gtest.h>

#include <iostream>

#include "tests/unit/support/LiteralIp.h"
#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u64 kDatagrams = 2'000'000;
constexpr u64 kDatagramsALan = 100;

void DrawSettings(Chance& chance, WatchedLan& lan, LiteralState& state) {
    LiteralSettings& twin = state.settings;
    VardelSettings& real = lan.data.settings;
    real.Syslog = static_cast<u8>(twin.syslog = !chance.OneIn(16));
    real.SyslogMaxEntries = twin.syslogMaxEntries = chance.Of({0u, 1u, 2u, 5u, 0x80000000u});
    real.SyslogNotification = static_cast<u8>(twin.syslogNotification = !chance.OneIn(4));
    real.SyslogNotificationLevel = twin.syslogNotificationLevel =
        chance.Of({0u, 1u, 3u, 7u, 8u, 0xffffffffu});
    real.SyslogNotificationType = twin.syslogNotificationType = chance.Below(3);
    real.SyslogNotificationFacility = twin.syslogNotificationFacility = chance.Of({-1, 0, 1, 20, 23, 124});
}

void DrawWords(Chance& chance, WatchedLan& lan, LiteralState& state) {
    static const std::vector<std::string> kWords = {"a", "fail", "error x", "text", "\xe4", "zz"};
    state.notificationWords.clear();
    std::string list;
    for (u32 count = chance.Below(4); count > 0; --count) {
        const std::string& word = chance.Of(kWords);
        state.notificationWords.insert(word);
        list += "," + word;
    }
    lan.data.ParseNotificationWords(list.c_str());
}

std::string DrawPri(Chance& chance) {
    const std::string number = std::to_string(chance.Below(chance.Of({10u, 192u, 1000u, 20000u})));
    switch (chance.Below(8)) {
        case 0:
            return "<" + number;
        case 1:
            return "<>";
        case 2:
            return "<0" + number + ">";
        case 3:
            return chance.Of<const char*>({"", ">", "<", "<x>", "<:>", "</>"});
        default:
            return "<" + number + ">";
    }
}

std::string DrawMessage(Chance& chance) {
    static const std::vector<std::string> kTexts = {"",         "a",  "hello",  "login failed",   "error x",
                                                    "text\r\n", "\n", "\n\n\n", "line\n\nline\n", "FAIL",
                                                    "\xe4 z"};
    std::string text = chance.Of(kTexts);
    if (chance.OneIn(16)) text += std::string(1015 + chance.Below(12), 'x');
    if (chance.OneIn(16)) text.insert(chance.Below(text.size() + 1), 1, '\0');
    if (chance.OneIn(8)) text += "\n";
    return DrawPri(chance) + text;
}

// What the syslog view does at its refresh.
void Purge(WatchedLan& lan, LiteralState& state) {
    for (auto& [source, twin] : state.syslogs) {
        if (!twin) continue;
        lan.data.syslogs.FindValue(source.c_str())->PurgeExpired();
        std::erase_if(twin->messages, [](const LiteralMessage& message) { return message.expired != 0; });
    }
}

// What the tick does with the queue.
void Drain(WatchedLan& lan, LiteralState& state) {
    lan.data.syslogNotifications.ClearTo(lan.data.syslogNotifications.TakeMark(),
                                         [](SyslogRecord* record) { delete record; });
    state.syslogNotifications.clear();
}

struct Reached {
    u64 stored = 0, notified = 0, expired = 0;
};

void RunOneLan(Chance& chance, Reached& reached) {
    WatchedLan lan;
    LiteralState state;
    LiteralIp literal;
    DrawSettings(chance, lan, state);
    DrawWords(chance, lan, state);
    if (chance.OneIn(8)) {
        lan.data.syslogs.Insert("10.0.0.3", static_cast<SyslogSourceList*>(nullptr));
        state.syslogs["10.0.0.3"] = nullptr;
    }
    for (u64 i = 0; i < kDatagramsALan; ++i) {
        Frame frame = SyslogDatagram{.sourceIp = "10.0.0." + std::to_string(1 + chance.Below(3)),
                                     .message = DrawMessage(chance),
                                     .sourcePort = static_cast<u16>(chance.Of({514, 138, 1900, 22936})),
                                     .padded = !chance.OneIn(3)};
        if (chance.OneIn(4)) Mutate(frame, chance.OneIn(8) ? 14 : 42, chance);
        if (chance.OneIn(24)) DrawSettings(chance, lan, state);
        if (chance.OneIn(24)) DrawWords(chance, lan, state);
        if (chance.OneIn(24)) Purge(lan, state);
        if (chance.OneIn(24)) Drain(lan, state);
        lan.Says(frame);
        literal.PacketReceived(&frame, &state);
        if (chance.OneIn(16)) {
            ASSERT_EQ(Difference(lan, state), "");
        }
    }
    ASSERT_EQ(Difference(lan, state), "");
    ASSERT_EQ(lan.ip.packetCount, literal.packetCount);
    reached.notified += state.events.size();
    for (const auto& [source, list] : state.syslogs) {
        if (!list) continue;
        reached.stored += list->count;
        for (const LiteralMessage& message : list->messages)
            reached.expired += static_cast<u64>(message.expired);
    }
}

TEST(SyslogTwin, AgreesOverRandomMessages) {
    Chance chance(19970514);
    const u64 lans = TwinRounds(kDatagrams) / kDatagramsALan;
    Reached reached;
    for (u64 i = 0; i < lans; ++i) {
        RunOneLan(chance, reached);
        ASSERT_FALSE(HasFatalFailure()) << "network " << i;
    }
    const u64 datagrams = lans * kDatagramsALan;
    std::cout << "[ twins    ] " << datagrams << " datagrams, " << reached.stored << " stored, "
              << reached.notified << " notified\n";
    EXPECT_GT(reached.stored, datagrams / 3);
    EXPECT_GT(reached.notified, datagrams / 10);
    EXPECT_GT(reached.expired, datagrams / 100);
}

}  // namespace
}  // namespace vardel::test

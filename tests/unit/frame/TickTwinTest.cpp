// The ticks beside their literal twin: the same chance for both, tick after tick, and the same calls and lists.
#include <gtest/gtest.h>

#include "tests/unit/support/LiteralTick.h"
#include "tests/unit/support/TickFixture.h"
#include "tests/unit/support/Twins.h"

namespace vardel {
namespace {

using test::Calls;
using test::Chance;

constexpr u64 kSeed = 20251121;
constexpr u64 kRounds = 400'000;
constexpr u32 kHosts = 12;

std::string AddressOf(u32 host) { return "10.0.0." + std::to_string(host + 1); }

class TickTwinTest : public test::TickFixture {
  protected:
    TickTwinTest() {
        twin.texts = test::TickTexts();
        for (u32 host = 0; host < kHosts; ++host) {
            HostRecord& record = Knows(AddressOf(host), "h" + std::to_string(host));
            record.isLocal = host == 0;
            twin.arpMap[AddressOf(host)] = {"h" + std::to_string(host), static_cast<u8>(host == 0)};
        }
    }

    void SetBoth(Shared<u8> VardelSettings::*flag, u8 test::LiteralTick::*twins, u8 value) {
        data.settings.*flag = value;
        twin.*twins = value;
    }
    void SetBoth(TcString VardelSettings::*text, std::string test::LiteralTick::*twins, const char* value) {
        data.settings.*text = value;
        twin.*twins = value;
    }

    void ChangeSettings() {
        struct Flag {
            Shared<u8> VardelSettings::*flag;
            u8 test::LiteralTick::*twins;
        };
        using S = VardelSettings;
        using T = test::LiteralTick;
        static constexpr Flag kFlags[] = {
            {&S::UseToolTips, &T::UseToolTips},
            {&S::Visualization, &T::Visualization},
            {&S::NotifyTrusted, &T::NotifyTrusted},
            {&S::MACSpoofingVisualization, &T::MACSpoofingVisualization},
            {&S::MACSpoofingVisualizationStyle, &T::MACSpoofingVisualizationStyle},
            {&S::RAVisualization, &T::RAVisualization},
            {&S::RAVisualizationType, &T::RAVisualizationType},
            {&S::RAIgnoreIPCNoUsername, &T::RAIgnoreIPCNoUsername},
            {&S::RAIgnoreLocalhost, &T::RAIgnoreLocalhost},
            {&S::RAIgnoreTrustedHosts, &T::RAIgnoreTrustedHosts},
            {&S::ShareVisualization, &T::ShareVisualization},
            {&S::ShareUseToolTips, &T::ShareUseToolTips},
            {&S::OtherAppDistrusted, &T::OtherAppDistrusted},
            {&S::OtherAppUnknown, &T::OtherAppUnknown},
        };
        for (const Flag& each : kFlags) SetBoth(each.flag, each.twins, chance.OneIn(3) ? 0 : 1 + chance.Below(2));
        SetBoth(&S::TrustedApp, &T::TrustedApp, chance.OneIn(2) ? "" : "good");
        SetBoth(&S::TrustedAppParams, &T::TrustedAppParams, chance.OneIn(2) ? "" : "-t");
        SetBoth(&S::OtherApp, &T::OtherApp, chance.OneIn(2) ? "" : "bad");
        SetBoth(&S::OtherAppParams, &T::OtherAppParams, chance.OneIn(2) ? "" : "-o");
        ChangeTable(data.settings.trustedHosts, twin.trustedHosts);
        ChangeTable(data.settings.distrustedHosts, twin.distrustedHosts);
    }
    void ChangeTable(ListedHostTable& table, std::set<std::string>& twins) {
        table.Clear();
        twins.clear();
        for (u32 host = 0; host < kHosts; ++host) {
            if (!chance.OneIn(3)) continue;
            List(table, AddressOf(host));
            twins.insert(AddressOf(host));
        }
    }

    void FillLists() {
        for (u32 count = chance.Below(4); count > 0; --count) {
            const std::string ip = AddressOf(chance.Below(kHosts));
            data.newEntries.Append(data.arpMap.FindValue(ip.c_str()));
            twin.newEntries.push_back(ip);
        }
        for (u32 count = chance.Below(3); count > 0; --count) {
            const std::string ip = AddressOf(chance.Below(kHosts));
            data.macSpoofs.Append(data.arpMap.FindValue(ip.c_str()));
            twin.macSpoofs.push_back(ip);
        }
        for (u32 count = chance.Below(3); count > 0; --count) {
            const std::string computer =
                chance.OneIn(4) ? "127.0.0.1" : AddressOf(chance.Below(kHosts + 2));
            const std::string share = chance.OneIn(2) ? "IPC$" : "music", user = chance.OneIn(2) ? "" : "ann";
            Connects(computer, share, user);
            twin.shareAccesses.push_back({computer, share, user});
        }
        for (u32 count = chance.Below(3); count > 0; --count) {
            const std::string name = "share" + std::to_string(chance.Below(5));
            Offers(name);
            twin.newShares.push_back(name);
        }
        for (u32 count = chance.Below(5); count > 0; --count) {
            const test::LiteralTick::Message message{AddressOf(chance.Below(kHosts)),
                                                     std::string(chance.Below(70), 'x'),
                                                     static_cast<i32>(chance.Below(8)),
                                                     chance.Of({0, 4, 23, 24})};
            Logs(message.source, message.text, message.severity, message.facility);
            twin.syslogNotifications.push_back(message);
        }
    }

    void ChangePopups() {
        surface.hasHost = twin.hasHostPopup = !chance.OneIn(8);
        surface.hasSyslog = twin.hasSyslogPopup = !chance.OneIn(8);
        if (chance.OneIn(2)) surface.host.showing = twin.hostPopupShows = false;
        if (chance.OneIn(2)) surface.syslog.showing = twin.syslogPopupShows = false;
    }

    void TickBoth() {
        switch (chance.Below(4)) {
            case 0: Tick(kShareTimer), twin.ShareTick(); break;
            case 1: Tick(kSyslogTimer), twin.SyslogTick(); break;
            default: Tick(kTrayTimer), twin.TrayTick(); break;
        }
    }

    void ExpectTheSame(u64 round) {
        Calls twins;
        twins.swap(twin.calls);
        ASSERT_EQ(TakeCalls(), twins) << "round " << round;
        ASSERT_EQ(data.newEntries.Count(), twin.newEntries.size()) << "round " << round;
        ASSERT_EQ(data.macSpoofs.Count(), twin.macSpoofs.size()) << "round " << round;
        ASSERT_EQ(data.shareAccesses.Count(), twin.shareAccesses.size()) << "round " << round;
        ASSERT_EQ(data.newShares.Count(), twin.newShares.size()) << "round " << round;
        ASSERT_EQ(data.syslogNotifications.Count(), twin.syslogNotifications.size()) << "round " << round;
        ASSERT_EQ(surface.host.showing, twin.hostPopupShows) << "round " << round;
        ASSERT_EQ(surface.syslog.showing, twin.syslogPopupShows) << "round " << round;
    }

    // Lists that nothing ever drains would grow from round to round.
    void StartAnew() {
        data.newEntries.Clear();
        data.macSpoofs.Clear();
        data.shareAccesses.Clear();
        data.newShares.Clear();
        data.remoteAccesses.Clear();
        ForgetShares();
        while (const auto record = data.syslogNotifications.TakeFront()) delete *record;
        twin.newEntries.clear();
        twin.macSpoofs.clear();
        twin.shareAccesses.clear();
        twin.newShares.clear();
        twin.syslogNotifications.clear();
    }

    Chance chance{kSeed};
    test::LiteralTick twin;
};

TEST_F(TickTwinTest, DecideTheSame) {
    const u64 rounds = test::TwinRounds(kRounds);
    for (u64 round = 0; round < rounds && !HasFatalFailure(); ++round) {
        if (round % 16 == 0) {
            StartAnew();
            ChangeSettings();
        }
        FillLists();
        ChangePopups();
        TickBoth();
        ExpectTheSame(round);
    }
}

}  // namespace
}  // namespace vardel

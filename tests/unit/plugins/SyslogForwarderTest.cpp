#include <gtest/gtest.h>

#include <cstring>
#include <regex>

#include "tests/unit/support/ExamplePlugins.h"
#include "tests/unit/support/UdpReceiver.h"

namespace vardel {
namespace {

class SyslogForwarder : public test::ExamplePluginTest {
  protected:
    void Forwarding(const std::string& more = "") {
        plugin = Load("syslog_forwarder", "server=127.0.0.1\nport=" + collector.Port() + "\n" + more);
        ASSERT_NE(plugin, nullptr);
        EXPECT_EQ(plugin->info.type, PLUGIN_TYPE_NOTIFY);
    }
    void Notify(const PluginItem& item) { ASSERT_TRUE(NotifyPlugin(*plugin, *item)); }
    void TellHostCount(u32 count) { Notify(MakePluginItem(PLUGIN_NOTIFY_HOST_COUNT, count)); }
    // The next message without what no test can know: its moment and the machine's name.
    std::string Next() {
        const std::string message = collector.Next();
        std::smatch parts;
        const std::regex form(
            R"((<\d+>1) \d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ [\x21-\x7e]{1,255} (vardelwatch - [A-Z]+ \[.*))");
        EXPECT_TRUE(std::regex_match(message, parts, form)) << message;
        return parts.size() == 3 ? parts[1].str() + " " + parts[2].str() : message;
    }
    static PluginItem OneHost(u32 kind, const char* ip, const char* mac, const char* name, u32 trust) {
        PluginItem item = MakePluginItem(kind, 1);
        PluginNotifyHost& record = PluginRecords<PluginNotifyHost>(*item)[0];
        FillPluginText(record.ip, ip);
        FillPluginText(record.mac, mac);
        FillPluginText(record.hostName, name);
        record.trustState = trust;
        return item;
    }

    test::UdpReceiver collector;
    LoadedPlugin* plugin = nullptr;
};

TEST_F(SyslogForwarder, SendsOneMessageForEachNewHost) {
    Forwarding();
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, 2);
    for (u32 at = 0; at < 2; ++at) {
        PluginNotifyHost& record = PluginRecords<PluginNotifyHost>(*item)[at];
        FillPluginText(record.ip, at ? "10.0.0.6" : "10.0.0.5");
        FillPluginText(record.mac, "02:00:00:00:00:05");
        FillPluginText(record.hostName, at ? "printer" : "nas");
        record.trustState = at;
    }
    Notify(item);
    EXPECT_EQ(Next(),
              "<133>1 vardelwatch - NEWHOST [vardelwatch@32473 ip=\"10.0.0.5\" mac=\"02:00:00:00:00:05\" "
              "name=\"nas\" trust=\"unknown\"] New host nas (10.0.0.5)");
    EXPECT_EQ(Next(),
              "<133>1 vardelwatch - NEWHOST [vardelwatch@32473 ip=\"10.0.0.6\" mac=\"02:00:00:00:00:05\" "
              "name=\"printer\" trust=\"trusted\"] New host printer (10.0.0.6)");
    EXPECT_TRUE(collector.IsSilent());
}

TEST_F(SyslogForwarder, ASpoofedAddressIsAnAlert) {
    Forwarding();
    Notify(OneHost(PLUGIN_NOTIFY_SPOOFS, "10.0.0.5", "66:66:66:66:66:66", "nas", 2));
    EXPECT_EQ(Next(),
              "<129>1 vardelwatch - SPOOF [vardelwatch@32473 ip=\"10.0.0.5\" mac=\"66:66:66:66:66:66\" "
              "name=\"nas\" trust=\"distrusted\"] MAC spoofing: another card claims nas (10.0.0.5)");
}

TEST_F(SyslogForwarder, ANewShareAndAnAccess) {
    Forwarding();
    const PluginItem shares = MakePluginItem(PLUGIN_NOTIFY_NEW_SHARES, 1);
    PluginNotifyShare& share = PluginRecords<PluginNotifyShare>(*shares)[0];
    FillPluginText(share.ip, "10.0.0.5");
    FillPluginText(share.hostName, "nas");
    FillPluginText(share.name, "music");
    share.type = 3;
    Notify(shares);
    EXPECT_EQ(Next(),
              "<134>1 vardelwatch - NEWSHARE [vardelwatch@32473 ip=\"10.0.0.5\" name=\"nas\" "
              "share=\"music\" type=\"3\"] New remote share music on nas (10.0.0.5)");
    const PluginItem accesses = MakePluginItem(PLUGIN_NOTIFY_ACCESSES, 1);
    PluginNotifyAccess& access = PluginRecords<PluginNotifyAccess>(*accesses)[0];
    FillPluginText(access.computer, "WS1");
    FillPluginText(access.user, "alice");
    FillPluginText(access.share, "C$");
    Notify(accesses);
    EXPECT_EQ(Next(),
              "<132>1 vardelwatch - ACCESS [vardelwatch@32473 computer=\"WS1\" user=\"alice\" "
              "share=\"C$\"] WS1 connected on C$ with user 'alice'");
}

TEST_F(SyslogForwarder, TheHostCountIsForwardedEachTime) {
    Forwarding();
    TellHostCount(12);
    TellHostCount(12);
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(Next(), "<135>1 vardelwatch - HOSTCOUNT [vardelwatch@32473 count=\"12\"] 12 host(s) known");
}

TEST_F(SyslogForwarder, TheHostCountCanBeLimitedToItsChanges) {
    Forwarding("hostcount=changes\n");
    for (const u32 count : {12u, 12u, 13u, 13u}) TellHostCount(count);
    EXPECT_NE(Next().find("count=\"12\""), std::string::npos);
    EXPECT_NE(Next().find("count=\"13\""), std::string::npos);
    EXPECT_TRUE(collector.IsSilent());
}

TEST_F(SyslogForwarder, TheHostCountCanBeLeftOut) {
    Forwarding("hostcount=none\n");
    TellHostCount(12);
    EXPECT_TRUE(collector.IsSilent());
    Notify(OneHost(PLUGIN_NOTIFY_NEW_HOSTS, "10.0.0.5", "", "", 0));
    EXPECT_NE(Next().find("NEWHOST"), std::string::npos);
}

TEST_F(SyslogForwarder, TheFacilityIsASetting) {
    Forwarding("facility=3\n");
    TellHostCount(1);
    EXPECT_EQ(Next().substr(0, 6), "<31>1 ");
}

TEST_F(SyslogForwarder, ASettingThatMakesNoSenseCountsAsNone) {
    Forwarding("facility=24\n");
    TellHostCount(1);
    EXPECT_EQ(Next().substr(0, 7), "<135>1 ");
}

TEST_F(SyslogForwarder, ATextOfTheNetworkCanNotEndItsPlace) {
    Forwarding();
    Notify(OneHost(PLUGIN_NOTIFY_NEW_HOSTS, "10.0.0.5", "", "a\"b]c\\d\ne%s\x01\xff", 0));
    const std::string message = Next();
    EXPECT_NE(message.find(" name=\"a\\\"b\\]c\\\\d?e%s??\" trust"), std::string::npos) << message;
    EXPECT_NE(message.find("New host a\"b]c\\d?e%s?? (10.0.0.5)"), std::string::npos) << message;
}

TEST_F(SyslogForwarder, ATextWithoutATerminatorEndsWithItsField) {
    Forwarding();
    const PluginItem item = OneHost(PLUGIN_NOTIFY_NEW_HOSTS, "10.0.0.5", "", "", 0);
    PluginNotifyHost& record = PluginRecords<PluginNotifyHost>(*item)[0];
    std::memset(record.hostName, 'n', sizeof record.hostName);
    Notify(item);
    EXPECT_NE(Next().find("name=\"" + std::string(300, 'n') + "\" trust"), std::string::npos);
}

TEST_F(SyslogForwarder, AnUnknownKindIsPassedOver) {
    Forwarding();
    PluginNotifyItem item{};
    item.kind = 77;
    item.count = 1'000'000;
    EXPECT_TRUE(NotifyPlugin(*plugin, item));
    EXPECT_TRUE(collector.IsSilent());
}

TEST_F(SyslogForwarder, AServerThatIsNotThereLosesMessagesAndNothingElse) {
    plugin = Load("syslog_forwarder", "server=name.invalid\n");
    ASSERT_NE(plugin, nullptr);
    TellHostCount(1);
    TellHostCount(2);
    Unload();
}

}  // namespace
}  // namespace vardel

#include "views/HostActions.h"

#include "tests/unit/support/ViewLan.h"

namespace vardel {
namespace {

using test::kProduct;

struct HostActionsTest : test::ViewLan {
    bool Wrote(const std::string& section) const {
        return std::count(store.calls.begin(), store.calls.end(), "delete " + kProduct + "\\" + section) == 1;
    }
    int Set(std::initializer_list<HostRecord*> hosts, TrustState state) {
        store.calls.clear();
        return SetTrust(data, std::vector<HostRecord*>(hosts), state);
    }
    ListedHost Stored(const ListedHostTable& table, const char* ip) {
        const auto* record = table.FindValue(ip);
        EXPECT_TRUE(record) << ip;
        return record ? record->Read() : ListedHost{};
    }
};

TEST_F(HostActionsTest, ATrustedHostIsListedWithWhatIsKnownOfIt) {
    HostRecord& host = Knows("10.0.0.5");
    host.hostName = "nas";
    host.mac = "00:11:22:33:44:55";
    host.lastSeenText = "12:34:56";
    EXPECT_EQ(Set({&host}, TrustState::Trusted), 1);
    EXPECT_EQ(host.trustState.Get(), TrustState::Trusted);
    const ListedHost listed = Stored(data.settings.trustedHosts, "10.0.0.5");
    EXPECT_STREQ(listed.hostName, "nas");
    EXPECT_STREQ(listed.macAddress, "00:11:22:33:44:55");
    EXPECT_STREQ(listed.ipAddress, "10.0.0.5");
    EXPECT_STREQ(listed.lastPacket, "12:34:56");
    EXPECT_TRUE(Wrote("TrustedHosts"));
    EXPECT_FALSE(Wrote("DistrustedHosts"));
}

TEST_F(HostActionsTest, LongTextsAreCutToTheirFields) {
    HostRecord& host = Knows("10.0.0.5");
    host.hostName = std::string(400, 'n').c_str();
    host.lastSeenText = std::string(400, 't').c_str();
    Set({&host}, TrustState::Trusted);
    const ListedHost listed = Stored(data.settings.trustedHosts, "10.0.0.5");
    EXPECT_EQ(std::string(listed.hostName), std::string(259, 'n'));
    EXPECT_EQ(std::string(listed.lastPacket), std::string(49, 't'));
}

TEST_F(HostActionsTest, SettingATrustedHostAsTrustedDoesNothing) {
    HostRecord& host = Knows("10.0.0.5", TrustState::Trusted);
    EXPECT_EQ(Set({&host}, TrustState::Trusted), 0);
    EXPECT_TRUE(store.calls.empty());
}

TEST_F(HostActionsTest, ADistrustedHostThatBecomesUnknownLeavesItsTableAndOnlyThatIsSaved) {
    HostRecord& host = Knows("10.0.0.5");
    HostRecord& other = Knows("10.0.0.6");
    Set({&host, &other}, TrustState::Distrusted);
    EXPECT_EQ(Set({&host}, TrustState::Unknown), 1);
    EXPECT_EQ(data.settings.distrustedHosts.FindValue("10.0.0.5"), nullptr);
    EXPECT_NE(data.settings.distrustedHosts.FindValue("10.0.0.6"), nullptr);
    EXPECT_EQ(host.trustState.Get(), TrustState::Unknown);
    EXPECT_TRUE(Wrote("DistrustedHosts"));
    EXPECT_FALSE(Wrote("TrustedHosts"));
}

TEST_F(HostActionsTest, AHostThatChangesSidesIsSavedOnBoth) {
    HostRecord& host = Knows("10.0.0.5");
    Set({&host}, TrustState::Trusted);
    EXPECT_EQ(Set({&host}, TrustState::Distrusted), 1);
    EXPECT_EQ(data.settings.trustedHosts.FindValue("10.0.0.5"), nullptr);
    EXPECT_NE(data.settings.distrustedHosts.FindValue("10.0.0.5"), nullptr);
    EXPECT_TRUE(Wrote("TrustedHosts"));
    EXPECT_TRUE(Wrote("DistrustedHosts"));
}

TEST_F(HostActionsTest, OfSeveralHostsOnlyThoseThatDifferChange) {
    HostRecord& trusted = Knows("10.0.0.5", TrustState::Trusted);
    HostRecord& unknown = Knows("10.0.0.6");
    EXPECT_EQ(Set({&trusted, &unknown}, TrustState::Trusted), 1);
    EXPECT_EQ(data.settings.trustedHosts.Count(), 1u);
}

TEST_F(HostActionsTest, TheRowStaysAndItsGroupFollowsAtTheNextRefresh) {
    HostRecord& host = Knows("10.0.0.5");
    Refresh();
    Set({&host}, TrustState::Trusted);
    EXPECT_EQ(Shown(), "10.0.0.5:3");
    Refresh();
    EXPECT_EQ(Shown(), "10.0.0.5:1");
}

TEST_F(HostActionsTest, DeletedHostsLeaveRowsAndTableAtOnce) {
    HostRecord& first = Knows("10.0.0.1");
    Knows("10.0.0.2");
    HostRecord& third = Knows("10.0.0.3");
    Refresh();
    data.newEntries.Append(&first);
    EXPECT_EQ(DeleteHosts(data, rows, std::vector<HostRecord*>{&first, &third}), (std::vector<int>{2, 0}));
    EXPECT_EQ(Shown(), "10.0.0.2:3");
    EXPECT_EQ(data.arpMap.Count(), 1u);
    EXPECT_EQ(first.ip, TcString("10.0.0.1")) << "what waits in a list stays readable";
    const RowChanges changes = Refresh();
    EXPECT_FALSE(changes.ChangeRows(rows.Count()));
    EXPECT_EQ(changes.hosts, 1u);
}

TEST_F(HostActionsTest, ADeletedHostComesBackAsANewOne) {
    HostRecord& host = Knows("10.0.0.1");
    Refresh();
    DeleteHosts(data, rows, std::vector<HostRecord*>{&host});
    HostRecord& again = Knows("10.0.0.1");
    EXPECT_NE(&again, &host);
    EXPECT_EQ(Refresh().firstInserted, 0);
    EXPECT_EQ(rows.HostAt(0), &again);
}

TEST_F(HostActionsTest, TheLastGroupOfTheFilterStays) {
    data.settings.ViewFilterOptions = kShowUnknown;
    EXPECT_FALSE(SwitchFilter(data.settings, kShowUnknown));
    EXPECT_EQ(data.settings.ViewFilterOptions.Get(), kShowUnknown);
    EXPECT_TRUE(store.calls.empty());
}

TEST_F(HostActionsTest, AFilterSwitchIsStoredAtOnceByItself) {
    EXPECT_TRUE(SwitchFilter(data.settings, kShowTrusted));
    EXPECT_EQ(data.settings.ViewFilterOptions.Get(), kShowDistrusted | kShowUnknown);
    const RegistryValue* value = store.Value(test::kSettings, "ViewFilterOptions");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->data, std::string("\6\0\0\0", 4));
    EXPECT_EQ(std::count_if(store.calls.begin(), store.calls.end(),
                            [](const std::string& call) { return call.rfind("set ", 0) == 0; }),
              1);
}

TEST(DevicePage, OnlyAddressesOfTheWebAreOpened) {
    for (const char* address : {"http://10.0.0.5/", "https://nas.local:5001/x?y=1", "HTTP://a", "hTTps://\xe4"})
        EXPECT_TRUE(IsDevicePage(address)) << address;
    for (const char* address :
         {"", "http://", "https://", "http:/a", "ftp://a", "file:///c:/windows/system32/calc.exe", "calc.exe",
          "\\\\server\\share\\a.exe", "javascript:alert(1)", " http://a", "http://a b", "http://a\"", "http://a\tb",
          "http://a\n", "httpx://a", "http", "x"})
        EXPECT_FALSE(IsDevicePage(address)) << address;
}

struct DevicePageTest : test::ViewLan {};

TEST_F(DevicePageTest, OpensForExactlyOneSelectedHost) {
    HostRecord& host = Knows("10.0.0.5");
    HostRecord& other = Knows("10.0.0.6");
    host.presentationUrl = "http://10.0.0.5/";
    EXPECT_FALSE(OpenDevicePage(system.shell, {}));
    EXPECT_FALSE(OpenDevicePage(system.shell, std::vector<HostRecord*>{&host, &other}));
    EXPECT_FALSE(OpenDevicePage(system.shell, std::vector<HostRecord*>{&other}));
    EXPECT_TRUE(system.shell.launches.empty());
    EXPECT_TRUE(OpenDevicePage(system.shell, std::vector<HostRecord*>{&host}));
    ASSERT_EQ(system.shell.launches.size(), 1u);
    EXPECT_EQ(system.shell.launches[0], (test::RecordingShell::Launch{ShellVerb::Open, "http://10.0.0.5/", {}}));
}

TEST_F(DevicePageTest, StartsNoProgramThatADeviceNames) {
    HostRecord& host = Knows("10.0.0.5");
    host.presentationUrl = "c:\\windows\\system32\\calc.exe";
    EXPECT_FALSE(OpenDevicePage(system.shell, std::vector<HostRecord*>{&host}));
    EXPECT_TRUE(system.shell.launches.empty());
}

TEST(ViewRectangles, OnlyThoseOfPositiveSizeAreRestored) {
    EXPECT_TRUE(IsUsableRectangle({-10, -10, 1, 1}));
    EXPECT_FALSE(IsUsableRectangle({}));
    EXPECT_FALSE(IsUsableRectangle({10, 10, 10, 20}));
    EXPECT_FALSE(IsUsableRectangle({10, 10, 20, 10}));
    EXPECT_FALSE(IsUsableRectangle({10, 10, 5, 20}));
}

}  // namespace
}  // namespace vardel

// How the lists read, with gaps, odd lengths and other contents that nobody wrote like that.
#include "tests/unit/support/ListsFixture.h"

namespace vardel {
namespace {

using namespace test;

TEST_F(SettingsLists, AMissingKeyIsAnEmptyList) {
    Read();
    EXPECT_TRUE(settings.pluginStates.IsEmpty());
    EXPECT_TRUE(settings.applications.Read().empty());
    EXPECT_TRUE(settings.trustedHosts.IsEmpty());
    EXPECT_TRUE(settings.distrustedHosts.IsEmpty());
    EXPECT_TRUE(settings.watchedHosts.IsEmpty());
    EXPECT_TRUE(settings.accounts.Read().empty());
}

TEST_F(SettingsLists, EachRecordIsFoundUnderItsKey) {
    Stored(kPlugins, "Plugin0", Plugin("0a1b", 1));
    Stored(kApplications, "Application0", Application("z"));
    Stored(kApplications, "Application1", Application("a"));
    Stored(kTrusted, "Host0", Listed("10.0.0.1"));
    Stored(kDistrusted, "Host0", Listed("10.0.0.2"));
    Stored(kWatched, "Host0", Watched("10.0.0.3", 1));
    Stored(kAccounts, "AdminAccount0", Account("x"));
    Stored(kAccounts, "AdminAccount1", Account("y"));
    Read();
    EXPECT_EQ(Bytes(settings.pluginStates.FindValue("0a1b")->Read()), Bytes(Plugin("0a1b", 1)));
    const std::vector<ApplicationEntry> applications = settings.applications.Read();
    ASSERT_EQ(applications.size(), 2u);
    EXPECT_STREQ(applications[0].name, "z");
    EXPECT_STREQ(applications[1].name, "a");
    EXPECT_EQ(Bytes(settings.trustedHosts.FindValue("10.0.0.1")->Read()), Bytes(Listed("10.0.0.1")));
    EXPECT_EQ(Bytes(settings.distrustedHosts.FindValue("10.0.0.2")->Read()), Bytes(Listed("10.0.0.2")));
    EXPECT_EQ(Bytes(settings.watchedHosts.FindValue("10.0.0.3")->Read()), Bytes(Watched("10.0.0.3", 1)));
    const std::map<i32, AdminAccount> accounts = settings.accounts.Read();
    ASSERT_EQ(accounts.size(), 2u);
    EXPECT_EQ(Bytes(accounts.at(0)), Bytes(Account("x")));
    EXPECT_EQ(Bytes(accounts.at(1)), Bytes(Account("y")));
}

TEST_F(SettingsLists, AGapEndsTheListAndTheNextWriteDropsTheRest) {
    for (const char* number : {"0", "1", "3"})
        Stored(kTrusted, std::string("Host") + number, Listed(std::string("10.0.0.") + number));
    Read();
    EXPECT_EQ(Keys(settings.trustedHosts), (Texts{"10.0.0.0", "10.0.0.1"}));
    Write();
    EXPECT_EQ(store.ValueNames(kTrusted), (Names{"Host0", "Host1"}));
}

TEST_F(SettingsLists, AListWithoutItsFirstNumberIsEmpty) {
    Stored(kTrusted, "Host1", Listed("10.0.0.1"));
    Stored(kTrusted, "Host00", Listed("10.0.0.2"));
    Read();
    EXPECT_TRUE(settings.trustedHosts.IsEmpty());
}

TEST_F(SettingsLists, AValueLongerThanItsRecordEndsTheList) {
    Stored(kWatched, "Host0", Watched("10.0.0.1"));
    Stored(kWatched, "Host1", Watched("10.0.0.2"), 72);
    Stored(kWatched, "Host2", Watched("10.0.0.3"));
    Read();
    EXPECT_EQ(Keys(settings.watchedHosts), Texts{"10.0.0.1"});
}

TEST_F(SettingsLists, AShortFirstPluginIsTakenWithZerosAndTheFullOneBehindItEndsTheList) {
    PluginEntry first = Plugin("first", 1);
    first.present = 1;
    Stored(kPlugins, "Plugin0", first, 51);
    Stored(kPlugins, "Plugin1", Plugin("second", 1));
    Read();
    EXPECT_EQ(Keys(settings.pluginStates), Texts{"first"});
    const PluginEntry entry = settings.pluginStates.FindValue("first")->Read();
    EXPECT_EQ(entry.active, 1);
    EXPECT_EQ(entry.present, 0);
}

TEST_F(SettingsLists, AShortValueKeepsWhatTheRecordBeforeItLeft) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1", "alpha"));
    // Up to and with the address; the time is missing.
    ListedHost second = Listed("10.0.0.2", "beta");
    Put(second.lastPacket, "23:59:59");
    Stored(kTrusted, "Host1", second, 780);
    Read();
    const ListedHost read = settings.trustedHosts.FindValue("10.0.0.2")->Read();
    EXPECT_STREQ(read.hostName, "beta");
    EXPECT_STREQ(read.lastPacket, "12:34:56");
}

TEST_F(SettingsLists, BehindAShortValueOnlyValuesAsShortAreTaken) {
    Stored(kWatched, "Host0", Watched("10.0.0.1"), 70);
    Stored(kWatched, "Host1", Watched("10.0.0.2", 1), 70);
    Stored(kWatched, "Host2", Watched("10.0.0.3", 1), 69);
    Stored(kWatched, "Host3", Watched("10.0.0.4", 1), 70);
    Stored(kWatched, "Host4", Watched("10.0.0.5", 1), 69);
    Read();
    EXPECT_EQ(Keys(settings.watchedHosts), (Texts{"10.0.0.1", "10.0.0.2", "10.0.0.3"}));
    EXPECT_EQ(settings.watchedHosts.FindValue("10.0.0.2")->Read().online, 0) << "that byte was never read";
}

TEST_F(SettingsLists, AnEmptyValueRepeatsTheRecordBeforeItAndIsDropped) {
    Stored(kApplications, "Application0", Application("a"));
    Stored(kApplications, "Application1", Application("b"), 0);
    Stored(kApplications, "Application2", Application("c"), 1);
    Read();
    const std::vector<ApplicationEntry> applications = settings.applications.Read();
    ASSERT_EQ(applications.size(), 2u);
    EXPECT_EQ(Bytes(applications[1]), Bytes(Application("a")));
    Stored(kWatched, "Host0", Watched("10.0.0.1"));
    Stored(kWatched, "Host1", Watched("10.0.0.2"), 0);
    Read();
    EXPECT_EQ(Keys(settings.watchedHosts), Texts{"10.0.0.1"});
}

TEST_F(SettingsLists, ARecordWhoseKeyIsThereAlreadyIsNotInserted) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1", "first"));
    Stored(kTrusted, "Host1", Listed("10.0.0.1", "second"));
    Stored(kTrusted, "Host2", Listed("10.0.0.2", "third"));
    Read();
    EXPECT_EQ(settings.trustedHosts.Count(), 2u);
    EXPECT_STREQ(settings.trustedHosts.FindValue("10.0.0.1")->Read().hostName, "first");
}

TEST_F(SettingsLists, TheTypeOfAValueDoesNotMatter) {
    const WatchedHost host = Watched("10.0.0.1", 1);
    store.Put(kWatched, "Host0", static_cast<ValueType>(99), &host, sizeof host);
    Read();
    EXPECT_EQ(Keys(settings.watchedHosts), Texts{"10.0.0.1"});
}

TEST_F(SettingsLists, AFieldWithoutATerminatorEndsWithTheField) {
    WatchedHost host;
    std::memset(&host, '7', sizeof host);
    Stored(kWatched, "Host0", host);
    Read();
    EXPECT_EQ(Keys(settings.watchedHosts), Texts{std::string(20, '7')});
}

TEST_F(SettingsLists, AnAddressMayStandInBothTrustLists) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1"));
    Stored(kDistrusted, "Host0", Listed("10.0.0.1"));
    Read();
    EXPECT_EQ(settings.trustedHosts.Count(), 1u);
    EXPECT_EQ(settings.distrustedHosts.Count(), 1u);
}

TEST_F(SettingsLists, AllSixComeBackAsTheyWere) {
    VardelSettings& out = settings;
    for (int i = 0; i < 300; ++i) {
        const std::string ip = "10.0.1." + std::to_string(i);
        Add(out.trustedHosts, ip, Listed(ip, "t" + ip));
        Add(out.distrustedHosts, ip, Listed(ip, "d" + ip));
        Add(out.watchedHosts, ip, Watched(ip, i % 2));
        Add(out.pluginStates, "p" + ip, Plugin("p" + ip, 1));
    }
    out.applications.Write({Application("b"), Application("a")});
    out.accounts.Write({{0, Account("x")}, {1, Account("y")}});
    Write();
    VardelSettings in;
    EXPECT_TRUE(in.ReadSettings());
    EXPECT_EQ(Keys(in.trustedHosts), Keys(out.trustedHosts));
    EXPECT_EQ(Keys(in.distrustedHosts), Keys(out.distrustedHosts));
    EXPECT_EQ(Keys(in.watchedHosts), Keys(out.watchedHosts));
    EXPECT_EQ(Keys(in.pluginStates), Keys(out.pluginStates));
    EXPECT_EQ(Bytes(in.watchedHosts.FindValue("10.0.1.255")->Read()), Bytes(Watched("10.0.1.255", 1)));
    EXPECT_EQ(in.applications.Read().size(), 2u);
    EXPECT_EQ(in.accounts.Read().size(), 2u);
}

}  // namespace
}  // namespace vardel

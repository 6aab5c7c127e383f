// The deep copy of the settings, with what it leaves out on purpose, and what other threads see meanwhile.
#include <atomic>
#include <thread>

#include "foundation/Reclaim.h"
#include "tests/unit/support/SettingsFixture.h"

namespace vardel {
namespace {

using namespace test;

class AssignSettings : public ::testing::Test {
  protected:
    void Assign() { EXPECT_TRUE(target.AssignSettings(&source)); }
    VardelSettings source, target;
};

TEST_F(AssignSettings, NullChangesNothing) {
    target.WatchInterval = 5;
    Add(target.trustedHosts, "10.0.0.1", Listed("10.0.0.1"));
    EXPECT_FALSE(target.AssignSettings(nullptr));
    EXPECT_EQ(target.WatchInterval, 5u);
    EXPECT_EQ(target.trustedHosts.Count(), 1u);
}

TEST_F(AssignSettings, MacListVersionAndLanguageAreNeverTouched) {
    source.MACListVersion = 50;
    source.Language = "";
    target.MACListVersion = 7;
    target.Language = "Deutsch";
    Assign();
    EXPECT_EQ(target.MACListVersion, 7);
    EXPECT_STREQ(target.Language, "Deutsch");
}

TEST_F(AssignSettings, LastUpdateTimeAndTheRectangleAreCopied) {
    source.LastUpdateTime = 1'700'000'000'000;
    source.SavedViewWindowDimension.Write({1, 2, 3, 4});
    Assign();
    EXPECT_EQ(target.LastUpdateTime, 1'700'000'000'000);
    EXPECT_EQ(target.SavedViewWindowDimension.Read().bottom, 4);
}

TEST_F(AssignSettings, AppliesTheRulesToTheCopyAndNotToTheSource) {
    source.VisibleColumns = 11111;
    source.TrustedAppParams = "-t";
    source.OtherAppParams = "-o";
    source.OtherAppDistrusted = 1;
    source.OtherAppUnknown = 1;
    Assign();
    EXPECT_EQ(target.VisibleColumns, 11110);
    EXPECT_STREQ(target.TrustedAppParams, "");
    EXPECT_STREQ(target.OtherAppParams, "");
    EXPECT_EQ(target.OtherAppDistrusted, 0);
    EXPECT_EQ(target.OtherAppUnknown, 0);
    EXPECT_EQ(source.VisibleColumns, 11111);
    EXPECT_STREQ(source.OtherAppParams, "-o");
    EXPECT_EQ(source.OtherAppUnknown, 1);
}

TEST_F(AssignSettings, WithWmiAllColumnsAreCopied) {
    source.VisibleColumns = 11111;
    source.UseWMI = 1;
    Assign();
    EXPECT_EQ(target.VisibleColumns, 11111);
}

// Only reading makes the two exclusive.
TEST_F(AssignSettings, DistrustedAndUnknownAreBothCopied) {
    source.OtherApp = "other.exe";
    source.OtherAppDistrusted = 1;
    source.OtherAppUnknown = 1;
    Assign();
    EXPECT_EQ(target.OtherAppDistrusted, 1);
    EXPECT_EQ(target.OtherAppUnknown, 1);
}

TEST_F(AssignSettings, ReplacesTheListsWithRecordsOfItsOwn) {
    Add(target.trustedHosts, "10.0.0.9", Listed("10.0.0.9"));
    Add(target.distrustedHosts, "10.0.0.9", Listed("10.0.0.9"));
    Add(target.watchedHosts, "10.0.0.9", Watched("10.0.0.9"));
    Add(target.pluginStates, "old", Plugin("old", 1));
    target.applications.Write({Application("old"), Application("older")});
    target.accounts.Write({{5, Account("old")}});

    PluginEntry plugin = Plugin("new", 0);
    plugin.present = 1;
    Add(source.pluginStates, "new", plugin);
    source.applications.Write({Application("new")});
    Add(source.trustedHosts, "10.0.0.1", Listed("10.0.0.1"));
    Add(source.distrustedHosts, "10.0.0.2", Listed("10.0.0.2"));
    Add(source.watchedHosts, "10.0.0.3", Watched("10.0.0.3", 1));
    source.accounts.Write({{0, Account("new")}});
    Assign();

    EXPECT_EQ(target.trustedHosts.Count(), 1u);
    EXPECT_EQ(target.distrustedHosts.Count(), 1u);
    EXPECT_EQ(target.watchedHosts.Count(), 1u);
    EXPECT_EQ(target.pluginStates.Count(), 1u);
    EXPECT_EQ(Bytes(target.pluginStates.FindValue("new")->Read()), Bytes(plugin))
        << "plugins that are off as well";
    EXPECT_EQ(Bytes(target.trustedHosts.FindValue("10.0.0.1")->Read()), Bytes(Listed("10.0.0.1")));
    EXPECT_EQ(Bytes(target.distrustedHosts.FindValue("10.0.0.2")->Read()), Bytes(Listed("10.0.0.2")));
    EXPECT_EQ(Bytes(target.watchedHosts.FindValue("10.0.0.3")->Read()), Bytes(Watched("10.0.0.3", 1)));
    EXPECT_NE(target.trustedHosts.FindValue("10.0.0.1"), source.trustedHosts.FindValue("10.0.0.1"));
    ASSERT_EQ(target.applications.Read().size(), 1u);
    EXPECT_STREQ(target.applications.Read()[0].name, "new");
    EXPECT_EQ(source.trustedHosts.Count(), 1u) << "the source keeps its own";
}

TEST_F(AssignSettings, ARecordKeepsTheKeyItStoodUnder) {
    Add(source.trustedHosts, "10.0.0.1", Listed("10.0.0.2"));
    Assign();
    ASSERT_TRUE(target.trustedHosts.FindValue("10.0.0.1"));
    EXPECT_STREQ(target.trustedHosts.FindValue("10.0.0.1")->Read().ipAddress, "10.0.0.2");
}

TEST_F(AssignSettings, AnApplicationIsZeroedAndTakesItsThreeTexts) {
    ApplicationEntry entry;
    std::memset(&entry, 'x', sizeof entry);
    Put(entry.name, std::string("tool\0rest", 9));
    entry.executable[259] = 0;
    source.applications.Write({entry});
    Assign();
    const ApplicationEntry copy = target.applications.Read()[0];
    EXPECT_EQ(Bytes(copy).substr(0, 260), "tool" + std::string(256, '\0'));
    EXPECT_EQ(std::string(copy.executable), std::string(259, 'x'));
    EXPECT_EQ(std::string(copy.parameters), std::string(1039, 'x')) << "cut where no terminator was";
}

TEST_F(AssignSettings, AccountsAreNumberedAnew) {
    Add(source.watchedHosts, "10.0.0.3", Watched("10.0.0.3"));
    source.accounts.Write({{9, Account("c")}, {2, Account("a")}, {5, Account("b")}});
    Assign();
    const std::map<i32, AdminAccount> accounts = target.accounts.Read();
    ASSERT_EQ(accounts.size(), 3u);
    EXPECT_STREQ(accounts.at(0).accountName, "a");
    EXPECT_STREQ(accounts.at(1).accountName, "b");
    EXPECT_STREQ(accounts.at(2).accountName, "c");
}

TEST_F(AssignSettings, WithoutWatchedHostsTheAccountsVanish) {
    source.accounts.Write({{0, Account("a")}});
    target.accounts.Write({{0, Account("b")}});
    Assign();
    EXPECT_TRUE(target.accounts.Read().empty());
    EXPECT_EQ(source.accounts.Read().size(), 1u);
}

TEST(AssignSettingsInStore, AccountsVanishFromTheStoreAtASaveWithoutWatchedHosts) {
    RecordingStore store;
    const ScopedSettingsStore installed(store);
    VardelSettings live;
    live.accounts.Write({{0, Account("a")}});
    EXPECT_TRUE(live.WriteSettings());
    EXPECT_TRUE(store.HasKey(kProduct + "\\AdminAccounts"));
    VardelSettings dialog;
    EXPECT_TRUE(dialog.AssignSettings(&live));
    EXPECT_TRUE(live.AssignSettings(&dialog));
    EXPECT_TRUE(live.WriteSettings());
    EXPECT_FALSE(store.HasKey(kProduct + "\\AdminAccounts"));
}

// A worker looks hosts up while the dialog saves again and again: it must find all of them or, from the other
// content, none, and a walk sees one whole content.
TEST(AssignSettingsAmongThreads, ReadersSeeWholeTables) {
    constexpr int kHosts = 50;
    constexpr int kRounds = 400;
    VardelSettings live, even, odd;
    for (int i = 0; i < kHosts; ++i) {
        const std::string a = "10.0.0." + std::to_string(i), b = "10.1.0." + std::to_string(i);
        Add(even.trustedHosts, a, Listed(a, "even"));
        Add(odd.trustedHosts, b, Listed(b, "odd"));
        Add(even.watchedHosts, a, Watched(a));
        Add(odd.watchedHosts, b, Watched(b));
    }
    even.accounts.Write({{0, Account("e0")}, {1, Account("e1")}});
    odd.accounts.Write({{0, Account("o0")}, {1, Account("o1")}, {2, Account("o2")}});
    even.Interface = std::string(200, 'e').c_str();
    odd.Interface = std::string(100, 'o').c_str();
    ASSERT_TRUE(live.AssignSettings(&even));

    std::atomic<bool> stop{false};
    std::atomic<int> walks{0};
    std::atomic<int> torn{0};
    const auto read = [&] {
        while (!stop) {
            int evens = 0, odds = 0;
            live.trustedHosts.ForEach([&](const TcString& key, const GuardedRecord<ListedHost>* host) {
                const ListedHost copy = host->Read();
                (copy.hostName[0] == 'e' ? evens : odds)++;
                if (!(key == copy.ipAddress)) ++torn;
            });
            if (!((evens == kHosts && odds == 0) || (odds == kHosts && evens == 0))) ++torn;
            const std::map<i32, AdminAccount> accounts = live.accounts.Read();
            const std::size_t wanted = accounts.empty() ? 0 : accounts.at(0).accountName[0] == 'e' ? 2 : 3;
            if (accounts.size() != wanted || wanted == 0) ++torn;
            const TcString device(live.Interface);
            if (device.GetLength() != 100 && device.GetLength() != 200) ++torn;
            ++walks;
        }
    };
    std::thread first(read), second(read);
    for (int round = 0; round < kRounds || walks < 100; ++round)
        EXPECT_TRUE(live.AssignSettings(round % 2 ? &even : &odd));
    stop = true;
    first.join();
    second.join();
    EXPECT_EQ(torn, 0);
    EXPECT_GE(walks, 100);
    FreeRetired();
}

}  // namespace
}  // namespace vardel

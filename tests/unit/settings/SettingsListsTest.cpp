// The six lists in the store: how they are written and rewritten, and how odd contents read.
#include <algorithm>

#include "tests/unit/support/SettingsFixture.h"

namespace vardel {
namespace {

using namespace test;

const std::string kPlugins = kProduct + "\\Plugins";
const std::string kApplications = kProduct + "\\Applications";
const std::string kTrusted = kProduct + "\\TrustedHosts";
const std::string kDistrusted = kProduct + "\\DistrustedHosts";
const std::string kWatched = kProduct + "\\WatchedHosts";
const std::string kAccounts = kProduct + "\\AdminAccounts";

class SettingsLists : public SettingsFixture {
  protected:
    template <class Record>
    void Stored(const std::string& key, const std::string& name, const Record& record, std::size_t size = sizeof(Record)) {
        const std::string bytes = Bytes(record) + "and more behind it";
        store.Put(key, name, ValueType::Binary, bytes.data(), size);
    }
    void Read() { EXPECT_TRUE(settings.ReadSettings()); }
    void Write() { EXPECT_TRUE(settings.WriteSettings()); }
    std::string StoredBytes(const std::string& key, const std::string& name) {
        const RegistryValue* value = store.Value(key, name);
        if (!value) return "no such value";
        EXPECT_EQ(value->type, ValueType::Binary);
        return value->data;
    }
    using Names = std::vector<std::string>;
    VardelSettings settings;
};

template <class Table>
std::vector<std::string> Keys(const Table& table) {
    std::vector<std::string> keys;
    table.ForEach([&](const TcString& key, auto*) { keys.push_back(key.GetContent()); });
    std::sort(keys.begin(), keys.end());
    return keys;
}
using Texts = std::vector<std::string>;

// ---- layouts ----

TEST_F(SettingsLists, APluginIsFiftyTwoBytes) {
    Add(settings.pluginStates, "0a1b", Plugin("0a1b", 1));
    Write();
    std::string wanted(52, '\0');
    wanted.replace(0, 4, "0a1b");
    wanted[50] = 1;
    EXPECT_EQ(StoredBytes(kPlugins, "Plugin0"), wanted);
}

TEST_F(SettingsLists, AnApplicationIsFifteenHundredAndSixtyBytes) {
    settings.applications.Write({Application("tool")});
    Write();
    std::string wanted(1560, '\0');
    wanted.replace(0, 4, "tool");
    wanted.replace(260, 13, "/usr/bin/tool");
    wanted.replace(520, 9, "%VDLW_IP%");
    EXPECT_EQ(StoredBytes(kApplications, "Application0"), wanted);
}

TEST_F(SettingsLists, AListedHostIsEightHundredAndThirtyBytes) {
    Add(settings.trustedHosts, "10.0.0.1", Listed("10.0.0.1", "alpha"));
    Add(settings.distrustedHosts, "10.0.0.2", Listed("10.0.0.2", "beta"));
    Write();
    std::string wanted(830, '\0');
    wanted.replace(0, 5, "alpha");
    wanted.replace(260, 17, "00:11:22:33:44:55");
    wanted.replace(520, 8, "10.0.0.1");
    wanted.replace(780, 8, "12:34:56");
    EXPECT_EQ(StoredBytes(kTrusted, "Host0"), wanted);
    wanted.replace(0, 5, std::string("beta\0", 5));
    wanted.replace(520, 8, "10.0.0.2");
    EXPECT_EQ(StoredBytes(kDistrusted, "Host0"), wanted);
}

TEST_F(SettingsLists, AWatchedHostIsSeventyOneBytes) {
    Add(settings.watchedHosts, "10.0.0.3", Watched("10.0.0.3", 1));
    Write();
    std::string wanted(71, '\0');
    wanted.replace(0, 7, "watched");
    wanted.replace(50, 8, "10.0.0.3");
    wanted[70] = 1;
    EXPECT_EQ(StoredBytes(kWatched, "Host0"), wanted);
}

TEST_F(SettingsLists, AnAccountIsTwoHundredBytes) {
    settings.accounts.Write({{7, Account("office")}});
    Write();
    std::string wanted(200, '\0');
    wanted.replace(0, 13, "administrator");
    wanted.replace(50, 3, "\x81\xfe\x01");
    wanted.replace(150, 6, "office");
    EXPECT_EQ(StoredBytes(kAccounts, "AdminAccount0"), wanted);
}

TEST_F(SettingsLists, BytesBehindATextsEndAreKept) {
    ListedHost host = Listed("10.0.0.1", "alpha");
    host.hostName[100] = '\x55';
    Stored(kTrusted, "Host0", host);
    Read();
    Write();
    EXPECT_EQ(StoredBytes(kTrusted, "Host0"), Bytes(host));
}

// ---- writing ----

TEST_F(SettingsLists, AnEmptyListHasNoKeyAfterAWrite) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1"));
    Write();
    EXPECT_FALSE(store.HasKey(kTrusted));
    EXPECT_FALSE(store.HasKey(kAccounts));
    EXPECT_TRUE(store.HasKey(kProduct));
}

TEST_F(SettingsLists, ARewriteStartsFromScratch) {
    for (int i = 0; i < 5; ++i) Stored(kWatched, "Host" + std::to_string(i), Watched("10.0.0." + std::to_string(i)));
    store.PutText(kWatched, "SomethingElse", "goes");
    Add(settings.watchedHosts, "10.0.0.9", Watched("10.0.0.9"));
    EXPECT_TRUE(settings.WriteWatchedHosts());
    EXPECT_EQ(store.ValueNames(kWatched), Names{"Host0"});
}

TEST_F(SettingsLists, ARewriteOpensDeletesAndMakesTheKeyAnew) {
    Stored(kWatched, "Host0", Watched("10.0.0.1"));
    Add(settings.watchedHosts, "10.0.0.2", Watched("10.0.0.2"));
    EXPECT_TRUE(settings.WriteWatchedHosts());
    EXPECT_EQ(store.calls, (Names{"open " + kWatched, "delete " + kWatched, "create " + kWatched, "set Host0"}));
}

TEST_F(SettingsLists, APluginThatIsOffLeavesNoTraceAndNoGap) {
    Add(settings.pluginStates, "first", Plugin("first", 0));
    Add(settings.pluginStates, "second", Plugin("second", 1));
    Add(settings.pluginStates, "third", Plugin("third", 255));
    Write();
    EXPECT_EQ(store.ValueNames(kPlugins), (Names{"Plugin0", "Plugin1"}));
    EXPECT_EQ(StoredBytes(kPlugins, "Plugin0"), Bytes(Plugin("second", 1)));
    EXPECT_EQ(StoredBytes(kPlugins, "Plugin1"), Bytes(Plugin("third", 255)));
}

TEST_F(SettingsLists, WithAllPluginsOffTheKeyIsThereWithoutValues) {
    Add(settings.pluginStates, "first", Plugin("first", 0));
    Write();
    EXPECT_TRUE(store.HasKey(kPlugins));
    EXPECT_TRUE(store.ValueNames(kPlugins).empty());
}

TEST_F(SettingsLists, ApplicationsAreWrittenInTheirOrder) {
    settings.applications.Write({Application("b"), Application("a"), Application("c")});
    Write();
    EXPECT_EQ(StoredBytes(kApplications, "Application0"), Bytes(Application("b")));
    EXPECT_EQ(StoredBytes(kApplications, "Application1"), Bytes(Application("a")));
    EXPECT_EQ(StoredBytes(kApplications, "Application2"), Bytes(Application("c")));
}

TEST_F(SettingsLists, AccountsAreWrittenByAscendingIndexAndNumberedAnew) {
    settings.accounts.Write({{9, Account("last")}, {-3, Account("first")}, {4, Account("middle")}});
    Write();
    EXPECT_EQ(StoredBytes(kAccounts, "AdminAccount0"), Bytes(Account("first")));
    EXPECT_EQ(StoredBytes(kAccounts, "AdminAccount1"), Bytes(Account("middle")));
    EXPECT_EQ(StoredBytes(kAccounts, "AdminAccount2"), Bytes(Account("last")));
    EXPECT_EQ(store.ValueNames(kAccounts).size(), 3u);
}

TEST_F(SettingsLists, NodesWithoutARecordAreLeftOut) {
    settings.trustedHosts.Insert("10.0.0.1", nullptr);
    Add(settings.trustedHosts, "10.0.0.2", Listed("10.0.0.2"));
    EXPECT_TRUE(settings.WriteTrustedHosts());
    EXPECT_EQ(store.ValueNames(kTrusted), Names{"Host0"});
    EXPECT_EQ(StoredBytes(kTrusted, "Host0"), Bytes(Listed("10.0.0.2")));
}

TEST_F(SettingsLists, NumbersAreDecimalWithoutLeadingZeros) {
    for (int i = 0; i < 12; ++i) {
        const std::string ip = "10.0.0." + std::to_string(i);
        Add(settings.distrustedHosts, ip, Listed(ip));
    }
    EXPECT_TRUE(settings.WriteDistrustedHosts());
    Names wanted;
    for (int i = 0; i < 12; ++i) wanted.push_back("Host" + std::to_string(i));
    EXPECT_EQ(store.ValueNames(kDistrusted), wanted);
}

struct ListWriter {
    const char* name;
    bool (VardelSettings::*write)();
    std::string key;
};
class SingleListWriter : public SettingsFixture, public ::testing::WithParamInterface<ListWriter> {
  protected:
    void SetUp() override {
        Add(settings.trustedHosts, "10.0.0.1", Listed("10.0.0.1"));
        Add(settings.distrustedHosts, "10.0.0.2", Listed("10.0.0.2"));
        Add(settings.watchedHosts, "10.0.0.3", Watched("10.0.0.3"));
    }
    bool Write() { return (settings.*GetParam().write)(); }
    VardelSettings settings;
};

TEST_P(SingleListWriter, WritesItsKeyAloneAndAtOnce) {
    const std::string& key = GetParam().key;
    EXPECT_TRUE(Write());
    EXPECT_EQ(store.calls, (std::vector<std::string>{"open " + key, "create " + kProduct, "create " + key, "open " + key,
                                                     "delete " + key, "create " + key, "set Host0"}));
    EXPECT_EQ(store.batchesEnded, 1);
}

TEST_P(SingleListWriter, IsTrueWhateverFails) {
    for (const char* step : {"open ", "create ", "delete ", "set "}) {
        store.fails = [&](const std::string& call) { return call.starts_with(step); };
        EXPECT_TRUE(Write()) << step;
    }
}

TEST_P(SingleListWriter, SkipsTheListWhenItsKeyCannotBeReached) {
    const std::string& key = GetParam().key;
    for (const std::string& step : {"create " + kProduct, "create " + key, "open " + key}) {
        store.calls.clear();
        store.fails = [&](const std::string& call) { return call == step; };
        EXPECT_TRUE(Write());
        EXPECT_EQ(std::count(store.calls.begin(), store.calls.end(), "delete " + key), 0) << step;
        EXPECT_EQ(store.calls.back(), "open " + key) << "one last try after the making";
        store.tree.Delete(key.c_str());
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, SingleListWriter,
                         ::testing::Values(ListWriter{"Watched", &VardelSettings::WriteWatchedHosts, kWatched},
                                           ListWriter{"Trusted", &VardelSettings::WriteTrustedHosts, kTrusted},
                                           ListWriter{"Distrusted", &VardelSettings::WriteDistrustedHosts, kDistrusted}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SettingsLists, WhenTheKeyCannotBeMadeAnewTheListEndsEmpty) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1"));
    Add(settings.trustedHosts, "10.0.0.2", Listed("10.0.0.2"));
    store.fails = [](const std::string& call) { return call == "create " + kTrusted; };
    EXPECT_TRUE(settings.WriteTrustedHosts());
    EXPECT_FALSE(store.HasKey(kTrusted));
}

TEST_F(SettingsLists, WhenTheKeyCannotBeDeletedTheNewRecordsAreWrittenOverTheOld) {
    Stored(kTrusted, "Host0", Listed("10.0.0.1"));
    Stored(kTrusted, "Host1", Listed("10.0.0.9"));
    Add(settings.trustedHosts, "10.0.0.2", Listed("10.0.0.2"));
    store.fails = [](const std::string& call) { return call == "delete " + kTrusted; };
    EXPECT_TRUE(settings.WriteTrustedHosts());
    EXPECT_EQ(StoredBytes(kTrusted, "Host0"), Bytes(Listed("10.0.0.2")));
    EXPECT_EQ(StoredBytes(kTrusted, "Host1"), Bytes(Listed("10.0.0.9")));
}

TEST_F(SettingsLists, AFailedValueTakesItsNumberAllTheSame) {
    settings.applications.Write({Application("a"), Application("b"), Application("c")});
    store.fails = [](const std::string& call) { return call == "set Application1"; };
    Write();
    EXPECT_EQ(store.ValueNames(kApplications), (Names{"Application0", "Application2"}));
    EXPECT_EQ(StoredBytes(kApplications, "Application2"), Bytes(Application("c")));
}

TEST_F(SettingsLists, AFailedSectionStopsNoOther) {
    Add(settings.trustedHosts, "10.0.0.1", Listed("10.0.0.1"));
    Add(settings.distrustedHosts, "10.0.0.2", Listed("10.0.0.2"));
    store.fails = [](const std::string& call) { return call.ends_with("\\TrustedHosts"); };
    Write();
    EXPECT_FALSE(store.HasKey(kTrusted));
    EXPECT_EQ(store.ValueNames(kDistrusted), Names{"Host0"});
}

// ---- reading ----

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

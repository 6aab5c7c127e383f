// The six lists in the store: their layouts, and how they are written and rewritten.
#include "tests/unit/support/ListsFixture.h"

namespace vardel {
namespace {

using namespace test;

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
    for (int i = 0; i < 5; ++i)
        Stored(kWatched, "Host" + std::to_string(i), Watched("10.0.0." + std::to_string(i)));
    store.PutText(kWatched, "SomethingElse", "goes");
    Add(settings.watchedHosts, "10.0.0.9", Watched("10.0.0.9"));
    EXPECT_TRUE(settings.WriteWatchedHosts());
    EXPECT_EQ(store.ValueNames(kWatched), Names{"Host0"});
}

TEST_F(SettingsLists, ARewriteOpensDeletesAndMakesTheKeyAnew) {
    Stored(kWatched, "Host0", Watched("10.0.0.1"));
    Add(settings.watchedHosts, "10.0.0.2", Watched("10.0.0.2"));
    EXPECT_TRUE(settings.WriteWatchedHosts());
    EXPECT_EQ(store.calls,
              (Names{"open " + kWatched, "delete " + kWatched, "create " + kWatched, "set Host0"}));
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
    EXPECT_EQ(store.calls,
              (std::vector<std::string>{"open " + key, "create " + kProduct, "create " + key, "open " + key,
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

INSTANTIATE_TEST_SUITE_P(
    Settings, SingleListWriter,
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

}  // namespace
}  // namespace vardel

// Reading and writing the settings as a whole: rules between values, orders, setters, and what failures
// leave.
#include <algorithm>

#include "tests/unit/support/SettingsFixture.h"

namespace vardel {
namespace {

using namespace test;

class ReadSettings : public SettingsFixture {
  protected:
    void Read() { EXPECT_TRUE(settings.ReadSettings()); }
    void Stored(const char* name, i64 value) { store.PutDword(kSettings, name, value); }
    void Stored(const char* name, const char* text) { store.PutText(kSettings, name, text); }
    VardelSettings settings;
};

// ---- the first start ----

TEST_F(ReadSettings, WithoutAKeyTheDefaultsHold) {
    Read();
    EXPECT_EQ(settings.AutoCapture, 0);
    EXPECT_EQ(settings.Visualization, 1);
    EXPECT_EQ(settings.MACSpoofingVisualizationStyle, 1);
    EXPECT_EQ(settings.WatchInterval, 60u);
    EXPECT_EQ(settings.ReportInterval, 300u);
    EXPECT_EQ(settings.ViewGrayTime, 240u);
    EXPECT_EQ(settings.ViewFilterOptions, 7);
    EXPECT_EQ(settings.WatchConfirm, 1);
    EXPECT_EQ(settings.WatchVisualization, 1);
    EXPECT_EQ(settings.UpdateCheck, 0);
    EXPECT_EQ(settings.Syslog, 0);
    EXPECT_EQ(settings.MACListVersion, 1);
    EXPECT_FALSE(store.HasKey(kSettings)) << "reading makes nothing";
}

TEST_F(ReadSettings, WithoutASettingsKeyTheListsAreReadAllTheSame) {
    const ListedHost host = Listed("10.0.0.1");
    store.Put(kProduct + "\\TrustedHosts", "Host0", ValueType::Binary, &host, sizeof host);
    Read();
    EXPECT_EQ(settings.trustedHosts.Count(), 1u);
    EXPECT_EQ(settings.WatchInterval, 60u);
}

// ---- rules between values ----

TEST_F(ReadSettings, WithoutWmiTheColumnOfAdvancedInformationIsTakenOut) {
    Stored("VisibleColumns", 11111);
    Read();
    EXPECT_EQ(settings.VisibleColumns, 11110);
}

TEST_F(ReadSettings, WithWmiAllColumnsStay) {
    Stored("VisibleColumns", 11111);
    Stored("UseWMI", 1);
    Read();
    EXPECT_EQ(settings.VisibleColumns, 11111);
}

TEST(ColumnsWithWmi, OnlyTheLowestBitDependsOnWmi) {
    EXPECT_EQ(ColumnsWithWmi(11111, true), 11111);
    EXPECT_EQ(ColumnsWithWmi(11111, false), 11110);
    EXPECT_EQ(ColumnsWithWmi(11110, false), 11110);
    EXPECT_EQ(ColumnsWithWmi(1, false), 0);
    EXPECT_EQ(ColumnsWithWmi(3, false), 2);
    EXPECT_EQ(ColumnsWithWmi(0, false), 0);
}

TEST_F(ReadSettings, UnknownWinsOverDistrusted) {
    Stored("OtherApp", "other.exe");
    Stored("OtherAppDistrusted", 1);
    Stored("OtherAppUnknown", 1);
    Read();
    EXPECT_EQ(settings.OtherAppUnknown, 1);
    EXPECT_EQ(settings.OtherAppDistrusted, 0);
}

TEST_F(ReadSettings, DistrustedAloneStays) {
    Stored("OtherApp", "other.exe");
    Stored("OtherAppDistrusted", 1);
    Stored("OtherAppUnknown", 2);
    Read();
    EXPECT_EQ(settings.OtherAppUnknown, 0);
    EXPECT_EQ(settings.OtherAppDistrusted, 1);
}

TEST_F(ReadSettings, WithoutOtherAppItsParametersAndFlagsAreCleared) {
    Stored("OtherAppParams", "-x");
    Stored("OtherAppUnknown", 1);
    Read();
    EXPECT_STREQ(settings.OtherAppParams, "");
    EXPECT_EQ(settings.OtherAppUnknown, 0);
    Stored("OtherAppUnknown", i64{0});
    Stored("OtherAppDistrusted", 1);
    Read();
    EXPECT_EQ(settings.OtherAppDistrusted, 0);
}

TEST_F(ReadSettings, WithoutTrustedAppItsParametersAreCleared) {
    Stored("TrustedAppParams", "-x");
    Read();
    EXPECT_STREQ(settings.TrustedAppParams, "");
    Stored("TrustedApp", "t.exe");
    Read();
    EXPECT_STREQ(settings.TrustedAppParams, "-x");
}

// ---- values that depend on another ----

TEST_F(ReadSettings, LastUpdateTimeIsReadWhileUpdateCheckIsOn) {
    const i64 moment = 0x123456789abcdef0;
    store.Put(kSettings, "LastUpdateTime", ValueType::Qword, &moment, sizeof moment);
    Stored("UpdateCheck", 2);
    Read();
    EXPECT_EQ(settings.UpdateCheck, 1);
    EXPECT_EQ(settings.LastUpdateTime, moment);
}

TEST_F(ReadSettings, LastUpdateTimeIsZeroWhileUpdateCheckIsOff) {
    const i64 moment = 1'700'000'000;
    store.Put(kSettings, "LastUpdateTime", ValueType::Qword, &moment, sizeof moment);
    Stored("UpdateCheck", i64{0});
    settings.LastUpdateTime = 5;
    Read();
    EXPECT_EQ(settings.LastUpdateTime, 0);
}

TEST_F(ReadSettings, LastUpdateTimeIsZeroWhenItIsMissingOrNoQword) {
    Stored("UpdateCheck", 1);
    settings.LastUpdateTime = 5;
    Read();
    EXPECT_EQ(settings.LastUpdateTime, 0);
    Stored("LastUpdateTime", 77);
    Read();
    EXPECT_EQ(settings.LastUpdateTime, 0);
}

TEST_F(ReadSettings, MacListVersionIsAtLeastOne) {
    for (const auto& [stored, becomes] : {std::pair<i64, i32>{0, 1}, {-5, 1}, {1, 1}, {17, 17}}) {
        Stored("MACListVersion", stored);
        Read();
        EXPECT_EQ(settings.MACListVersion, becomes) << stored;
    }
}

TEST_F(ReadSettings, AMissingMacListVersionIsOne) {
    Stored("AutoStart", 1);
    settings.MACListVersion = 9;
    Read();
    EXPECT_EQ(settings.MACListVersion, 1);
}

class ReadRectangle : public ReadSettings {
  protected:
    void StoredBytes(const void* bytes, std::size_t size) {
        store.Put(kSettings, "SavedViewWindowDimension", ValueType::Binary, bytes, size);
    }
    void Expect(const ViewRectangle& wanted) {
        const ViewRectangle rectangle = settings.SavedViewWindowDimension.Read();
        EXPECT_EQ(rectangle.left, wanted.left);
        EXPECT_EQ(rectangle.top, wanted.top);
        EXPECT_EQ(rectangle.right, wanted.right);
        EXPECT_EQ(rectangle.bottom, wanted.bottom);
    }
    const i32 numbers_[5] = {-10, 20, 640, 480, 99};
};

TEST_F(ReadRectangle, IsReadWhileItIsToBeKept) {
    Stored("SaveViewWindow", 1);
    StoredBytes(numbers_, 16);
    Read();
    Expect({-10, 20, 640, 480});
}

TEST_F(ReadRectangle, IsNotTouchedOtherwise) {
    Stored("SaveViewWindow", i64{0});
    StoredBytes(numbers_, 16);
    Read();
    Expect({0, 0, 0, 0});
    settings.SavedViewWindowDimension.Write({1, 2, 3, 4});
    Stored("SaveViewWindow", 2);
    Read();
    Expect({1, 2, 3, 4});
}

TEST_F(ReadRectangle, IsZeroWhenItIsMissing) {
    Stored("SaveViewWindow", 1);
    settings.SavedViewWindowDimension.Write({1, 2, 3, 4});
    Read();
    Expect({0, 0, 0, 0});
}

TEST_F(ReadRectangle, IsZeroWhenItIsTooLong) {
    Stored("SaveViewWindow", 1);
    settings.SavedViewWindowDimension.Write({1, 2, 3, 4});
    StoredBytes(numbers_, 20);
    Read();
    Expect({0, 0, 0, 0});
}

TEST_F(ReadRectangle, TakesWhatAShortValueHas) {
    Stored("SaveViewWindow", 1);
    settings.SavedViewWindowDimension.Write({1, 2, 3, 4});
    StoredBytes(numbers_, 8);
    Read();
    Expect({-10, 20, 3, 4});
}

// ---- orders ----

// clang-format off
const std::vector<std::string> kReadOrder = {
    "AutoStart", "AutoCapture", "UseToolTips", "Visualization", "NotifyTrusted", "MACSpoofingVisualization",
    "MACSpoofingVisualizationStyle", "SaveViewWindow", "SavedViewWindowDimension", "SaveColumnWidth",
    "RAIgnoreLocalhost", "RAIgnoreTrustedHosts", "RAIgnoreIPCNoUsername", "RAVisualization",
    "RAVisualizationType", "VisibleColumns", "DeleteARPCache", "GreyedOutOldEntries", "UseWMI",
    "UpdateCheck", "LastUpdateTime", "ShareSearch", "ShareVisualization", "ShareUseToolTips",
    "OtherAppDistrusted", "OtherAppUnknown", "ViewFilterOptions", "ReportOptions", "ReportInterval",
    "WatchInterval", "WatchConfirm", "WatchVisualization", "UsingEventLog", "EventLogSave",
    "MaxEventLogFileSize", "Syslog", "SyslogMaxEntries", "SyslogNotification", "SyslogNotificationLevel",
    "SyslogNotificationType", "SyslogNotificationFacility", "ViewGrayTime", "ViewOfflineRed",
    "ViewHideSecure", "SyslogNotificationWords", "Interface", "Language", "TrustedApp", "TrustedAppParams",
    "OtherApp", "OtherAppParams", "ReportTemplate", "ReportPath", "MACListVersion"};

const std::vector<std::string> kWriteOrder = {
    "set AutoStart", "set AutoCapture", "set UseToolTips", "set Visualization", "set NotifyTrusted",
    "set MACSpoofingVisualization", "set MACSpoofingVisualizationStyle", "set SaveColumnWidth",
    "set SaveViewWindow", "set RAIgnoreLocalhost", "set RAIgnoreTrustedHosts", "set RAIgnoreIPCNoUsername",
    "set VisibleColumns", "set DeleteARPCache", "set GreyedOutOldEntries", "set UseWMI", "set UpdateCheck",
    "set ShareSearch", "set ShareVisualization", "set ShareUseToolTips", "set OtherAppDistrusted",
    "set OtherAppUnknown", "set RAVisualization", "set RAVisualizationType", "set ViewFilterOptions",
    "set ReportInterval", "set ReportOptions", "set WatchConfirm", "set WatchInterval",
    "set WatchVisualization", "set UsingEventLog", "set EventLogSave", "set MaxEventLogFileSize",
    "set Syslog", "set SyslogMaxEntries", "set SyslogNotification", "set SyslogNotificationLevel",
    "set SyslogNotificationType", "set SyslogNotificationFacility", "set ViewHideSecure",
    "set ViewOfflineRed", "set ViewGrayTime", "set SavedViewWindowDimension", "no autostart Vardelwatch",
    "set Interface", "set Language", "set TrustedApp", "set TrustedAppParams", "set OtherApp",
    "set OtherAppParams", "set ReportPath", "set ReportTemplate", "set SyslogNotificationWords"};
// clang-format on

// Calls for a list without records.
std::vector<std::string> EmptyListCalls(const std::string& name) {
    const std::string path = kProduct + "\\" + name;
    return {"open " + path, "create " + kProduct, "create " + path, "open " + path, "delete " + path};
}

std::vector<std::string> AllEmptyLists() {
    std::vector<std::string> calls;
    for (const char* name :
         {"Plugins", "Applications", "TrustedHosts", "DistrustedHosts", "WatchedHosts", "AdminAccounts"})
        for (const std::string& call : EmptyListCalls(name)) calls.push_back(call);
    return calls;
}

TEST_F(ReadSettings, ReadsInItsFixedOrder) {
    Stored("SaveViewWindow", 1);
    Stored("UpdateCheck", 1);
    Read();
    std::vector<std::string> wanted = {"open " + kSettings};
    for (const std::string& name : kReadOrder) wanted.push_back("query " + name);
    for (const char* name :
         {"Plugins", "Applications", "TrustedHosts", "DistrustedHosts", "WatchedHosts", "AdminAccounts"})
        wanted.push_back("open " + kProduct + "\\" + name);
    EXPECT_EQ(store.calls, wanted);
}

class WriteSettings : public SettingsFixture {
  protected:
    std::vector<std::string> CallsFrom(const std::string& first) {
        return {std::find(store.calls.begin(), store.calls.end(), first), store.calls.end()};
    }
    VardelSettings settings;
};

TEST_F(WriteSettings, MakesItsKeysAndWritesInItsFixedOrder) {
    EXPECT_TRUE(settings.WriteSettings());
    std::vector<std::string> wanted = {"open " + kSettings, "create " + kProduct, "create " + kSettings,
                                       "open " + kSettings};
    wanted.insert(wanted.end(), kWriteOrder.begin(), kWriteOrder.end());
    const std::vector<std::string> lists = AllEmptyLists();
    wanted.insert(wanted.end(), lists.begin(), lists.end());
    EXPECT_EQ(store.calls, wanted);
    EXPECT_EQ(store.batchesEnded, 1) << "all goes to the disk at once";
}

TEST_F(WriteSettings, OverwritesInPlaceAndNeverDeletesTheSettingsKey) {
    store.PutText(kSettings, "SomethingOfAnotherVersion", "stays");
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_EQ(store.calls.front(), "open " + kSettings);
    EXPECT_EQ(store.calls[1], "set AutoStart") << "an existing key is not made again";
    EXPECT_TRUE(store.Value(kSettings, "SomethingOfAnotherVersion"));
    EXPECT_EQ(std::count(store.calls.begin(), store.calls.end(), "delete " + kSettings), 0);
}

TEST_F(WriteSettings, EntersAndRemovesTheAutostart) {
    settings.AutoStart = 1;
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_EQ(store.tree.Autostarts(), std::set<std::string>{"Vardelwatch"});
    settings.AutoStart = 0;
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_TRUE(store.tree.Autostarts().empty());
}

TEST_F(WriteSettings, LeavesTheValuesOfSettersAlone) {
    settings.LastUpdateTime = 5;
    settings.MACListVersion = 6;
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_FALSE(store.Value(kSettings, "LastUpdateTime"));
    EXPECT_FALSE(store.Value(kSettings, "MACListVersion"));
}

TEST_F(WriteSettings, WritesTheRectangleAsSixteenBytes) {
    settings.SavedViewWindowDimension.Write({-1, 2, 3, 4});
    EXPECT_TRUE(settings.WriteSettings());
    const RegistryValue* value = store.Value(kSettings, "SavedViewWindowDimension");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, ValueType::Binary);
    EXPECT_EQ(value->data, std::string("\xff\xff\xff\xff\2\0\0\0\3\0\0\0\4\0\0\0", 16));
}

TEST_F(WriteSettings, WritesOddFlagBytesAsTheyStand) {
    settings.UseToolTips = 2;
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_EQ(store.Value(kSettings, "UseToolTips")->data, std::string("\2\0\0\0", 4));
}

TEST_F(WriteSettings, WhatIsWrittenIsReadBack) {
    settings.Interface = "\\Device\\NPF_{1}";
    settings.VisibleColumns = 1010;
    settings.WatchInterval = 4'000'000'000u;
    settings.MaxEventLogFileSize = -7;
    settings.Language = "English";
    EXPECT_TRUE(settings.WriteSettings());
    VardelSettings other;
    EXPECT_TRUE(other.ReadSettings());
    EXPECT_STREQ(other.Interface, "\\Device\\NPF_{1}");
    EXPECT_EQ(other.VisibleColumns, 1010);
    EXPECT_EQ(other.WatchInterval, 4'000'000'000u);
    EXPECT_EQ(other.MaxEventLogFileSize, -7);
    EXPECT_STREQ(other.Language, "English");
    EXPECT_EQ(other.Visualization, 1);
}

// ---- failures ----

TEST_F(WriteSettings, WithoutTheProductKeyTheListsAreTriedAllTheSame) {
    store.fails = [](const std::string& call) { return call == "create " + kProduct; };
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_FALSE(store.HasKey(kSettings));
    EXPECT_EQ(store.calls[0], "open " + kSettings);
    EXPECT_EQ(store.calls[1], "create " + kProduct);
    EXPECT_EQ(store.calls[2], "open " + kProduct + "\\Plugins");
    EXPECT_EQ(std::count(store.calls.begin(), store.calls.end(), "open " + kProduct + "\\AdminAccounts"), 2);
}

TEST_F(WriteSettings, WithoutTheSettingsSubkeyNothingIsTried) {
    store.fails = [](const std::string& call) { return call == "create " + kSettings; };
    EXPECT_FALSE(settings.WriteSettings());
    EXPECT_EQ(store.calls,
              (std::vector<std::string>{"open " + kSettings, "create " + kProduct, "create " + kSettings}));
}

TEST_F(WriteSettings, WhenTheMadeKeyCannotBeOpenedTheListsAreWritten) {
    Add(settings.trustedHosts, "10.0.0.1", Listed("10.0.0.1"));
    store.fails = [](const std::string& call) { return call == "open " + kSettings; };
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_TRUE(store.ValueNames(kSettings).empty());
    EXPECT_EQ(store.ValueNames(kProduct + "\\TrustedHosts"), std::vector<std::string>{"Host0"});
}

TEST_F(WriteSettings, AValueThatCannotBeWrittenStopsNoOther) {
    store.fails = [](const std::string& call) { return call == "set AutoCapture"; };
    EXPECT_TRUE(settings.WriteSettings());
    EXPECT_FALSE(store.Value(kSettings, "AutoCapture"));
    EXPECT_TRUE(store.Value(kSettings, "UseToolTips"));
    EXPECT_TRUE(store.Value(kSettings, "SyslogNotificationWords"));
}

TEST_F(ReadSettings, AStoreThatFailsEveryQueryReadsAsMissingValues) {
    Stored("WatchInterval", 5);
    store.fails = [](const std::string& call) { return call.starts_with("query "); };
    Read();
    EXPECT_EQ(settings.WatchInterval, 4294967295u);
    EXPECT_EQ(settings.ViewFilterOptions, 7);
    EXPECT_EQ(settings.Syslog, 1);
}

}  // namespace
}  // namespace vardel

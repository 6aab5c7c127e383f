// Each single value of the settings: its default, what a missing value means and what odd stored numbers
// become.
#include <functional>

#include "tests/unit/support/SettingsFixture.h"

namespace vardel {
namespace {

using namespace test;

struct Stored {
    i64 number;
    i64 becomes;
};

struct NumberCase {
    const char* name;
    std::function<i64(const VardelSettings&)> get;
    std::function<void(VardelSettings&, i64)> set;
    i64 byDefault;
    i64 whenMissing;
    std::vector<Stored> stored;
    i64 toWrite;
};

#define FIELD(field) \
#field, [](const VardelSettings& s) -> i64 { return s.field.Get(); },                   \
        [](VardelSettings& s, i64 number) {                                                 \
            s.field = static_cast<std::remove_cvref_t<decltype(s.field.Get())>>(number);    \
        }

constexpr i64 kMaxUnsigned = 4294967295;

const std::vector<Stored> kOnlyOne = {{0, 0}, {1, 1}, {2, 0}, {-1, 0}, {256, 0}, {257, 0}};
const std::vector<Stored> kNonZero = {{0, 0}, {1, 1}, {2, 1}, {-1, 1}, {256, 1}, {-2147483648, 1}};
const std::vector<Stored> kSigned = {
    {0, 0}, {1, 1}, {-1, -1}, {2147483647, 2147483647}, {-2147483648, -2147483648}};
const std::vector<Stored> kUnsigned = {
    {0, 0}, {1, 1}, {-1, kMaxUnsigned}, {2147483648, 2147483648}, {9999, 9999}};

const NumberCase kNumbers[] = {
    {FIELD(AutoCapture), 0, 0, kOnlyOne, 1},
    {FIELD(AutoStart), 0, 0, kOnlyOne, 1},
    {FIELD(UseToolTips), 0, 0, kOnlyOne, 1},
    {FIELD(Visualization), 1, 0, kOnlyOne, 0},
    {FIELD(NotifyTrusted), 0, 0, kOnlyOne, 1},
    {FIELD(MACSpoofingVisualization), 0, 0, kOnlyOne, 1},
    {FIELD(MACSpoofingVisualizationStyle), 1, 0, kOnlyOne, 0},
    {FIELD(VisibleColumns),
     0,
     0,
     {{0, 0}, {10110, 10110}, {-1, 0}, {-2147483648, 0}, {2147483646, 2147483646}},
     11110},
    {FIELD(SaveColumnWidth), 0, 0, kOnlyOne, 1},
    {FIELD(SaveViewWindow), 0, 0, kOnlyOne, 1},
    {FIELD(RAIgnoreLocalhost), 0, 0, kOnlyOne, 1},
    {FIELD(RAIgnoreTrustedHosts), 0, 0, kOnlyOne, 1},
    {FIELD(RAIgnoreIPCNoUsername), 0, 0, kOnlyOne, 1},
    {FIELD(RAVisualization), 0, 0, kOnlyOne, 1},
    {FIELD(RAVisualizationType), 0, 0, kOnlyOne, 1},
    {FIELD(DeleteARPCache), 0, 0, kOnlyOne, 1},
    {FIELD(GreyedOutOldEntries), 0, 0, kOnlyOne, 1},
    {FIELD(UseWMI), 0, 0, kOnlyOne, 1},
    {FIELD(UpdateCheck), 0, 1, kNonZero, 1},
    {FIELD(ShareSearch), 0, 0, kOnlyOne, 1},
    {FIELD(ShareVisualization), 0, 0, kOnlyOne, 1},
    {FIELD(ShareUseToolTips), 0, 0, kOnlyOne, 1},
    {FIELD(OtherAppDistrusted), 0, 0, kOnlyOne, 1},
    {FIELD(OtherAppUnknown), 0, 0, kOnlyOne, 1},
    {FIELD(WatchInterval), 60, kMaxUnsigned, kUnsigned, 17},
    {FIELD(WatchConfirm), 1, 0, kOnlyOne, 0},
    {FIELD(WatchVisualization), 1, 0, kOnlyOne, 0},
    {FIELD(ViewFilterOptions), 7, 7, {{0, 0}, {1, 1}, {7, 7}, {8, 7}, {-1, 7}, {-2147483648, 7}}, 5},
    {FIELD(ReportInterval), 300, kMaxUnsigned, kUnsigned, 18},
    {FIELD(ReportOptions), 0, kMaxUnsigned, kUnsigned, 4000000000},
    {FIELD(UsingEventLog), 0, 0, kOnlyOne, 1},
    {FIELD(EventLogSave), 0, 0, kOnlyOne, 1},
    {FIELD(MaxEventLogFileSize), 0, -1, kSigned, 1024},
    {FIELD(Syslog), 0, 1, kNonZero, 1},
    {FIELD(SyslogMaxEntries), 0, kMaxUnsigned, kUnsigned, 100},
    {FIELD(SyslogNotification), 0, 1, kNonZero, 1},
    {FIELD(SyslogNotificationLevel), 0, kMaxUnsigned, kUnsigned, 8},
    {FIELD(SyslogNotificationType), 0, kMaxUnsigned, kUnsigned, 1},
    {FIELD(SyslogNotificationFacility), 0, -1, kSigned, -1},
    {FIELD(ViewHideSecure), 0, 1, kNonZero, 1},
    {FIELD(ViewOfflineRed), 0, 1, kNonZero, 1},
    {FIELD(ViewGrayTime), 240, kMaxUnsigned, kUnsigned, 30},
};
#undef FIELD

class NumberValue : public SettingsFixture, public ::testing::WithParamInterface<NumberCase> {
  protected:
    // The two flags of OtherApp mean nothing without a program.
    void SetUp() override { store.PutText(kSettings, "OtherApp", "other.exe"); }
    i64 ReadWith(i64 number) {
        store.PutDword(kSettings, GetParam().name, number);
        VardelSettings settings;
        EXPECT_TRUE(settings.ReadSettings());
        return GetParam().get(settings);
    }
};

TEST_P(NumberValue, HasItsDefault) {
    EXPECT_EQ(GetParam().get(VardelSettings()), GetParam().byDefault);
}

TEST_P(NumberValue, ReadsAsToldWhenItIsMissing) {
    VardelSettings settings;
    EXPECT_TRUE(settings.ReadSettings());
    EXPECT_EQ(GetParam().get(settings), GetParam().whenMissing);
}

TEST_P(NumberValue, ReadsAsMissingWhenItIsOfAnotherType) {
    store.PutText(kSettings, GetParam().name, "1");
    VardelSettings settings;
    EXPECT_TRUE(settings.ReadSettings());
    EXPECT_EQ(GetParam().get(settings), GetParam().whenMissing);
}

TEST_P(NumberValue, ReadsStoredNumbersByItsRule) {
    for (const Stored& stored : GetParam().stored)
        EXPECT_EQ(ReadWith(stored.number), stored.becomes) << stored.number;
}

TEST_P(NumberValue, IsWrittenAsADwordOfItsName) {
    VardelSettings settings;
    GetParam().set(settings, GetParam().toWrite);
    EXPECT_TRUE(settings.WriteSettings());
    const RegistryValue* value = store.Value(kSettings, GetParam().name);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, ValueType::Dword);
    u32 number = 0;
    ASSERT_EQ(value->data.size(), sizeof number);
    std::memcpy(&number, value->data.data(), sizeof number);
    EXPECT_EQ(number, static_cast<u32>(GetParam().toWrite));
}

TEST_P(NumberValue, IsCopiedByAssignment) {
    VardelSettings source, target;
    source.OtherApp = "other.exe";
    GetParam().set(source, GetParam().toWrite);
    EXPECT_TRUE(target.AssignSettings(&source));
    EXPECT_EQ(GetParam().get(target), GetParam().toWrite);
}

const auto kNameOf = [](const auto& tested) { return std::string(tested.param.name); };
INSTANTIATE_TEST_SUITE_P(Settings, NumberValue, ::testing::ValuesIn(kNumbers), kNameOf);

TEST(SettingsValues, TheTableOfThisTestHasAllFortyTwoNumbers) {
    EXPECT_EQ(std::size(kNumbers), 42u);
}

struct TextCase {
    const char* name;
    TcString VardelSettings::*field;
    bool assigned;
};
const TextCase kTexts[] = {
    {"Interface", &VardelSettings::Interface, true},
    {"TrustedApp", &VardelSettings::TrustedApp, true},
    {"TrustedAppParams", &VardelSettings::TrustedAppParams, true},
    {"OtherApp", &VardelSettings::OtherApp, true},
    {"OtherAppParams", &VardelSettings::OtherAppParams, true},
    {"Language", &VardelSettings::Language, false},
    {"ReportPath", &VardelSettings::ReportPath, true},
    {"ReportTemplate", &VardelSettings::ReportTemplate, true},
    {"SyslogNotificationWords", &VardelSettings::SyslogNotificationWords, true},
};

class TextValue : public SettingsFixture, public ::testing::WithParamInterface<TextCase> {
  protected:
    // Parameters mean nothing without their program.
    void SetUp() override {
        store.PutText(kSettings, "OtherApp", "other.exe");
        store.PutText(kSettings, "TrustedApp", "trusted.exe");
        // Whatever comes before must not shine through.
        store.PutText(kSettings, "SyslogNotificationWords", "a long text, longer than the others");
    }
    TcString Read() {
        VardelSettings settings;
        settings.ReadSettings();
        return settings.*GetParam().field;
    }
};

TEST_P(TextValue, IsEmptyByDefault) {
    EXPECT_TRUE((VardelSettings().*GetParam().field).IsEmpty());
}

TEST_P(TextValue, IsEmptyWhenItIsMissing) {
    RecordingStore bare;
    const ScopedSettingsStore scope(bare);
    bare.PutDword(kSettings, "AutoStart", 1);
    EXPECT_STREQ(Read(), "");
}

TEST_P(TextValue, IsEmptyWhenItIsOfAnotherType) {
    store.PutDword(kSettings, GetParam().name, 0x41414141);
    EXPECT_STREQ(Read(), "");
}

TEST_P(TextValue, ReadsWhatIsStored) {
    store.PutText(kSettings, GetParam().name, "C:\\path\\with \"quotes\" and \xe4");
    EXPECT_STREQ(Read(), "C:\\path\\with \"quotes\" and \xe4");
}

TEST_P(TextValue, KeepsTwoHundredAndNinetyNineCharacters) {
    store.PutText(kSettings, GetParam().name, std::string(298, 'x') + "yz");
    EXPECT_EQ(Read(), (std::string(298, 'x') + "y").c_str());
    store.PutText(kSettings, GetParam().name, std::string(299, 'x'));
    EXPECT_EQ(Read(), std::string(299, 'x').c_str());
    store.PutText(kSettings, GetParam().name, std::string(70000, 'x'));
    EXPECT_EQ(Read(), std::string(299, 'x').c_str());
}

TEST_P(TextValue, IsWrittenWithItsTerminator) {
    VardelSettings settings;
    settings.*GetParam().field = "some text";
    EXPECT_TRUE(settings.WriteSettings());
    const RegistryValue* value = store.Value(kSettings, GetParam().name);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, ValueType::Text);
    EXPECT_EQ(value->data, std::string("some text", 10));
}

TEST_P(TextValue, IsCopiedByAssignmentUnlessItIsTheLanguage) {
    VardelSettings source, target;
    source.OtherApp = "other.exe";
    source.TrustedApp = "trusted.exe";
    source.*GetParam().field = "from the source";
    target.*GetParam().field = "of the target";
    EXPECT_TRUE(target.AssignSettings(&source));
    EXPECT_STREQ(target.*GetParam().field, GetParam().assigned ? "from the source" : "of the target");
}

INSTANTIATE_TEST_SUITE_P(Settings, TextValue, ::testing::ValuesIn(kTexts), kNameOf);

}  // namespace
}  // namespace vardel

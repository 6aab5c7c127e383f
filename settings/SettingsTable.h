// The table of all single values of the settings. Reading, writing and copying walk it: to add a setting, add
// its field to VardelSettings and its row here.
//
// The rows stand in the order of reading. Writing has an order of its own, fixed as well: numbers first, then
// the binary value, then texts, each by `writeRank`.
#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <variant>

#include "settings/VardelSettings.h"

namespace vardel {

using FlagField = Shared<u8> VardelSettings::*;
using SettingField = std::variant<FlagField, Shared<i32> VardelSettings::*, Shared<u32> VardelSettings::*,
                                  Shared<i64> VardelSettings::*,
                                  GuardedRecord<ViewRectangle> VardelSettings::*, TcString VardelSettings::*>;

// What becomes of the stored number, which is -1 where the value is missing.
enum class ReadRule {
    ExactlyOne,   // a flag that is on when 1 is stored: missing means off
    AnyNonZero,   // a flag that is on unless 0 is stored: missing means on (as in settings of older versions)
    AsStored,     // missing means -1, also where that wraps to the greatest unsigned number
    NotNegative,  // below 0 becomes 0
    HostFilterBits,  // outside 0 to 7 becomes 7: everything is shown
    AtLeastOne,      // below 1 becomes 1
};

constexpr int kOnlyBySetter = 0;  // as a writeRank: WriteSettings leaves the value alone

struct SettingRow {
    std::string_view name;
    SettingField field;
    int writeRank = kOnlyBySetter;
    ReadRule rule = ReadRule::AsStored;
    bool assigned = true;           // AssignSettings copies it
    FlagField onlyWhile = nullptr;  // read only while this flag is on
};

#define VARDEL_SETTING(field) #field, &VardelSettings::field
inline constexpr SettingRow kSettingRows[] = {
    {VARDEL_SETTING(AutoStart), 1, ReadRule::ExactlyOne},
    {VARDEL_SETTING(AutoCapture), 2, ReadRule::ExactlyOne},
    {VARDEL_SETTING(UseToolTips), 3, ReadRule::ExactlyOne},
    {VARDEL_SETTING(Visualization), 4, ReadRule::ExactlyOne},
    {VARDEL_SETTING(NotifyTrusted), 5, ReadRule::ExactlyOne},
    {VARDEL_SETTING(MACSpoofingVisualization), 6, ReadRule::ExactlyOne},
    {VARDEL_SETTING(MACSpoofingVisualizationStyle), 7, ReadRule::ExactlyOne},
    {VARDEL_SETTING(SaveViewWindow), 9, ReadRule::ExactlyOne},
    {VARDEL_SETTING(SavedViewWindowDimension), 1, ReadRule::AsStored, true, &VardelSettings::SaveViewWindow},
    {VARDEL_SETTING(SaveColumnWidth), 8, ReadRule::ExactlyOne},
    {VARDEL_SETTING(RAIgnoreLocalhost), 10, ReadRule::ExactlyOne},
    {VARDEL_SETTING(RAIgnoreTrustedHosts), 11, ReadRule::ExactlyOne},
    {VARDEL_SETTING(RAIgnoreIPCNoUsername), 12, ReadRule::ExactlyOne},
    {VARDEL_SETTING(RAVisualization), 23, ReadRule::ExactlyOne},
    {VARDEL_SETTING(RAVisualizationType), 24, ReadRule::ExactlyOne},
    {VARDEL_SETTING(VisibleColumns), 13, ReadRule::NotNegative},
    {VARDEL_SETTING(DeleteARPCache), 14, ReadRule::ExactlyOne},
    {VARDEL_SETTING(GreyedOutOldEntries), 15, ReadRule::ExactlyOne},
    {VARDEL_SETTING(UseWMI), 16, ReadRule::ExactlyOne},
    {VARDEL_SETTING(UpdateCheck), 17, ReadRule::AnyNonZero},
    {VARDEL_SETTING(LastUpdateTime), kOnlyBySetter, ReadRule::AsStored, true, &VardelSettings::UpdateCheck},
    {VARDEL_SETTING(ShareSearch), 18, ReadRule::ExactlyOne},
    {VARDEL_SETTING(ShareVisualization), 19, ReadRule::ExactlyOne},
    {VARDEL_SETTING(ShareUseToolTips), 20, ReadRule::ExactlyOne},
    {VARDEL_SETTING(OtherAppDistrusted), 21, ReadRule::ExactlyOne},
    {VARDEL_SETTING(OtherAppUnknown), 22, ReadRule::ExactlyOne},
    {VARDEL_SETTING(ViewFilterOptions), 25, ReadRule::HostFilterBits},
    {VARDEL_SETTING(ReportOptions), 27, ReadRule::AsStored},
    {VARDEL_SETTING(ReportInterval), 26, ReadRule::AsStored},
    {VARDEL_SETTING(WatchInterval), 29, ReadRule::AsStored},
    {VARDEL_SETTING(WatchConfirm), 28, ReadRule::ExactlyOne},
    {VARDEL_SETTING(WatchVisualization), 30, ReadRule::ExactlyOne},
    {VARDEL_SETTING(UsingEventLog), 31, ReadRule::ExactlyOne},
    {VARDEL_SETTING(EventLogSave), 32, ReadRule::ExactlyOne},
    {VARDEL_SETTING(MaxEventLogFileSize), 33, ReadRule::AsStored},
    {VARDEL_SETTING(Syslog), 34, ReadRule::AnyNonZero},
    {VARDEL_SETTING(SyslogMaxEntries), 35, ReadRule::AsStored},
    {VARDEL_SETTING(SyslogNotification), 36, ReadRule::AnyNonZero},
    {VARDEL_SETTING(SyslogNotificationLevel), 37, ReadRule::AsStored},
    {VARDEL_SETTING(SyslogNotificationType), 38, ReadRule::AsStored},
    {VARDEL_SETTING(SyslogNotificationFacility), 39, ReadRule::AsStored},
    {VARDEL_SETTING(ViewGrayTime), 42, ReadRule::AsStored},
    {VARDEL_SETTING(ViewOfflineRed), 41, ReadRule::AnyNonZero},
    {VARDEL_SETTING(ViewHideSecure), 40, ReadRule::AnyNonZero},
    {VARDEL_SETTING(SyslogNotificationWords), 9},
    {VARDEL_SETTING(Interface), 1},
    // A settings dialog's copy has no language; saving it leaves the live one alone.
    {VARDEL_SETTING(Language), 2, ReadRule::AsStored, false},
    {VARDEL_SETTING(TrustedApp), 3},
    {VARDEL_SETTING(TrustedAppParams), 4},
    {VARDEL_SETTING(OtherApp), 5},
    {VARDEL_SETTING(OtherAppParams), 6},
    {VARDEL_SETTING(ReportTemplate), 8},
    {VARDEL_SETTING(ReportPath), 7},
    {VARDEL_SETTING(MACListVersion), kOnlyBySetter, ReadRule::AtLeastOne, false},
};
#undef VARDEL_SETTING

enum class SettingKind { Number, Binary, Text };

constexpr SettingKind KindOf(const SettingRow& row) {
    if (std::holds_alternative<TcString VardelSettings::*>(row.field)) return SettingKind::Text;
    if (std::holds_alternative<GuardedRecord<ViewRectangle> VardelSettings::*>(row.field))
        return SettingKind::Binary;
    return SettingKind::Number;
}

// Places in the table of the rows of one kind that WriteSettings writes, in its order. Ranks are 1, 2, 3...
// without a gap.
template <SettingKind kind>
constexpr auto RowsToWrite() {
    constexpr auto isWritten = [](const SettingRow& row) {
        return KindOf(row) == kind && row.writeRank != kOnlyBySetter;
    };
    constexpr auto count = std::count_if(std::begin(kSettingRows), std::end(kSettingRows), isWritten);
    std::array<std::size_t, static_cast<std::size_t>(count)> places{};
    places.fill(std::size(kSettingRows));
    for (std::size_t place = 0; place < std::size(kSettingRows); ++place) {
        const SettingRow& row = kSettingRows[place];
        if (isWritten(row)) places.at(static_cast<std::size_t>(row.writeRank - 1)) = place;
    }
    return places;
}

template <SettingKind kind>
constexpr bool WriteRanksAreWhole() {
    const auto places = RowsToWrite<kind>();
    return std::find(places.begin(), places.end(), std::size(kSettingRows)) == places.end();
}
static_assert(WriteRanksAreWhole<SettingKind::Number>() && WriteRanksAreWhole<SettingKind::Binary>() &&
              WriteRanksAreWhole<SettingKind::Text>());

consteval const SettingRow& RowNamed(std::string_view name) {
    std::size_t place = 0;
    while (kSettingRows[place].name != name) ++place;  // past the end is no constant and doesn't compile
    return kSettingRows[place];
}

// The stored number as a setting takes it.
constexpr i32 NumberByRule(ReadRule rule, i32 stored) {
    switch (rule) {
        case ReadRule::ExactlyOne:
            return stored == 1;
        case ReadRule::AnyNonZero:
            return stored != 0;
        case ReadRule::AsStored:
            break;
        case ReadRule::NotNegative:
            return stored < 0 ? 0 : stored;
        case ReadRule::HostFilterBits:
            return stored < 0 || stored > 7 ? 7 : stored;
        case ReadRule::AtLeastOne:
            return stored < 1 ? 1 : stored;
    }
    return stored;
}

}  // namespace vardel

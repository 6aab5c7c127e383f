// VardelSettings: all user configuration of the program, and its reading and writing in the settings store.
//
// One live instance, a member of VardelData, read by every thread; the settings dialog edits a second one and
// moves it over with AssignSettings. Fields bear the names of their registry values. Flags and numbers are
// single-word atomics, texts indivisible, tables replaced whole: no thread ever sees a half-filled one.
// Reading and writing run on the main thread.
#pragma once

#include <map>
#include <vector>

#include "foundation/GuardedRecord.h"
#include "foundation/GuardedValue.h"
#include "foundation/Shared.h"
#include "foundation/SharedMap.h"
#include "foundation/TcString.h"
#include "settings/ListRecords.h"

namespace vardel {

struct ViewRectangle {
    i32 left, top, right, bottom;
};
static_assert(sizeof(ViewRectangle) == 16);

// Tables keyed by IP text (plugins: by id) that own their records.
using ListedHostTable = SharedMap<GuardedRecord<ListedHost>, Ownership::OwnsValues>;
using WatchedHostTable = SharedMap<GuardedRecord<WatchedHost>, Ownership::OwnsValues>;
using PluginStateTable = SharedMap<GuardedRecord<PluginEntry>, Ownership::OwnsValues>;

// The host view's columns in force: without WMI there is nothing for the last one. The mask is decimal, but its
// units digit is also bit 0.
i32 ColumnsWithWmi(i32 columns, bool useWmi);

class VardelSettings {
  public:
    VardelSettings();
    VardelSettings(const VardelSettings&) = delete;
    VardelSettings& operator=(const VardelSettings&) = delete;

    bool ReadSettings();
    bool WriteSettings();
    // Deep copy of `source` onto this instance; null changes nothing and gives false.
    bool AssignSettings(const VardelSettings* source);

    bool WriteSavedViewWindowDimension();
    bool WriteLanguage();
    bool WriteViewFilterOptions();
    bool WriteLastUpdateTime();
    bool WriteMACListVersion(u32 version);

    bool WriteWatchedHosts();
    bool WriteTrustedHosts();
    bool WriteDistrustedHosts();

    TcString Interface;
    Shared<u8> AutoCapture;
    Shared<u8> AutoStart;
    Shared<u8> UseToolTips;
    Shared<u8> Visualization;
    Shared<u8> NotifyTrusted;
    Shared<u8> MACSpoofingVisualization;
    Shared<u8> MACSpoofingVisualizationStyle;
    Shared<i32> VisibleColumns;  // decimal digit mask
    Shared<u8> SaveColumnWidth;
    Shared<u8> SaveViewWindow;
    GuardedRecord<ViewRectangle> SavedViewWindowDimension;
    Shared<u8> RAIgnoreLocalhost;
    Shared<u8> RAIgnoreTrustedHosts;
    Shared<u8> RAIgnoreIPCNoUsername;
    Shared<u8> RAVisualization;
    Shared<u8> RAVisualizationType;
    Shared<u8> DeleteARPCache;
    Shared<u8> GreyedOutOldEntries;
    Shared<u8> UseWMI;
    Shared<u8> UpdateCheck;
    Shared<i64> LastUpdateTime;  // seconds since 1970
    Shared<u8> ShareSearch;
    Shared<u8> ShareVisualization;
    Shared<u8> ShareUseToolTips;
    TcString TrustedApp;
    TcString TrustedAppParams;
    TcString OtherApp;
    TcString OtherAppParams;
    Shared<u8> OtherAppDistrusted;
    Shared<u8> OtherAppUnknown;
    TcString Language;
    PluginStateTable pluginStates;
    GuardedValue<std::vector<ApplicationEntry>> applications;
    ListedHostTable trustedHosts;
    ListedHostTable distrustedHosts;
    WatchedHostTable watchedHosts;
    Shared<u32> WatchInterval;  // seconds
    Shared<u8> WatchConfirm;
    Shared<u8> WatchVisualization;
    Shared<i32> ViewFilterOptions;
    GuardedValue<std::map<i32, AdminAccount>> accounts;
    Shared<u32> ReportInterval;  // minutes
    Shared<u32> ReportOptions;
    TcString ReportPath;
    TcString ReportTemplate;
    Shared<u8> UsingEventLog;
    Shared<u8> EventLogSave;
    Shared<i32> MaxEventLogFileSize;  // KB, 0 none
    Shared<u8> Syslog;
    Shared<u32> SyslogMaxEntries;
    Shared<u8> SyslogNotification;
    Shared<u32> SyslogNotificationLevel;
    Shared<u32> SyslogNotificationType;
    Shared<i32> SyslogNotificationFacility;
    TcString SyslogNotificationWords;
    Shared<u8> ViewHideSecure;
    Shared<u8> ViewOfflineRed;
    Shared<u32> ViewGrayTime;  // minutes
    Shared<i32> MACListVersion;
};

}  // namespace vardel

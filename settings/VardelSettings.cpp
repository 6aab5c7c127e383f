#include "settings/VardelSettings.h"

#include <string>

#include "foundation/TcRegistry.h"
#include "settings/SettingsKeys.h"
#include "settings/SettingsLists.h"
#include "settings/SettingsTable.h"

namespace vardel {

namespace {

// One buffer for all texts, as long as the longest text that is kept, with its terminator.
struct TextBuffer {
    char text[300] = {};
};

class RowReader {
  public:
    RowReader(VardelSettings& settings, RegistryHandle key) : settings_(settings), key_(key) {}

    void Read(const SettingRow& row) {
        row_ = &row;
        std::visit(*this, row.field);
    }

    template <class T>
    void operator()(Shared<T> VardelSettings::*field) {
        settings_.*field = static_cast<T>(NumberByRule(row_->rule, registry_.RegQueryDword(key_, Name())));
    }
    void operator()(Shared<i64> VardelSettings::*field) {
        settings_.*field = IsRead() ? registry_.RegQueryQword(key_, Name()) : 0;
    }
    void operator()(GuardedRecord<ViewRectangle> VardelSettings::*field) {
        if (!IsRead()) return;  // the rectangle stays as it is
        ViewRectangle rectangle = (settings_.*field).Read();
        u32 size = sizeof rectangle;
        ValueType type;
        if (UserSettingsStore().Query(key_, Name(), type, &rectangle, size) != StoreResult::Ok)
            rectangle = {};
        (settings_.*field).Write(rectangle);
    }
    void operator()(TcString VardelSettings::*field) {
        registry_.RegQuerySZ(key_, Name(), buffer_.text, sizeof buffer_.text);
        settings_.*field = buffer_.text;
    }

  private:
    const char* Name() const { return row_->name.data(); }
    bool IsRead() const { return !row_->onlyWhile || settings_.*row_->onlyWhile; }

    VardelSettings& settings_;
    const RegistryHandle key_;
    const SettingRow* row_ = nullptr;
    TcRegistry registry_;
    TextBuffer buffer_;
};

class RowWriter {
  public:
    RowWriter(const VardelSettings& settings, RegistryHandle key) : settings_(settings), key_(key) {}

    void Write(const SettingRow& row) {
        row_ = &row;
        std::visit(*this, row.field);
    }

    template <class T>
    void operator()(Shared<T> VardelSettings::*field) {
        registry_.RegSetDword(key_, Name(), static_cast<i32>((settings_.*field).Get()));
    }
    void operator()(Shared<i64> VardelSettings::*field) {
        registry_.RegSetQword(key_, Name(), settings_.*field);
    }
    void operator()(GuardedRecord<ViewRectangle> VardelSettings::*field) {
        const ViewRectangle rectangle = (settings_.*field).Read();
        UserSettingsStore().Set(key_, Name(), ValueType::Binary, &rectangle, sizeof rectangle);
    }
    void operator()(TcString VardelSettings::*field) {
        const TcString text(settings_.*field);
        registry_.RegSetSZ(key_, Name(), text.GetContent());
    }

  private:
    const char* Name() const { return row_->name.data(); }

    const VardelSettings& settings_;
    const RegistryHandle key_;
    const SettingRow* row_ = nullptr;
    TcRegistry registry_;
};

template <SettingKind kind>
void WriteRows(RowWriter& writer) {
    for (const std::size_t place : RowsToWrite<kind>()) writer.Write(kSettingRows[place]);
}

enum class Reached { Yes, NoProductKey, NoSettingsKey, NotOpened };

// Opens the key of the single values, making it where it is missing.
Reached ReachSettingsKey(RegistryHandle& key) {
    TcRegistry registry;
    key = registry.OpenRegKey(UserSoftwareTree(), kSettingsKey);
    if (key) return Reached::Yes;
    const RegistryHandle product = registry.CreateKey(UserSoftwareTree(), kProductKey);
    if (!product) return Reached::NoProductKey;
    const RegistryHandle made = registry.CreateKey(product, kSettingsName);
    registry.CloseRegistryKey(made);
    registry.CloseRegistryKey(product);
    if (!made) return Reached::NoSettingsKey;
    key = registry.OpenRegKey(UserSoftwareTree(), kSettingsKey);
    return key ? Reached::Yes : Reached::NotOpened;
}

// `write(key)` with the key of the single values. False when that could not be reached.
template <class Write>
bool WithSettingsKey(Write write) {
    StoreBatch batch(UserSettingsStore());
    RegistryHandle key = nullptr;
    if (ReachSettingsKey(key) != Reached::Yes) return false;
    write(key);
    TcRegistry().CloseRegistryKey(key);
    return true;
}

bool WriteOne(const VardelSettings& settings, const SettingRow& row) {
    return WithSettingsKey([&](RegistryHandle key) { RowWriter(settings, key).Write(row); });
}

void WriteValues(const VardelSettings& settings, RegistryHandle key) {
    TcRegistry registry;
    RowWriter writer(settings, key);
    WriteRows<SettingKind::Number>(writer);
    WriteRows<SettingKind::Binary>(writer);
    if (settings.AutoStart)
        registry.SetRegAutostartU(kAutostartName);
    else
        registry.DeleteRegAutostartU(kAutostartName);
    WriteRows<SettingKind::Text>(writer);
    registry.CloseRegistryKey(key);
}

// Rules between values, for what was read and for what is copied.
void Normalise(VardelSettings& settings) {
    settings.VisibleColumns = ColumnsWithWmi(settings.VisibleColumns, settings.UseWMI);
    if (settings.TrustedApp.IsEmpty()) settings.TrustedAppParams.Clear();
    if (settings.OtherApp.IsEmpty()) {
        settings.OtherAppParams.Clear();
        settings.OtherAppDistrusted = 0;
        settings.OtherAppUnknown = 0;
    }
}

void CopyValues(VardelSettings& target, const VardelSettings& source) {
    for (const SettingRow& row : kSettingRows) {
        if (!row.assigned) continue;
        std::visit(
            [&]<class T>(T VardelSettings::*field) {
                if constexpr (std::is_same_v<T, GuardedRecord<ViewRectangle>>)
                    (target.*field).Write((source.*field).Read());
                else
                    target.*field = source.*field;
            },
            row.field);
    }
}

}  // namespace

i32 ColumnsWithWmi(i32 columns, bool useWmi) {
    return useWmi ? columns : columns & ~1;
}

VardelSettings::VardelSettings()
    : Visualization(1),
      MACSpoofingVisualizationStyle(1),
      WatchInterval(60),
      WatchConfirm(1),
      WatchVisualization(1),
      ViewFilterOptions(7),
      ReportInterval(300),
      ViewGrayTime(240),
      MACListVersion(1) {}

bool VardelSettings::ReadSettings() {
    TcRegistry registry;
    if (const RegistryHandle key = registry.OpenRegKey(UserSoftwareTree(), kSettingsKey)) {
        RowReader reader(*this, key);
        for (const SettingRow& row : kSettingRows) reader.Read(row);
        if (OtherAppUnknown) OtherAppDistrusted = 0;
        Normalise(*this);
        registry.CloseRegistryKey(key);
    }
    ReadLists(*this);
    return true;
}

bool VardelSettings::WriteSettings() {
    StoreBatch batch(UserSettingsStore());
    RegistryHandle key = nullptr;
    const Reached reached = ReachSettingsKey(key);
    if (reached == Reached::NoSettingsKey) return false;
    if (reached == Reached::Yes) WriteValues(*this, key);
    WriteLists(*this);
    return true;
}

bool VardelSettings::AssignSettings(const VardelSettings* source) {
    if (!source) return false;
    // The rules are applied aside, so that no thread sees a value that they take back.
    VardelSettings staged;
    CopyValues(staged, *source);
    Normalise(staged);
    CopyValues(*this, staged);
    AssignLists(*this, *source);
    return true;
}

bool VardelSettings::WriteSavedViewWindowDimension() {
    return WriteOne(*this, RowNamed("SavedViewWindowDimension"));
}

bool VardelSettings::WriteLanguage() {
    return WriteOne(*this, RowNamed("Language"));
}

bool VardelSettings::WriteViewFilterOptions() {
    return WriteOne(*this, RowNamed("ViewFilterOptions"));
}

bool VardelSettings::WriteLastUpdateTime() {
    return WriteOne(*this, RowNamed("LastUpdateTime"));
}

bool VardelSettings::WriteMACListVersion(u32 version) {
    return WithSettingsKey([&](RegistryHandle key) {
        TcRegistry().RegSetDword(key, "MACListVersion", static_cast<i32>(version));
    });
}

bool VardelSettings::WriteWatchedHosts() {
    StoreBatch batch(UserSettingsStore());
    WriteWatchedHostList(*this);
    return true;
}

bool VardelSettings::WriteTrustedHosts() {
    StoreBatch batch(UserSettingsStore());
    WriteTrustedHostList(*this);
    return true;
}

bool VardelSettings::WriteDistrustedHosts() {
    StoreBatch batch(UserSettingsStore());
    WriteDistrustedHostList(*this);
    return true;
}

}  // namespace vardel

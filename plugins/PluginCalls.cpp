#include "plugins/PluginCalls.h"

#include <cstring>

namespace vardel {

namespace {

constexpr i32 kLastColumn = 99;

// Puts a value in place for the length of a call. What stood there comes back: a call may stand inside
// another, when a plugin's own window lets the list behind it be painted.
template <class T>
class DuringCall {
  public:
    DuringCall(T& field, T value) : field_(field), before_(field) { field_ = value; }
    ~DuringCall() { field_ = before_; }
    DuringCall(const DuringCall&) = delete;
    DuringCall& operator=(const DuringCall&) = delete;

  private:
    T& field_;
    const T before_;
};

class DataDuringCall {
  public:
    DataDuringCall(PluginInfo& block, void* data) : data_(block.data, data), count_(block.dataCount, 1) {}

  private:
    DuringCall<void*> data_;
    DuringCall<uint32_t> count_;
};

// The entry point's result; 0 when an exception left it.
u32 Guarded(PluginEntryPoint entryPoint, PluginInfo* block) {
    try {
        return entryPoint(block);
    } catch (...) {
        return 0;
    }
}

bool CallWithWindow(LoadedPlugin& plugin, PluginEntryPoint entryPoint, void* window) {
    const GatePass inside(plugin.gate);
    if (!inside || !entryPoint) return false;
    const DuringCall<void*> shown(plugin.own->window, window);
    Guarded(entryPoint, plugin.own);
    return true;
}

// `Run` with `data` in place. False when there was no call.
bool RunWith(LoadedPlugin& plugin, void* data, u32* result = nullptr) {
    const GatePass inside(plugin.gate);
    if (!inside || !plugin.info.Run) return false;
    const DataDuringCall given(*plugin.own, data);
    const u32 told = Guarded(plugin.info.Run, plugin.own);
    if (result) *result = told;
    return true;
}

// A plugin's text ends with its field at the latest.
template <std::size_t size>
std::string FieldText(const char (&field)[size]) {
    return {field, strnlen(field, size)};
}

template <std::size_t size>
void FillField(char (&field)[size], const TcString& text) {
    const TcString own(text);  // another thread may be replacing it
    own.GetLeft(field, size, size - 1);
}

PluginColumnCall ColumnCall(u32 command, i32 column) {
    PluginColumnCall call{};
    call.command = command;
    call.column = column;
    return call;
}

}  // namespace

void InitPlugin(LoadedPlugin& plugin) {
    if (plugin.info.Init) Guarded(plugin.info.Init, plugin.own);
}

void ExitPlugin(LoadedPlugin& plugin) {
    if (plugin.info.Exit) Guarded(plugin.info.Exit, plugin.own);
}

bool ConfigurePlugin(LoadedPlugin& plugin, void* window) {
    return CallWithWindow(plugin, plugin.info.Configure, window);
}

bool AboutPlugin(LoadedPlugin& plugin, void* window) {
    return CallWithWindow(plugin, plugin.info.About, window);
}

PluginHostText HostText(const TcString& ip, const TcString& mac, const TcString& hostName) {
    PluginHostText host{};
    FillField(host.ip, ip);
    FillField(host.mac, mac);
    FillField(host.hostName, hostName);
    return host;
}

bool RunPluginOnHost(LoadedPlugin& plugin, void* window, const PluginHostText& host) {
    PluginHostText texts = host;
    PluginColumnCall call = ColumnCall(PLUGIN_COLUMN_MENU, 0);
    call.host = &texts;
    void* data = nullptr;
    if (plugin.info.type == PLUGIN_TYPE_VIEW) data = &texts;
    if (plugin.info.type == PLUGIN_TYPE_COLUMNS) data = &call;
    const GatePass inside(plugin.gate);
    if (!inside || !data) return false;
    const DuringCall<void*> shown(plugin.own->window, window);
    return RunWith(plugin, data);
}

// Wanted: a plugin that never gives its title is asked for ever, and what it leaves in the block stays from
// call to call.
std::vector<PluginColumn> DefinePluginColumns(LoadedPlugin& plugin) {
    std::vector<PluginColumn> columns;
    if (plugin.info.type != PLUGIN_TYPE_COLUMNS) return columns;
    PluginColumnCall call = ColumnCall(PLUGIN_COLUMN_DEFINE, 0);
    for (u32 result = 0; RunWith(plugin, &call, &result) && result != 0; result = 0) {
        const std::string title = FieldText(call.text);
        if (title.empty()) continue;
        columns.push_back({title, call.format, call.width, call.column});
        if (call.column >= kLastColumn) break;
        ++call.column;
        if (call.more == 0 || call.column == kLastColumn) break;
    }
    return columns;
}

std::string PluginCellText(LoadedPlugin& plugin, i32 column, const PluginHostText& host) {
    if (plugin.info.type != PLUGIN_TYPE_COLUMNS) return {};
    PluginHostText texts = host;
    PluginColumnCall call = ColumnCall(PLUGIN_COLUMN_TEXT, column);
    call.host = &texts;
    RunWith(plugin, &call);
    return FieldText(call.text);
}

i32 ComparePluginHosts(LoadedPlugin& plugin, i32 column, u16 flags, const PluginHostText& first,
                       const PluginHostText& second) {
    if (plugin.info.type != PLUGIN_TYPE_COLUMNS) return 0;
    PluginColumnCall call = ColumnCall(PLUGIN_COLUMN_COMPARE, 0);
    call.firstHost = &first;
    call.secondHost = &second;
    call.order = static_cast<i32>(static_cast<u32>(flags) << 16 | (static_cast<u32>(column) & 0xffff));
    return RunWith(plugin, &call) ? call.order : 0;
}

bool NotifyPlugin(LoadedPlugin& plugin, PluginNotifyItem& item) {
    const GatePass inside(plugin.gate);
    if (!inside || !plugin.info.Run || plugin.info.type != PLUGIN_TYPE_NOTIFY) return false;
    plugin.own->data = &item;
    plugin.own->dataCount = 1;
    Guarded(plugin.info.Run, plugin.own);
    return true;
}

}  // namespace vardel

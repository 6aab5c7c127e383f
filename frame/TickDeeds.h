// TickDeeds: what the periodic tick has others do. Plugins are told, applications started, hosts probed, reports
// written.
//
// The tick decides when and with what; main thread. EngineDeeds is the program's own.
#pragma once

#include "capture/NotifyPopup.h"
#include "capture/VardelData.h"
#include "plugins/plugin_interface.h"

namespace vardel {

// What plugins are told of, and by which list.
enum PluginNotify : u32 {
    kNotifyNewHosts = PLUGIN_NOTIFY_NEW_HOSTS,
    kNotifyNewShares = PLUGIN_NOTIFY_NEW_SHARES,
    kNotifyShareAccesses = PLUGIN_NOTIFY_ACCESSES,
    kNotifyMacSpoofs = PLUGIN_NOTIFY_SPOOFS,
    kNotifyHostCount = PLUGIN_NOTIFY_HOST_COUNT
};

class TickDeeds {
  public:
    virtual ~TickDeeds() = default;

    // Packs what waits before `mark` in the list that belongs to `kind` (PluginNotify) and queues it; a host count has
    // no list. The list itself stays as it is.
    virtual void QueuePluginNotify(u32 kind, i64 mark) = 0;

    // Starts `file` for `host`, the tags of `parameters` expanded. Failures are silent.
    virtual void StartApplication(const TcString& file, const TcString& parameters, const HostRecord& host) = 0;

    // Probes each watched host and tells of changes on `popup`, which may be null, in texts of that language's module.
    virtual void CheckWatchedHosts(NotifyPopup* popup, ModuleHandle language) = 0;

    virtual void WriteReport() = 0;
};

}  // namespace vardel

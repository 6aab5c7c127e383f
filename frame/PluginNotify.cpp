#include "frame/PluginNotify.h"

#include "plugins/PluginNotifyQueue.h"

namespace vardel {

namespace {

void Fill(PluginNotifyHost& record, const HostRecord& host) {
    FillPluginText(record.ip, host.ip);
    FillPluginText(record.mac, host.mac);
    FillPluginText(record.hostName, host.hostName);
    record.trustState = static_cast<u32>(host.trustState.Get());
}

// The third text is left as it is, empty.
void Fill(PluginNotifyShare& record, const NetShare& share) {
    FillPluginText(record.ip, share.ip);
    FillPluginText(record.hostName, share.hostName);
    FillPluginText(record.name, share.name);
    record.type = static_cast<u32>(share.type);
}

void Fill(PluginNotifyAccess& record, const RemoteAccess& access) {
    FillPluginText(record.computer, access.computer);
    FillPluginText(record.user, access.user);
    FillPluginText(record.share, access.share);
}

template <class Record, class List>
PluginItem Pack(u32 kind, const List& list, i64 mark) {
    u32 count = 0;
    list.ForEach(mark, [&](const auto*) { return ++count, true; });
    PluginItem item = MakePluginItem(kind, count);
    if (!item) return item;
    auto records = PluginRecords<Record>(*item);
    std::size_t next = 0;
    list.ForEach(mark, [&](const auto* entry) {
        if (next < records.size()) Fill(records[next++], *entry);
        return true;
    });
    return item;
}

PluginItem MakeItem(const VardelData& data, u32 kind, i64 mark) {
    switch (kind) {
        case PLUGIN_NOTIFY_NEW_HOSTS: return Pack<PluginNotifyHost>(kind, data.newEntries, mark);
        case PLUGIN_NOTIFY_SPOOFS: return Pack<PluginNotifyHost>(kind, data.macSpoofs, mark);
        case PLUGIN_NOTIFY_NEW_SHARES: return Pack<PluginNotifyShare>(kind, data.newShares, mark);
        case PLUGIN_NOTIFY_ACCESSES: return Pack<PluginNotifyAccess>(kind, data.shareAccesses, mark);
        case PLUGIN_NOTIFY_HOST_COUNT: return MakePluginItem(kind, data.arpMap.Count());
        default: return nullptr;
    }
}

}  // namespace

bool QueuePluginNotify(VardelData* data, u32 kind, i64 mark) {
    if (!data) return false;
    if (!data->plugins.FirstActivePlugin(PLUGIN_TYPE_NOTIFY)) return true;
    data->fences.WaitToFeed(Fence::Notify);
    FenceTaken inside(data->fences, Fence::Notify);
    data->notifyQueue.Queue(MakeItem(*data, kind, mark));
    return true;
}

}  // namespace vardel

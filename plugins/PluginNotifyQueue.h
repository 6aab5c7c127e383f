// Notifications on their way to the plugins: how an item is made, and the queue in which it waits for the
// notifier.
//
// The tick makes and queues items on the main thread, the notifier takes them by the batch on its own. The
// queue owns the items; their records lie in the same block of memory.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "foundation/Shared.h"
#include "foundation/SharedOrderedMap.h"
#include "foundation/TcString.h"
#include "plugins/plugin_interface.h"

namespace vardel {

// Records of more than this count as a failed allocation, and so does an item that would take the queue past
// its limit.
constexpr u64 kLargestPluginItem = 64 * 1024 * 1024;         // bytes
constexpr u64 kLargestPluginQueue = 4 * kLargestPluginItem;  // bytes

struct FreePluginItem {
    void operator()(PluginNotifyItem* item) const;
};
using PluginItem = std::unique_ptr<PluginNotifyItem, FreePluginItem>;

// Bytes of one record; 0 for a kind that has none or isn't known.
std::size_t PluginRecordSize(u32 kind);

// An item with `count` records, all zero, to be filled in place. Null for an unknown kind, for no records of
// a kind that has them, and when the memory can't be had. For PLUGIN_NOTIFY_HOST_COUNT `count` is the number
// told.
PluginItem MakePluginItem(u32 kind, u32 count);

// The records of an item of that kind: PluginNotifyHost, PluginNotifyShare or PluginNotifyAccess.
template <class Record>
std::span<Record> PluginRecords(PluginNotifyItem& item) {
    return {static_cast<Record*>(item.records), item.records ? item.count : 0};
}

// Fills a record's text field, cut to what it holds and terminated. An empty text leaves it as it is. Any
// thread may be replacing `text`.
void FillPluginText(char (&field)[PLUGIN_TEXT_SIZE], const TcString& text);

class PluginNotifyQueue {
  public:
    struct Waiting {
        i32 key;
        PluginNotifyItem* item;
    };

    PluginNotifyQueue() = default;
    ~PluginNotifyQueue() { Free(Batch()); }
    PluginNotifyQueue(const PluginNotifyQueue&) = delete;
    PluginNotifyQueue& operator=(const PluginNotifyQueue&) = delete;

    // False when the item was dropped: it is null, or the queue holds too much. Any thread.
    bool Queue(PluginItem item);

    bool IsEmpty() const { return items_.IsEmpty(); }
    u32 Count() const { return items_.Count(); }

    // What waits now, in the order of queueing. It stays in the queue until it is freed; one thread at a time
    // may use batches.
    std::vector<Waiting> Batch() const;
    void Free(const std::vector<Waiting>& batch);

  private:
    SharedOrderedMap<PluginNotifyItem> items_;
    Shared<u64> bytes_;  // of all items
};

}  // namespace vardel

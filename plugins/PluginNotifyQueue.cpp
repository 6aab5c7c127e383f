#include "plugins/PluginNotifyQueue.h"

#include <cstdlib>
#include <new>

namespace vardel {

namespace {

struct RecordRow {
    u32 kind;
    std::size_t size;  // bytes of a record
};

constexpr RecordRow kRecords[] = {{PLUGIN_NOTIFY_NEW_HOSTS, sizeof(PluginNotifyHost)},
                                  {PLUGIN_NOTIFY_NEW_SHARES, sizeof(PluginNotifyShare)},
                                  {PLUGIN_NOTIFY_ACCESSES, sizeof(PluginNotifyAccess)},
                                  {PLUGIN_NOTIFY_SPOOFS, sizeof(PluginNotifyHost)}};

// An item in its memory, with the records behind it. The size stands outside of what plugins are handed.
struct ItemBlock {
    u64 bytes;  // of the whole
    PluginNotifyItem item;
};
static_assert(alignof(ItemBlock) >= alignof(PluginNotifyHost));

ItemBlock* BlockOf(PluginNotifyItem* item) {
    return reinterpret_cast<ItemBlock*>(reinterpret_cast<char*>(item) - offsetof(ItemBlock, item));
}

}  // namespace

void FreePluginItem::operator()(PluginNotifyItem* item) const {
    std::free(BlockOf(item));
}

std::size_t PluginRecordSize(u32 kind) {
    for (const RecordRow& row : kRecords)
        if (row.kind == kind) return row.size;
    return 0;
}

PluginItem MakePluginItem(u32 kind, u32 count) {
    const u64 recordBytes = u64{count} * PluginRecordSize(kind);
    const bool hasRecords = recordBytes != 0;
    if (hasRecords == (kind == PLUGIN_NOTIFY_HOST_COUNT) || recordBytes > kLargestPluginItem) return nullptr;
    const u64 bytes = sizeof(ItemBlock) + recordBytes;
    auto* block = static_cast<ItemBlock*>(std::calloc(1, static_cast<std::size_t>(bytes)));
    if (!block) return nullptr;
    block->bytes = bytes;
    block->item.kind = kind;
    block->item.count = count;
    if (hasRecords) block->item.records = block + 1;
    return PluginItem(&block->item);
}

void FillPluginText(char (&field)[PLUGIN_TEXT_SIZE], const TcString& text) {
    const TcString own(text);
    if (!own.IsEmpty()) own.GetLeft(field, sizeof field, sizeof field - 1);
}

bool PluginNotifyQueue::Queue(PluginItem item) {
    if (!item) return false;
    const u64 bytes = BlockOf(item.get())->bytes;
    if (bytes_ + bytes > kLargestPluginQueue) return false;
    try {
        items_.Append(item.get());
    } catch (const std::bad_alloc&) {
        return false;
    }
    item.release();
    bytes_.Increment(bytes);
    return true;
}

std::vector<PluginNotifyQueue::Waiting> PluginNotifyQueue::Batch() const {
    std::vector<Waiting> batch;
    items_.ForEach([&](i32 key, PluginNotifyItem* item) { batch.push_back({key, item}); });
    return batch;
}

void PluginNotifyQueue::Free(const std::vector<Waiting>& batch) {
    for (const Waiting& waiting : batch) {
        PluginNotifyItem* item = nullptr;
        if (!items_.Erase(waiting.key, &item) || !item) continue;
        bytes_.Increment(0 - BlockOf(item)->bytes);
        FreePluginItem()(item);
    }
}

}  // namespace vardel

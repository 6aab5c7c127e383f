// Packing what the tick has to tell into items for the plugins, and queueing them. Main thread.
#pragma once

#include <limits>

#include "capture/VardelData.h"

namespace vardel {

constexpr i64 kWholeList = std::numeric_limits<i64>::max();

// Packs what waits before `mark` in the list of that kind (PLUGIN_NOTIFY_...; a host count has none) and queues it,
// under the queue's fence. Nothing is queued for an empty list, an unknown kind, where the memory can't be had, and at
// once when no plugin that is told of such things is switched on. The records are copies: the list may be cleared
// afterwards. False only without data.
bool QueuePluginNotify(VardelData* data, u32 kind, i64 mark = kWholeList);

}  // namespace vardel

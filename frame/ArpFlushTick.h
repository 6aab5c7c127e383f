// The ARP flush tick: empties the system's own ARP table, so that hosts are asked for again. Main thread.
#pragma once

#include "platform/ArpCache.h"

namespace vardel {

void RunArpFlushTick(ArpCache& cache);

}  // namespace vardel

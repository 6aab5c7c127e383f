#include "frame/ArpFlushTick.h"

namespace vardel {

// Interfaces are taken to be numbered from 1; a number that none has is refused by the system without harm.
void RunArpFlushTick(ArpCache& cache) {
    const u32 interfaces = cache.CountInterfaces();
    for (u32 index = 1; index <= interfaces; ++index) cache.FlushInterface(index);
}

}  // namespace vardel

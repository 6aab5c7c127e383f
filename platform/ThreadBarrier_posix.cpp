#include "platform/ThreadBarrier.h"

#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>

namespace vardel {

// Source: membarrier(2).
bool PrepareThreadBarrier() {
    // From Linux 4.14 on; a sandbox may refuse it.
    static const bool prepared = syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
    return prepared;
}

void PutThreadBarrier() {
    // Can't fail once the process is registered; going on without the barrier would free memory that is in use.
    if (syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0) != 0) std::abort();
}

}  // namespace vardel

#include "capture/HostRecord.h"

#include <new>

#include "foundation/SlabPool.h"

namespace vardel {

namespace {

// Never destroyed: records may be freed while the process ends.
SlabPool& HostPool() {
    static SlabPool* pool = new SlabPool(sizeof(HostRecord));
    return *pool;
}

}  // namespace

void* HostRecord::operator new(std::size_t) {
    return HostPool().Take();
}
void HostRecord::operator delete(void* record) noexcept {
    HostPool().Give(record);
}

}  // namespace vardel

#include "platform/LargePages.h"

#include <sys/mman.h>

namespace vardel {

void PreferLargePages(void* memory, std::size_t size) {
    madvise(memory, size, MADV_HUGEPAGE);
}

}  // namespace vardel

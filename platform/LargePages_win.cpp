#include "platform/LargePages.h"

namespace vardel {

void PreferLargePages(void*, std::size_t) {}

}  // namespace vardel

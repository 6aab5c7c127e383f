// Advice to the system's memory manager.
#pragma once

#include <cstddef>

namespace vardel {

// What the advice is given for starts and ends at a multiple of this.
constexpr std::size_t kLargePage = std::size_t{2} << 20;

// Asks for large pages behind memory that is used all over and in no order, so that its address is found in
// one step. Only advice: the memory is the same without. Linux marks it for transparent huge pages; Windows
// gives large pages to accounts with a right of their own alone, so there it does nothing.
void PreferLargePages(void* memory, std::size_t size);

}  // namespace vardel

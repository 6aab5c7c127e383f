// Memory that runs out, for a fuzz target that links FailingMemory.cpp: while the object stands, the
// allocation after the first `allowed` ones fails once, and all others are served. Of the calling thread
// alone.
//
// The target's own operator new stands in for the sanitizer's and takes the memory from malloc, so that the
// address sanitizer still watches every block. Allocations of over-aligned types never fail.
#pragma once

#include "platform/Types.h"

namespace vardel::test {

class FailingMemory {
  public:
    explicit FailingMemory(u32 allowed);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
};

}  // namespace vardel::test

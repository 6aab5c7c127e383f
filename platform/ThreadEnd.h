// What a thread leaves behind is cleared away when it ends, whichever library started it.
//
// Not left to destructors of thread_local objects: one of the compilers frees the memory of such objects before it
// calls their destructors.
#pragma once

namespace vardel {

// Calls `release(object)` when the calling thread ends, the last one asked for first. For the main thread that may
// never come. Throws std::bad_alloc, and std::system_error where the system has no place for it.
void AtThreadEnd(void (*release)(void* object), void* object);

}  // namespace vardel

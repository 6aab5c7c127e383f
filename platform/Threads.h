// Starting threads and waiting for their end. Nothing here ends a thread from outside: a thread that may hold
// memory or a guard is never terminated.
#pragma once

#include <span>

#include "platform/Types.h"

namespace vardel {

struct ThreadObject;
using ThreadHandle = ThreadObject*;

using ThreadFunction = void (*)(void* parameter);

class Threads {
  public:
    virtual ~Threads() = default;

    // Starts `function(parameter)` with the default stack, running at once. On success gives a handle, owned by
    // the caller and closed once, and an id other than 0. On failure gives false and leaves both null and 0.
    virtual bool Start(ThreadFunction function, void* parameter, ThreadHandle& handle, u32& id) = 0;

    // True when all threads of the list have ended within timeoutMs; null handles are left out.
    virtual bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) = 0;

    // Gives the handle up; a thread that still runs goes on running.
    virtual void Close(ThreadHandle handle) = 0;
};

Threads& SystemThreads();

}  // namespace vardel

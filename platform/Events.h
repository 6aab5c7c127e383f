// Named events: the waitables with which threads fence shared lists and sleep.
//
// A manual-reset event stays signalled until it is reset; an auto-reset event lets one wait pass and is reset by
// it. All operations may be called from any thread. An event handle is owned by who created it and is closed
// once; a wait on a null handle fails at once (which callers rely on before the events exist).
// On Windows these are the system's named events, shared by all processes of a session that use the same name.
// On Linux they belong to the process and the name only serves for tracing.
#pragma once

#include "platform/Types.h"

namespace vardel {

struct EventObject;
using EventHandle = EventObject*;

enum class WaitResult { Signalled, TimedOut, Failed };

class Events {
  public:
    virtual ~Events() = default;

    // Null on failure. `name` may be null for an unnamed event.
    virtual EventHandle Create(const char* name, bool manualReset, bool signalled) = 0;
    virtual void Close(EventHandle event) = 0;
    virtual bool Set(EventHandle event) = 0;
    virtual bool Reset(EventHandle event) = 0;

    // Waits at most timeoutMs milliseconds. Failed for a null handle.
    virtual WaitResult Wait(EventHandle event, u32 timeoutMs) = 0;

    // Waits until one of the two is signalled, at most timeoutMs. Null handles are left out; both null is Failed.
    virtual WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) = 0;
};

// The running system's events.
Events& SystemEvents();

}  // namespace vardel

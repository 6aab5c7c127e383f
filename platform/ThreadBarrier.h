// A memory barrier that one thread puts into all threads of the process, so that those who must be fast need none of
// their own: what they stored before it is visible after it, and what they load after it is as new as the caller's
// own view.
#pragma once

namespace vardel {

// Asks the system for it, once a process. False where it isn't to be had: every thread then needs barriers of its own,
// as ever. Any thread.
bool PrepareThreadBarrier();

// Only where PrepareThreadBarrier gave true. Some microseconds. Any thread.
void PutThreadBarrier();

}  // namespace vardel

// The window message loop that the system gives a thread.
#pragma once

namespace vardel {

// Dispatches the calling thread's window messages until the loop is asked to end (PostQuitMessage); true
// then. False when the loop broke, and at once on a system without window messages: a frame has a loop of its
// own there.
bool RunSystemMessageLoop();

}  // namespace vardel

// SIGINT and SIGTERM as an event: what asks a program without windows to leave.
//
// Linux only. Built on the main thread before any other thread exists, so that all threads inherit the blocked
// signals and only this object's own thread takes them.
#pragma once

#include <atomic>
#include <thread>

#include "platform/Events.h"

namespace vardel {

class LeaveSignals {
  public:
    // `leave` is set when one of the two arrives. Borrows both, which outlive this object.
    LeaveSignals(Events& events, EventHandle leave);
    // Ends the thread; the signals stay blocked, so that the end of the program is not cut short.
    ~LeaveSignals();
    LeaveSignals(const LeaveSignals&) = delete;
    LeaveSignals& operator=(const LeaveSignals&) = delete;

  private:
    std::atomic<bool> ending_{false};
    std::thread waiter_;
};

}  // namespace vardel

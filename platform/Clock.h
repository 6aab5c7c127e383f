// Time of day. Seconds are signed 64-bit and count from 1970-01-01 00:00:00 UTC.
#pragma once

#include "platform/Types.h"

namespace vardel {

class Clock {
  public:
    virtual ~Clock() = default;
    virtual i64 Now() = 0;
    // Milliseconds of a clock that never goes back, modulo 2^32 (some 49 days); on Windows since the system started.
    virtual u32 TickCount() = 0;
};

Clock& SystemClock();

// Local time of `seconds` as "%H:%M:%S": 8 characters and the terminator. A moment that the system's calendar
// can't express gives "00:00:00". Safe from any thread.
constexpr int kTimeOfDaySize = 9;
void FormatTimeOfDay(i64 seconds, char (&text)[kTimeOfDaySize]);

}  // namespace vardel

// The frame's timers: which there are, when each runs, and what a save of the settings changes about them.
//
// A frame gives its own kind of timers (a window's, a queue's); main thread. Starting a timer that runs begins it
// anew.
#pragma once

#include "platform/Types.h"

namespace vardel {

class Vardel;
class VardelData;

enum FrameTimer : u32 {
    kTrayTimer = 10000,
    kShareTimer = 10003,
    kArpFlushTimer = 10004,
    kWatchTimer = 10008,
    kReportTimer = 10009,
    kSyslogTimer = 10010
};

class FrameTimers {
  public:
    virtual ~FrameTimers() = default;
    // A period beyond what a frame's timers can count becomes their longest one, one below their shortest that one.
    virtual void Arm(u32 id, u64 periodMs) = 0;
    virtual void Kill(u32 id) = 0;
};

// When the frame has just been built: arms the timers as the settings say, then parses the notification words.
void ArmTimers(FrameTimers& timers, VardelData& data);

// After the settings dialog saved: takes over a changed interface, switches capture on where an interface is chosen,
// arms the timers anew, parses the notification words again, and starts or stops the event log's writer. True when
// it switched capture on, which a menu then shows.
bool ApplySavedSettings(FrameTimers& timers, VardelData& data, Vardel& app);

}  // namespace vardel

// The syslog tick: tells of waiting notifications, up to ten at a time, in the syslog popup. Main thread.
#pragma once

#include "frame/TickContext.h"

namespace vardel {

// While either the host popup or the syslog popup shows something or is missing, everything stays as it is.
void RunSyslogTick(const TickContext& tick);

}  // namespace vardel

// The one place where expired syslog messages are freed: run by the syslog view as it fills and refreshes, and every
// few seconds by a frame that has no such view.
#pragma once

#include "capture/VardelData.h"

namespace vardel {

// Takes the expired messages of all senders out and frees them, each sender's under its list's own guard. Gives how
// many. Any thread.
std::size_t PurgeExpiredSyslogs(VardelData& data);

}  // namespace vardel

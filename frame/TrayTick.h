// The tray tick, twice a second: the host count for the plugins, the tooltip, new hosts and the applications that
// they start, MAC spoofing.
//
// An alert is either shown and its list consumed, or consumed unseen, or, while the host popup shows another one, the
// whole list is kept for a later tick. Nothing is remembered between ticks. Main thread.
#pragma once

#include "frame/TickContext.h"

namespace vardel {

constexpr std::size_t kTooltipSize = 256;  // with the terminator

// The tray's tooltip: the product and how many hosts are known.
void FormTooltip(const VardelData& data, ModuleHandle language, char (&tip)[kTooltipSize]);

// With nothing new it allocates nothing (but for what the host count takes) and takes no fence.
void RunTrayTick(const TickContext& tick);

}  // namespace vardel

// The document that the replay prints: what the frames left behind in the shared state.
#pragma once

#include <string>

#include "capture/VardelData.h"
#include "tools/vardel_replay/Feeder.h"

namespace vardel::replay {

// `data` and the event map are read while no other thread works on them. With `quiet` only the frame counts
// and the handlers' time are told.
std::string FormReport(const VardelData& data, const FrameCounts& counts, double handlerSeconds, bool quiet);

}  // namespace vardel::replay

// RunReport: what a program tells of its run in plain text: events as they come, at the end the host table.
//
// Belongs to a frame and is used on the main thread alone. The output may be null: then nothing is written.
#pragma once

#include <cstdio>

#include "capture/EventMap.h"
#include "capture/VardelData.h"

namespace vardel {

class RunReport {
  public:
    explicit RunReport(std::FILE* output) : output_(output) {}

    // Every event posted since the last call, oldest first, one line each as in the event log.
    void PrintNewEvents(const VardelData& data);

    // The rest of the events, the host table, and as last line "N hosts, M events".
    void PrintEnd(const VardelData& data);

  private:
    std::FILE* const output_;
    i32 lastPrinted_ = 0;  // key of the last event that was printed
};

}  // namespace vardel

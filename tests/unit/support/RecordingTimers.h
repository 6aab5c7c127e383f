// Timers that only write down what is asked of them: "arm 10000 500", "kill 10004".
#pragma once

#include <string>
#include <vector>

#include "frame/FrameTimers.h"

namespace vardel::test {

class RecordingTimers : public FrameTimers {
  public:
    void Arm(u32 id, u64 periodMs) override {
        calls.push_back("arm " + std::to_string(id) + " " + std::to_string(periodMs));
    }
    void Kill(u32 id) override { calls.push_back("kill " + std::to_string(id)); }
    std::vector<std::string> calls;
};

}  // namespace vardel::test

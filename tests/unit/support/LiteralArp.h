// The handler of ARP and RARP frames, step by step.
#pragma once

#include "tests/unit/support/LiteralRecords.h"

namespace vardel::test {

class LiteralArp {
  public:
    void PacketReceived(i64 seconds, const FrameBytes* frame, LiteralState* state);

    u64 packetCount = 0;

  private:
    void Known(LiteralHost& h, i64 seconds, LiteralState& state);
    void New(i64 seconds, LiteralState& state);

    std::string timeText, macText, ipText;
};

}  // namespace vardel::test

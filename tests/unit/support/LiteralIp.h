// The handler of IP frames, step by step.
#pragma once

#include "tests/unit/support/LiteralRecords.h"

namespace vardel::test {

class LiteralIp {
  public:
    void PacketReceived(const FrameBytes* frame, LiteralState* state);

    u64 packetCount = 0;
    u64 announcements = 0;  // that passed all checks

  private:
    void Browse(const FrameBytes& frame, LiteralState& state);
    void Syslog(const FrameBytes& frame, LiteralState& state);
    void Ssdp(const FrameBytes& frame, LiteralState& state);
    void Device(const FrameBytes& frame, LiteralState& state);
};

}  // namespace vardel::test

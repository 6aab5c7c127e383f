// A UDP port of the loopback interface that a test listens on.
#pragma once

#include <cstdint>
#include <string>

namespace vardel::test {

class UdpReceiver {
  public:
    UdpReceiver();
    ~UdpReceiver();
    UdpReceiver(const UdpReceiver&) = delete;
    UdpReceiver& operator=(const UdpReceiver&) = delete;

    // The port, as text; empty when there is none to be had.
    std::string Port() const;
    // The next datagram, after at most five seconds; empty when none came.
    std::string Next() { return Next(5000); }
    // Whether nothing comes within a moment.
    bool IsSilent() { return Next(100).empty(); }

  private:
    std::string Next(int timeoutMs);

    std::intptr_t socket_;
};

}  // namespace vardel::test

// Sends datagrams to one address. An object of one thread at a time.
#pragma once

#include <cstdint>
#include <string>

namespace vardel::examples {

class UdpSender {
  public:
    UdpSender() = default;
    ~UdpSender();
    UdpSender(const UdpSender&) = delete;
    UdpSender& operator=(const UdpSender&) = delete;

    // `host` is a name or an address of either family; a name is looked up here, which may take its time.
    // False when it isn't known or there is no way to it.
    bool Open(const std::string& host, long port, bool broadcasts);
    bool IsOpen() const { return socket_ != kNone; }

    // False when the system refused it. Nobody tells whether it arrives.
    bool Send(const std::string& datagram);

  private:
    static constexpr std::intptr_t kNone = -1;
    void Close();

    std::intptr_t socket_ = kNone;
    bool networkStarted_ = false;
};

// The machine's own name; empty where the system has none.
std::string LocalHostName();

}  // namespace vardel::examples

// Raw ICMP sockets of a test: what is sent is written down, and what comes back is as the test says.
#pragma once

#include <functional>
#include <vector>

#include "platform/RawIcmp.h"

namespace vardel::test {

// Sockets in which nothing arrives unless the test says so.
class ScriptedRawIcmp : public RawIcmp {
  public:
    struct Sent {
        u32 address;  // network byte order
        std::vector<u8> message;
    };

    IcmpSocket Open() override {
        if (refuses) return kNoIcmpSocket;
        ++open;
        return ++opened;
    }
    void Close(IcmpSocket) override { --open; }
    void Send(IcmpSocket, u32 address, std::span<const u8> message) override {
        sent.push_back({address, {message.begin(), message.end()}});
        if (onSend) onSend(address);
    }
    IcmpWait Wait(IcmpSocket, u32 timeoutMs) override {
        waits.push_back(timeoutMs);
        return answer;
    }
    int Receive(IcmpSocket, std::span<u8> buffer) override {
        receiveSizes.push_back(buffer.size());
        return receiveResult;
    }
    bool refuses = false;
    IcmpWait answer = IcmpWait::TimedOut;
    int receiveResult = 68;  // bytes, or -1
    int open = 0;            // sockets not closed yet
    int opened = 0;
    std::vector<Sent> sent;
    std::vector<u32> waits;  // milliseconds
    std::vector<std::size_t> receiveSizes;
    std::function<void(u32 address)> onSend;  // where the answer is to depend on the host
};

}  // namespace vardel::test

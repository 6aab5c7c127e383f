// The system of a whole program under load: every answer is made up on the spot, at once, from any thread, and only
// counted. Stands in for the libraries that ThreadSanitizer can't see into; events, threads, strings, modules and
// the settings file are the system's own.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/Services.h"
#include "tests/unit/support/ForwardingEvents.h"

namespace vardel::test {

constexpr int kAddresses = 2'000;

inline std::string StressAddress(int n) {
    return "10.9." + std::to_string(n / 250) + "." + std::to_string(n % 250 + 1);
}

// The last octet of a dotted text, so that answers differ from host to host and stay the same for each.
inline int LastOctet(const std::string& address) {
    return std::atoi(address.c_str() + address.rfind('.') + 1);
}

// Sleeps of workers (a second and more, but less than the 30 s of a fence) take a hundredth of their time.
class HurriedEvents : public ForwardingEvents {
  public:
    static constexpr u32 kShortestSleepMs = 1'000;
    static constexpr u32 kFenceMs = 30'000;
    static constexpr u32 kHurry = 100;

    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        const bool isSleep = timeoutMs >= kShortestSleepMs && timeoutMs < kFenceMs;
        return SystemEvents().WaitEither(first, second, isSleep ? timeoutMs / kHurry : timeoutMs);
    }
};

class StressResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char*) override { return {}; }
    bool NameOfAddress(u32 address, u16, NameLookup, std::string& name) override {
        if (address >> 24 & 1) return false;  // half of the hosts have no name, until they announce one
        name = "host-" + std::to_string(address);
        return true;
    }
    bool HostByAddress(u32, std::string&) override { return false; }
    bool HostByName(const char*, u32& address) override {
        address = 0x0100090a;  // 10.9.0.1 in network byte order
        return true;
    }
};

class StressHttp : public Http {
  public:
    bool Fetch(const HttpRequest&, std::string& block) override {
        if (++fetches % 4 == 0) return false;
        block = "<root><friendlyName>Device " + std::to_string(fetches) + ": told</friendlyName></root>";
        return true;
    }
    std::atomic<int> fetches{0};
};

class StressShell : public Shell {
  public:
    std::vector<std::string> ParameterPieces(const std::string& parameters) override { return {parameters}; }
    bool Execute(ShellVerb, const std::string&, const std::vector<std::string>& pieces) override {
        if (pieces.size() != 1 || pieces[0].find('%') != std::string::npos) ++wrong;
        return ++launches % 2 == 0;
    }
    std::atomic<int> launches{0}, wrong{0};
};

// Hosts are there and away by turns.
class StressIcmp : public RawIcmp {
  public:
    IcmpSocket Open() override { return ++open; }
    void Close(IcmpSocket) override { --open; }
    void Send(IcmpSocket, u32, std::span<const u8> message) override { sent += message.size() == 48; }
    IcmpWait Wait(IcmpSocket, u32) override { return sent % 3 ? IcmpWait::Readable : IcmpWait::TimedOut; }
    int Receive(IcmpSocket, std::span<u8>) override { return 68; }
    std::atomic<int> open{0}, sent{0};
};

// Three shares at first, then one more with every scan; every tenth host refuses.
class StressShares : public ShareEnumeration {
  public:
    u32 Enumerate(const char* server, u32& resumeHandle, std::vector<ShareEntry>& entries) override {
        ++calls;
        if (LastOctet(server) % 10 == 0) return 5;
        const std::string serial = std::to_string(calls);
        for (const std::string& name : {std::string("IPC$"), std::string("Data"), "New " + serial})
            entries.push_back({.name = name, .remark = "remark", .path = "/srv"});
        return resumeHandle++ == 0 ? kMoreShares : kAllShares;
    }
    std::atomic<int> calls{0};
};

// A few of the clients at a time, known and unknown ones, by address and by name.
class StressConnections : public ServerConnections {
  public:
    bool EnterThread() override { return true; }
    void LeaveThread() override {}
    std::vector<ServerConnection> List() override {
        const int look = ++looks;
        std::vector<ServerConnection> rows;
        for (int n = look % 500; n < look % 500 + 4; ++n)
            rows.push_back({n % 5 ? StressAddress(n * 7) : "client" + std::to_string(n), "Data", "user", look});
        return rows;
    }
    std::atomic<int> looks{0};
};

class StressArpRequests : public ArpRequests {
  public:
    void Ask(const char*) override { ++asked; }
    std::atomic<int> asked{0};
};

class StressArpCache : public ArpCache {
  public:
    void Flush() override { ++flushes; }
    u32 CountInterfaces() override { return 2; }
    void FlushInterface(u32) override { ++flushes; }
    std::atomic<int> flushes{0};
};

// Each host answers, refuses or is away, by the last octet of its address.
class StressWmi : public WmiService {
  public:
    WmiResult EnterThread() override { return kWmiOk; }
    void LeaveThread() override {}
    WmiResult InitializeSecurity() override { return kWmiSecurityAlreadySet; }
    WmiResult CreateLocator(std::unique_ptr<WmiLocator>& locator) override {
        locator = std::make_unique<Locator>(*this);
        return kWmiOk;
    }
    std::unique_ptr<WmiIdentity> CreateIdentity(const WmiAccount&) override { return std::make_unique<WmiIdentity>(); }
    std::atomic<int> connects{0}, names{0};

  private:
    struct Object : WmiObject {
        WmiResult GetText(const char*, std::optional<std::string>& text) override {
            text = "Microsoft Windows XP Professional|C:\\WINDOWS|\\Device\\Harddisk0";
            return kWmiOk;
        }
        WmiResult GetNumber(const char*, std::optional<i32>&) override { return kWmiOk; }
    };
    struct Objects : WmiObjects {
        explicit Objects(StressWmi& owner) : wmi(owner) {}
        WmiResult SetBlanket(WmiAuthentication, const WmiIdentity*) override { return kWmiOk; }
        WmiResult Next(std::unique_ptr<WmiObject>& object) override {
            object.reset();
            if (given++ == 0) object = std::make_unique<Object>(), ++wmi.names;
            return kWmiOk;
        }
        StressWmi& wmi;
        int given = 0;
    };
    struct Connection : WmiNamespace {
        explicit Connection(StressWmi& owner) : wmi(owner) {}
        WmiResult SetBlanket(WmiAuthentication, const WmiIdentity*) override { return kWmiOk; }
        WmiResult Query(const char*, std::unique_ptr<WmiObjects>& objects) override {
            objects = std::make_unique<Objects>(wmi);
            return kWmiOk;
        }
        StressWmi& wmi;
    };
    struct Locator : WmiLocator {
        explicit Locator(StressWmi& owner) : wmi(owner) {}
        WmiResult Connect(const char* resource, const WmiAccount*, std::unique_ptr<WmiNamespace>& connection) override {
            constexpr WmiResult kResults[] = {kWmiOk, kWmiServerUnavailable, kWmiOk, kWmiAccessDenied, -1};
            const WmiResult result = kResults[static_cast<std::size_t>(++wmi.connects + LastOctet(resource)) % 5];
            if (result == kWmiOk) connection = std::make_unique<Connection>(wmi);
            return result;
        }
        StressWmi& wmi;
    };
};

}  // namespace vardel::test

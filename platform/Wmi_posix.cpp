// No machine can be asked: the protocol (DCOM) has no library here that could be relied on. Each attempt is answered
// as Windows answers for a host whose service doesn't listen, so what follows from that follows here too.
#include "platform/Wmi.h"

namespace vardel {

namespace {

class UnreachableLocator : public WmiLocator {
  public:
    WmiResult Connect(const char*, const WmiAccount*, std::unique_ptr<WmiNamespace>& connection) override {
        connection.reset();
        return kWmiServerUnavailable;
    }
};

class PosixWmi : public WmiService {
  public:
    WmiResult EnterThread() override { return kWmiOk; }
    void LeaveThread() override {}
    WmiResult InitializeSecurity() override { return kWmiOk; }
    WmiResult CreateLocator(std::unique_ptr<WmiLocator>& locator) override {
        locator = std::make_unique<UnreachableLocator>();
        return kWmiOk;
    }
    std::unique_ptr<WmiIdentity> CreateIdentity(const WmiAccount&) override {
        return std::make_unique<WmiIdentity>();
    }
};

}  // namespace

WmiService& SystemWmi() {
    static PosixWmi wmi;
    return wmi;
}

}  // namespace vardel

// A table of hosts, watched hosts and share accesses for report tests.
#pragma once

#include <cstring>
#include <memory>
#include <string>

#include "capture/VardelData.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

struct ReportHost {
    std::string name{}, ip{}, mac{}, os{}, vendor{};
    u32 trust = 0;
    bool vendorUnknown = false;
};

class ReportLan {
  public:
    ReportLan() : ReportLan(SystemEvents()) {}
    explicit ReportLan(Events& events) : services_(system.services.With(events)), data(services_) {
        system.folders.separator = SystemFolders().Separator();
    }

    void Add(const ReportHost& from) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->hostName = from.name.c_str();
        host->ip = from.ip.c_str();
        host->mac = from.mac.c_str();
        host->os = from.os.c_str();
        host->vendor = from.vendor.c_str();
        host->vendorUnknown = from.vendorUnknown;
        host->trustState = static_cast<TrustState>(from.trust);
        data.arpMap.Insert(from.ip.c_str(), host);
    }
    void Watch(const std::string& name, const std::string& ip, bool online) {
        WatchedHost watched{};
        name.copy(watched.hostName, sizeof watched.hostName);
        ip.copy(watched.ipAddress, sizeof watched.ipAddress - 1);
        watched.online = online;
        data.settings.watchedHosts.Insert(ip.c_str(), std::make_unique<GuardedRecord<WatchedHost>>(watched));
    }
    void Access(i32 key, const std::string& computer, const std::string& share, const std::string& user) {
        auto access = std::make_unique<RemoteAccess>();
        access->computer = computer.c_str();
        access->share = share.c_str();
        access->user = user.c_str();
        if (data.remoteAccesses.Insert(key, access.get())) access.release();
    }

    TestServices system;

  private:
    Services services_;

  public:
    VardelData data;
};

}  // namespace vardel::test

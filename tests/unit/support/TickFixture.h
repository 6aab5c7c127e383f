// The shared state, a surface and deeds that are recorded, and the ticks over them.
//
//     Arrives("10.0.0.5", "desk");
//     Tick(kTrayTimer);
//     EXPECT_EQ(Calls(), ...);
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "frame/FrameTimers.h"
#include "frame/PeriodicTick.h"
#include "resources/ResourceIds.h"
#include "tests/unit/support/ForwardingEvents.h"
#include "tests/unit/support/RecordingDeeds.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

// The system's events; what takers do to them is counted.
class CountingEvents : public ForwardingEvents {
  public:
    EventHandle Create(const char*, bool manualReset, bool signalled) override {
        return SystemEvents().Create(nullptr, manualReset, signalled);
    }
    bool Set(EventHandle event) override { return ++sets, SystemEvents().Set(event); }
    bool Reset(EventHandle event) override { return ++resets, SystemEvents().Reset(event); }
    WaitResult Wait(EventHandle event, u32 timeoutMs) override {
        ++waits;
        lastTimeoutMs = timeoutMs;
        return timesOut ? WaitResult::TimedOut : SystemEvents().Wait(event, timeoutMs);
    }
    int sets = 0, resets = 0, waits = 0;
    bool timesOut = false;  // every wait, at once
    u32 lastTimeoutMs = 0;
};

// What a popup that warns is given before it is shown.
inline constexpr char kWarningColors[] = "host colors (255,0,0) (180,0,0) (255,255,255) (100,0,0)";

inline const std::map<u32, std::string>& TickTexts() {
    static const std::map<u32, std::string> texts = {
        {IDS_TRAY_TOOLTIP, "%s - %d host(s) found"},
        {IDS_ALERT_NEW_HOSTS, "New host(s) found :"},
        {IDS_ALERT_MAC_SPOOFING, "MAC spoofing alert on following addresses :"},
        {IDS_ALERT_REMOTE_ACCESS, "Remoteaccess detected :"},
        {IDS_ALERT_CONNECTED_ON, " connected on "},
        {IDS_ALERT_WITH_USER, " with user '"},
        {IDS_ALERT_NEW_SHARES, "New remote share(s) found :"},
        {IDS_ALERT_SYSLOG, "Syslog message from %1 : [ %2 - %3 ]\n\t%4"},
        {159, "Emergency"},
        {160, "Alert"},
        {161, "Critical"},
        {162, "Error"},
        {163, "Warning"},
        {164, "Notice"},
        {165, "Information"},
        {166, "Debug"},
        {167, "Unknown"},
        {189, "kernel message"},
        {193, "security/authorization"},
        {212, "local7"},
        {213, "unknown"},
    };
    return texts;
}

class TickFixture : public testing::Test {
  protected:
    TickFixture() {
        system.strings.texts = TickTexts();
        data.fences.CreateAll();
        for (ListedHostTable* table : {&data.settings.trustedHosts, &data.settings.distrustedHosts}) table->Clear();
    }

    // New hosts, whatever their trust, and MAC spoofing are told, each in a popup.
    void TellHostsInPopups() {
        data.settings.UseToolTips = 1;
        data.settings.Visualization = 0;
        data.settings.NotifyTrusted = 0;
        data.settings.MACSpoofingVisualization = 1;
        data.settings.MACSpoofingVisualizationStyle = 0;
    }
    HostRecord& Knows(const std::string& ip, const std::string& name = "host") {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip.c_str();
        host->hostName = name.c_str();
        data.arpMap.Insert(ip.c_str(), host);
        return *host;
    }
    HostRecord& Arrives(const std::string& ip, const std::string& name = "host") {
        HostRecord& host = Knows(ip, name);
        data.newEntries.Append(&host);
        return host;
    }
    HostRecord& IsSpoofed(const std::string& ip, const std::string& name = "host") {
        HostRecord* host = data.arpMap.FindValue(ip.c_str());
        if (!host) host = &Knows(ip, name);
        data.macSpoofs.Append(host);
        return *host;
    }
    void Connects(const std::string& computer, const std::string& share, const std::string& user) {
        auto* access = new RemoteAccess;
        access->computer = computer.c_str();
        access->share = share.c_str();
        access->user = user.c_str();
        data.remoteAccesses.Append(access);
        data.shareAccesses.Append(access);
    }
    void Offers(const std::string& name) {
        shares_.push_back(std::make_unique<NetShare>());
        shares_.back()->name = name.c_str();
        data.newShares.Append(shares_.back().get());
    }
    void Logs(const std::string& source, const std::string& text, i32 severity = 3, i32 facility = 0) {
        auto* record = new SyslogRecord;
        record->source = source.c_str();
        record->text = text.c_str();
        record->severity = severity;
        record->facility = facility;
        data.syslogNotifications.Append(record);
    }
    // The shares that were offered end; no list may hold them any more.
    void ForgetShares() { shares_.clear(); }
    static void List(ListedHostTable& table, const std::string& ip) {
        table.Insert(ip.c_str(), std::make_unique<GuardedRecord<ListedHost>>());
    }
    void Trusts(const std::string& ip) { List(data.settings.trustedHosts, ip); }
    void Distrusts(const std::string& ip) { List(data.settings.distrustedHosts, ip); }

    void Tick(u32 timer) { tick.OnTimer(timer); }
    // What was asked for since the last time, and forgets it.
    Calls TakeCalls() {
        Calls taken;
        taken.swap(surface.calls);
        return taken;
    }
    // The same without the host counts.
    Calls TakeAlerts() {
        Calls alerts = TakeCalls();
        std::erase(alerts, "plugins 32:");
        return alerts;
    }
    bool IsFree(Fence fence) {
        return SystemEvents().Wait(data.fences.Handle(fence), 0) == WaitResult::Signalled;
    }

    TestServices system;
    CountingEvents events;
    Services services{system.services.With(events)};
    VardelData data{services};
    AlertRecorder surface;
    RecordingDeeds deeds{data, surface.calls};
    PeriodicTick tick{&data, surface, deeds};

  private:
    std::vector<std::unique_ptr<NetShare>> shares_;
};

}  // namespace vardel::test

// A network in memory: frames are said, the two handlers hear them, and what came of it is read back.
//
//     WatchedLan lan;
//     lan.Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
//     EXPECT_EQ(lan.Host("10.0.0.5").trustState, TrustState::Unknown);
//
// The event map is the process's own: it is emptied when a WatchedLan begins and when it ends.
#pragma once

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "capture/EventMap.h"
#include "capture/FrameDispatch.h"
#include "capture/VardelData.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

struct SeenEvent {
    i32 kind;
    std::string host, info, text;
    i32 syslogInfo;
    bool operator==(const SeenEvent&) const = default;
};

class WatchedLan {
  public:
    static constexpr i64 kNow = 1'700'000'000;

    WatchedLan() : WatchedLan(nullptr) {}
    // `events` stands in for the system's named events.
    explicit WatchedLan(Events* events) : services_(WithEvents(events)), data(services_) { TheEventMap().Clear(); }
    ~WatchedLan() { TheEventMap().Clear(); }
    WatchedLan(const WatchedLan&) = delete;
    WatchedLan& operator=(const WatchedLan&) = delete;

    // A frame goes to its handler as the capture thread would hand it over, captured at `second`. It lies in
    // a buffer of exactly its size, so that a sanitizer sees any reading behind its end.
    void Says(const Frame& frame, i64 second = kNow) {
        HandOver(frame, second, [this](const pcap_pkthdr* header, const u8* bytes) {
            DispatchFrame(header, bytes, arp, ip, &data);
        });
    }
    // The same for a handler of the caller's choice: `take(header, bytes)` is called once.
    template <class Take>
    static void HandOver(const Frame& frame, i64 second, Take&& take) {
        const std::unique_ptr<u8[]> bytes(new u8[frame.size()]);
        std::copy(frame.begin(), frame.end(), bytes.get());
        pcap_pkthdr header{};
        header.ts.tv_sec = static_cast<long>(second);
        header.caplen = header.len = static_cast<u32>(frame.size());
        take(&header, bytes.get());
    }

    // A host that ARP brought in before, made here by hand.
    HostRecord& Knows(const std::string& address) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = address.c_str();
        data.arpMap.Insert(address.c_str(), host);
        return *host;
    }

    HostRecord* FindHost(const std::string& address) { return data.arpMap.FindValue(address.c_str()); }
    HostRecord& Host(const std::string& address) {
        HostRecord* host = FindHost(address);
        if (!host) throw std::out_of_range("no host " + address);
        return *host;
    }

    // Copies of the stored messages of a sender, oldest first.
    std::vector<SyslogRecord> MessagesOf(const std::string& source) {
        std::vector<SyslogRecord> messages;
        if (const SyslogSourceList* list = data.syslogs.FindValue(source.c_str()))
            list->ForEach([&](const SyslogRecord& record) { messages.push_back(record); });
        return messages;
    }
    std::vector<SyslogRecord> Notifications() {
        std::vector<SyslogRecord> messages;
        data.syslogNotifications.ForEach([&](SyslogRecord* record) {
            messages.push_back(*record);
            return true;
        });
        return messages;
    }

    std::vector<SeenEvent> SeenEvents() {
        std::vector<SeenEvent> seen;
        TheEventMap().ForEach([&](i32, const EventRecord* event) {
            seen.push_back({event->kind, event->host.GetContent(), event->info.GetContent(),
                            event->text.GetContent(), event->syslogInfo});
        });
        return seen;
    }

    TestServices system;

  private:
    Services WithEvents(Events* events) {
        return events ? system.services.With(*events) : system.services;
    }
    Services services_;

  public:
    VardelData data;
    VardelARPImpl arp;
    VardelIPImpl ip;
};

}  // namespace vardel::test

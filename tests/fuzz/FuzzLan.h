// The handlers with settings and hosts taken from the first byte of an input; the rest is one frame.
#pragma once

#include "capture/EventMap.h"
#include "capture/VardelARPImpl.h"
#include "capture/VardelIPImpl.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

struct FuzzLan {
    explicit FuzzLan(u8 choices) {
        TheEventMap().Clear();
        data.settings.UseWMI = choices & 1;
        data.settings.ShareSearch = choices >> 1 & 1;
        data.settings.Syslog = 1;
        data.settings.SyslogMaxEntries = choices >> 2 & 3;
        data.settings.SyslogNotification = choices >> 4 & 1;
        data.settings.SyslogNotificationLevel = choices >> 5 & 7;
        data.ParseNotificationWords("door,fire");
        if (choices & 0x80) data.vendors.Insert("00:11:22", std::make_unique<TcString>("Example Cards"));
        for (const char* ip : {"10.0.0.1", "0.0.0.0"}) {
            auto host = std::make_unique<HostRecord>();
            host->ip = ip;
            host->nameUnresolved = 1;
            host->isLocal = choices >> 6 & 1;
            data.arpMap.Insert(ip, data.Adopt(std::move(host)));
            data.settings.trustedHosts.Insert(ip, std::make_unique<GuardedRecord<ListedHost>>());
        }
    }

    // The frame twice: as a newcomer and as a known one. It is copied to an allocation of its exact size, so that a
    // read behind its end is found.
    template <class Handler>
    void Hears(Handler& handler, const u8* frame, std::size_t size) {
        const std::vector<u8> exact(frame, frame + size);
        static const u8 nothing = 0;
        const pcap_pkthdr header{{1'700'000'000, 0}, static_cast<u32>(size), static_cast<u32>(size)};
        for (int turn = 0; turn < 2; ++turn) handler.PacketReceived(&header, size ? exact.data() : &nothing, &data);
    }

    TestServices system;
    VardelData data{system.services};
};

}  // namespace vardel::test

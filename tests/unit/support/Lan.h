// A network as the ARP handler hears it, and what came of it: the fixture of the handler tests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "capture/EventMap.h"
#include "capture/VardelARPImpl.h"
#include "capture/VardelIPImpl.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

class LanTest : public ::testing::Test {
  public:
    LanTest() {
        TheEventMap().Clear();
        data.fences.CreateAll();
    }
    ~LanTest() override { TheEventMap().Clear(); }

  protected:
    void Says(const Frame& frame) { SaysAt(1'700'000'000, frame); }
    void SaysAt(i64 seconds, const Frame& frame) {
        pcap_pkthdr header{{static_cast<long>(seconds), 0}, static_cast<u32>(frame.size()),
                           static_cast<u32>(frame.size())};
        EXPECT_EQ(arp.PacketReceived(&header, frame.data(), &data), 0u);
    }
    HostRecord* Find(const char* ip) { return data.arpMap.FindValue(ip); }
    HostRecord& Host(const char* ip) {
        HostRecord* host = Find(ip);
        if (!host) {
            ADD_FAILURE() << "no host " << ip;
            return none_;
        }
        return *host;
    }
    template <class List>
    static std::vector<std::string> Addresses(const List& list) {
        std::vector<std::string> all;
        list.ForEach([&](HostRecord* host) {
            all.push_back(host->ip.GetContent());
            return true;
        });
        return all;
    }
    struct Event {
        i32 kind;
        std::string host, info, text;
        bool operator==(const Event&) const = default;
    };
    static std::vector<Event> Events() {
        std::vector<Event> all;
        TheEventMap().ForEach([&](i32, EventRecord* event) {
            all.push_back({event->kind, event->host.GetContent(), event->info.GetContent(), event->text.GetContent()});
        });
        return all;
    }
    void List(ListedHostTable& table, const char* ip, const char* name = "", const char* mac = "") {
        ListedHost record{};
        std::strcpy(record.ipAddress, ip);
        std::strcpy(record.hostName, name);
        std::strcpy(record.macAddress, mac);
        table.Insert(ip, std::make_unique<GuardedRecord<ListedHost>>(record));
    }
    static ListedHost Listed(const ListedHostTable& table, const char* ip) { return table.FindValue(ip)->Read(); }
    void Vendor(const char* prefix, const char* name) { data.vendors.Insert(prefix, std::make_unique<TcString>(name)); }

    TestServices system;
    VardelData data{system.services};
    VardelARPImpl arp;

  private:
    HostRecord none_;
};

}  // namespace vardel::test

// Frames handed over with a look ahead against the same frames handed over one by one.
#include "capture/FrameLookAhead.h"

#include <gtest/gtest.h>

#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u32 kManyHosts = 3000;  // more than are handled without a look ahead
constexpr i64 kFirstSecond = 1'700'000'000;

std::string AddressOf(u32 host) {
    return "10.1." + std::to_string(host / 250) + "." + std::to_string(host % 250 + 1);
}

std::string MacOf(u32 host) {
    char text[18];
    std::snprintf(text, sizeof text, "02:00:00:00:%02x:%02x", host >> 8 & 0xff, host & 0xff);
    return text;
}

// Frames, each in a buffer of exactly its size, so that a sanitizer sees any reading behind its end.
class Traffic {
  public:
    void Add(const Frame& frame, i64 second) {
        pcap_pkthdr header{};
        header.ts.tv_sec = static_cast<long>(second);
        header.caplen = header.len = static_cast<u32>(frame.size());
        headers_.push_back(header);
        bytes_.emplace_back(new u8[frame.size()]);
        std::copy(frame.begin(), frame.end(), bytes_.back().get());
    }
    std::size_t Count() const { return headers_.size(); }
    HeldFrame At(std::size_t index) const { return {&headers_[index], bytes_[index].get()}; }

  private:
    std::vector<pcap_pkthdr> headers_;
    std::vector<std::unique_ptr<u8[]>> bytes_;
};

Frame SomeFrame(Chance& chance) {
    const u32 host = chance.Below(kManyHosts + 200);
    switch (chance.Below(8)) {
        case 0:
            return ArpReply{.ip = AddressOf(host), .mac = MacOf(host + 1)};  // a spoof
        case 1:
            return RarpRequest{.ip = AddressOf(host), .mac = MacOf(host)};
        case 2:
            return ArpProbe{};
        case 3:
            return SyslogDatagram{.sourceIp = AddressOf(host),
                                  .message = "<13>" + std::to_string(chance.Next())};
        case 4: {
            Frame cut = ArpReply{.ip = AddressOf(host), .mac = MacOf(host)};
            cut.resize(chance.Below(60));
            return cut;
        }
        default:
            return ArpReply{.ip = AddressOf(host), .mac = MacOf(host)};
    }
}

std::string WaitingIn(const char* name, const auto& list) {
    std::string text = name;
    list.ForEach([&](const HostRecord* host) {
        text += std::string(" ") + host->ip.GetContent();
        return true;
    });
    return text;
}

// All that the frames made of an empty network, as lines.
std::vector<std::string> Outcome(WatchedLan& lan) {
    std::vector<std::string> lines;
    lan.data.arpMap.ForEach([&](const TcString& key, const HostRecord* host) {
        std::string line = key.GetContent();
        if (host)
            line += std::string(" ") + host->mac.GetContent() + " " + host->lastSeenText.GetContent() + " " +
                    host->vendor.GetContent() + " " + std::to_string(host->lastSeen) + " " +
                    std::to_string(host->rowDirty) + std::to_string(host->greyedOut);
        lines.push_back(line);
        for (const SyslogRecord& message : lan.MessagesOf(key.GetContent()))
            lines.push_back(std::to_string(message.serial) + " " + message.text.GetContent());
    });
    for (const SeenEvent& event : lan.SeenEvents())
        lines.push_back(std::to_string(event.kind) + " " + event.host + " " + event.info + " " + event.text);
    lines.push_back(WaitingIn("new", lan.data.newEntries));
    lines.push_back(WaitingIn("spoofs", lan.data.macSpoofs));
    lines.push_back(WaitingIn("shares", lan.data.netResWork));
    lines.push_back(std::to_string(lan.arp.packetCount) + " " + std::to_string(lan.ip.packetCount));
    return lines;
}

// Feeds the traffic in runs of `runLengths`, over and over; between runs a host is deleted.
template <class Feed>
std::vector<std::string> FeedInRuns(const Traffic& traffic, const std::vector<std::size_t>& runLengths,
                                    Feed&& feed) {
    WatchedLan lan;
    lan.data.settings.Syslog = 1;
    lan.data.settings.ShareSearch = 1;
    lan.data.arpMap.Insert(AddressOf(7).c_str(), nullptr);
    FrameLookAhead lookAhead(lan.arp, lan.ip, lan.data);
    std::size_t from = 0;
    for (std::size_t run = 0; from < traffic.Count(); ++run) {
        const std::size_t count = std::min(runLengths[run % runLengths.size()], traffic.Count() - from);
        feed(lan, lookAhead, from, count);
        from += count;
        lan.data.DeleteHost(AddressOf(static_cast<u32>(run * 37 % kManyHosts)).c_str());
    }
    return Outcome(lan);
}

Traffic SomeTraffic() {
    Traffic traffic;
    for (u32 host = 0; host < kManyHosts; ++host)
        traffic.Add(ArpReply{.ip = AddressOf(host), .mac = MacOf(host)}, kFirstSecond);
    Chance chance(20261121);
    for (u32 i = 0; i < 10'000; ++i) traffic.Add(SomeFrame(chance), kFirstSecond + i / 500);
    return traffic;
}

TEST(FrameLookAhead, MakesOfFramesWhatHandlingThemOneByOneMakes) {
    const Traffic traffic = SomeTraffic();
    // Groups that fill, that don't, and none at all.
    const std::vector<std::size_t> runLengths = {512, 1, 0, 7, 8, 9, 16, 17, 23, 24, 25, 100};
    const auto expected =
        FeedInRuns(traffic, runLengths, [&](WatchedLan& lan, FrameLookAhead&, auto from, auto count) {
            for (std::size_t at = from; at < from + count; ++at) {
                const HeldFrame frame = traffic.At(at);
                DispatchFrame(frame.header, frame.bytes, lan.arp, lan.ip, &lan.data);
            }
        });
    const auto found =
        FeedInRuns(traffic, runLengths, [&](WatchedLan&, FrameLookAhead& lookAhead, auto from, auto count) {
            lookAhead.Dispatch(count, [&](std::size_t at) { return traffic.At(from + at); });
        });
    EXPECT_GT(expected.size(), kManyHosts * 2u);
    EXPECT_EQ(found, expected);
}

TEST(FrameLookAhead, HoldsNoFrameBack) {
    WatchedLan lan;
    for (u32 host = 0; host < kManyHosts; ++host) lan.Knows(AddressOf(host));
    Traffic traffic;
    for (u32 host = 0; host < 5; ++host)
        traffic.Add(ArpReply{.ip = AddressOf(host), .mac = MacOf(host)}, kFirstSecond);
    FrameLookAhead lookAhead(lan.arp, lan.ip, lan.data);
    for (std::size_t count = 1; count <= traffic.Count(); ++count) {
        lookAhead.Dispatch(1, [&](std::size_t) { return traffic.At(count - 1); });
        EXPECT_EQ(lan.arp.packetCount, count);
        EXPECT_EQ(lan.Host(AddressOf(static_cast<u32>(count - 1))).lastSeen, kFirstSecond);
    }
}

}  // namespace
}  // namespace vardel::test

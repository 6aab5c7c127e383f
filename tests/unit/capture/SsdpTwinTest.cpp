// Device messages and storage announcements against their literal twin, over random messages and documents.
#include <gtest/gtest.h>

#include <iostream>

#include "tests/unit/support/LiteralIp.h"
#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u64 kDatagrams = 1'000'000;
constexpr u64 kDatagramsALan = 100;
constexpr u32 kHosts = 6;  // the last two are unknown to the table

const std::vector<std::string> kUrls = {"http://10.0.0.1/a",  "HTTPS://10.0.0.1/b", "http://c", "file:///d",
                                        "ftp://10.0.0.1/e", "",                   "http://10.0.0.1/f g"};

std::string IpOf(u32 host) { return "10.0.0." + std::to_string(host + 1); }

std::string DrawElement(Chance& chance, const std::string& name) {
    static const std::vector<std::string> kTexts = {"TV",  "", " NAS: Room ", ":", "a:b:c", "\t\r\n x \n", "http://x:1/",
                                                    "%s%n", "<b>", "\xe4"};
    std::string element = "<" + name + ">" + chance.Of(kTexts) + "</" + name + ">";
    if (chance.OneIn(6)) element.erase(chance.Below(element.size()), 1 + chance.Below(3));
    if (chance.OneIn(12)) element.insert(chance.Below(element.size() + 1), 1, '\0');
    return element;
}

std::string DrawDocument(Chance& chance) {
    std::string document;
    if (chance.OneIn(6)) document += std::string(4040 + chance.Below(60), ' ');
    for (u32 count = chance.Below(4); count > 0; --count) {
        document += chance.Of<const char*>({"", "<root>", "</friendlyName>", "\r\n", "</presentationURL>"});
        document += DrawElement(chance, chance.OneIn(2) ? "friendlyName" : "presentationURL");
    }
    return document;
}

std::string DrawMessage(Chance& chance) {
    std::string message = chance.Of<const char*>({"NOTIFY * HTTP/1.1\r\n", "HTTP/1.1 200 OK\r\n", "NOTIFY * HTTP/1.1\r\n",
                                                  "HTTP/1.1 200 OK\r\n", "M-SEARCH * HTTP/1.1\r\n", "\r\n", ""});
    if (chance.OneIn(2)) message += "EXT:\r\n";
    message += chance.Of<const char*>(
        {"Location:", "Location: ", "Location:\t \n", "Location: ", "LOCATION: ", "X-Location: ", ""});
    message += chance.Of(kUrls);
    message += chance.Of<const char*>({"\r\n", "  \r\n\r\n", "\r\nNT: x\r\n\r\n", "\r\n", "\n", "", "\r\n\r\n"});
    if (chance.OneIn(10)) message = "X: y\r\n" + message;
    if (chance.OneIn(16)) message.insert(chance.Below(message.size() + 1), 1, '\0');
    return message;
}

std::string DrawAnnouncement(Chance& chance) {
    std::string payload(chance.OneIn(6) ? 310 + chance.Below(20) : 320, chance.OneIn(2) ? '\0' : 'x');
    const std::string name = chance.Of<const char*>({"", "Attic", "LS-\xe4", "%s"});
    const std::string model = chance.OneIn(4) ? std::string(90 + chance.Below(9), 'm') : "LS-WVL";
    payload.replace(48, name.size() + 1, name.c_str(), name.size() + 1);
    if (!chance.OneIn(8)) payload.replace(80, model.size() + 1, model.c_str(), model.size() + 1);
    payload[188] = static_cast<char>(chance.Byte());
    payload[189] = static_cast<char>(chance.Byte());
    return payload;
}

void DrawHost(Chance& chance, u32 index, WatchedLan& lan, LiteralState& state) {
    const std::string ip = IpOf(index);
    HostRecord& host = lan.Knows(ip);
    LiteralHost* twin = state.NewHost();
    state.arpMap[ip] = twin;
    twin->ip = ip;
    host.isLocal = static_cast<u8>(twin->isLocal = chance.OneIn(8));
    host.nameUnresolved = static_cast<u8>(twin->nameUnresolved = chance.OneIn(2));
    host.hostName = "named";
    twin->hostName = "named";
}

void DrawDocuments(Chance& chance, WatchedLan& lan, LiteralState& state) {
    state.documents.clear();
    for (const std::string& url : kUrls)
        if (!chance.OneIn(5)) state.documents[url] = DrawDocument(chance);
    lan.system.http.documents = state.documents;
}

// As if another run began for the host.
void Reopen(u32 index, WatchedLan& lan, LiteralState& state) {
    const std::string ip = IpOf(index);
    if (state.arpMap.count(ip) == 0) return;
    lan.Host(ip).upnpDone = 0;
    lan.Host(ip).deviceProbed = 0;
    state.arpMap[ip]->upnpDone = 0;
    state.arpMap[ip]->deviceProbed = 0;
}

struct Reached {
    u64 fetches = 0, names = 0, devices = 0;
};

void RunOneLan(Chance& chance, Reached& reached) {
    WatchedLan lan;
    LiteralState state;
    state.texts = TwinTexts();
    LiteralIp literal;
    for (u32 index = 0; index < kHosts - 2; ++index) DrawHost(chance, index, lan, state);
    for (u64 i = 0; i < kDatagramsALan; ++i) {
        if (i % 10 == 0) DrawDocuments(chance, lan, state);
        if (chance.OneIn(2)) Reopen(chance.Below(kHosts), lan, state);
        const bool device = chance.OneIn(4);
        Frame frame = UdpFrame{.sourceIp = IpOf(chance.Below(kHosts)),
                               .sourcePort = static_cast<u16>(device ? 22936 : chance.Of({1900, 1900, 50126})),
                               .destinationPort = static_cast<u16>(chance.Of({1900, 22936, 1901})),
                               .payload = device ? DrawAnnouncement(chance) : DrawMessage(chance),
                               .padded = !chance.OneIn(3)};
        if (chance.OneIn(4)) Mutate(frame, 42, chance);
        lan.Says(frame);
        literal.PacketReceived(&frame, &state);
        if (chance.OneIn(16)) {
            ASSERT_EQ(Difference(lan, state), "");
        }
    }
    ASSERT_EQ(Difference(lan, state), "");
    std::vector<std::string> fetched;
    for (const auto& fetch : lan.system.http.fetches) fetched.push_back(fetch.url);
    ASSERT_EQ(fetched, state.fetches);
    reached.fetches += fetched.size();
    for (const LiteralEvent& event : state.events) ++(event.kind == 11 ? reached.names : reached.devices);
}

TEST(SsdpTwin, AgreesOverRandomMessages) {
    Chance chance(20081014);
    const u64 lans = TwinRounds(kDatagrams) / kDatagramsALan;
    Reached reached;
    for (u64 i = 0; i < lans; ++i) {
        RunOneLan(chance, reached);
        ASSERT_FALSE(HasFatalFailure()) << "network " << i;
    }
    const u64 datagrams = lans * kDatagramsALan;
    std::cout << "[ twins    ] " << datagrams << " datagrams, " << reached.fetches << " fetches, " << reached.names
              << " names, " << reached.devices << " devices\n";
    EXPECT_GT(reached.fetches, datagrams / 50);
    EXPECT_GT(reached.names, datagrams / 200);
    EXPECT_GT(reached.devices, datagrams / 100);
}

}  // namespace
}  // namespace vardel::test

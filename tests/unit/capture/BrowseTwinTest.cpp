// Browse announcements against their literal twin, over random datagrams and random hosts.
#include <gtest/gtest.h>

#include <iostream>
#include <map>

#include "tests/unit/support/LiteralIp.h"
#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u64 kDatagrams = 2'000'000;
const std::string kIp = "10.0.0.7";

u32 DrawServerType(Chance& chance) {
    u32 type = 0;
    for (u32 bit : {0x40u, 0x80u, 0x800u, 0x1000u, 0x8000u})
        if (chance.OneIn(3)) type |= bit;
    return chance.OneIn(8) ? static_cast<u32>(chance.Next()) : type;
}

BrowseBlock DrawBlock(Chance& chance) {
    BrowseBlock block;
    block.serverName = std::string(chance.Below(20), static_cast<char>('A' + chance.Below(26)));
    block.major = static_cast<u8>(chance.OneIn(6) ? chance.Byte() : 4 + chance.Below(3));
    block.minor = static_cast<u8>(chance.OneIn(6) ? chance.Byte() : chance.Below(5));
    block.serverType = DrawServerType(chance);
    block.operation = chance.Of<u8>({1, 1, 1, 15, 15, 2});
    block.setupCount = chance.Of<u8>({3, 3, 3, 0, 1, 200, 203, 204, 205, 215, 216, 255});
    block.transaction =
        chance.Of<const char*>({"\\MAILSLOT\\BROWSE", "\\MAILSLOT\\BROWSE", "\\MAILSLOT\\BROWSE",
                                "\\MAILSLOT\\BROWSER", "\\MAILSLOT\\LANMAN"});
    if (chance.OneIn(16)) block.byteCount = static_cast<u16>(chance.Of({0, 256, 1}));
    if (chance.OneIn(16)) block.wordCount = static_cast<u8>(chance.Of({7, 8, 9}));
    return block;
}

Frame DrawFrame(Chance& chance) {
    NetBiosDatagram datagram{.sourceIp = kIp, .block = DrawBlock(chance)};
    if (chance.OneIn(4)) datagram.sourceName = std::string(chance.Of({0, 1, 254, 255, 256, 300}), 'a');
    if (chance.OneIn(4)) datagram.destinationName = std::string(chance.Of({0, 1, 254, 255, 256, 300}), 'b');
    if (chance.OneIn(4)) {
        const std::size_t names = datagram.sourceName.size() + datagram.destinationName.size() + 2;
        datagram.datagramLength = static_cast<u16>(chance.Of<std::size_t>(
            {0, names - 1, names, names + 1, names + 87, names + 110, names + 512, 0xffff}));
    }
    return datagram;
}

void DrawHost(Chance& chance, HostRecord& host, LiteralHost& twin) {
    twin.os = chance.Of<const char*>({"", " ", "  ", "Linux", "a label of a length that needs the heap"});
    twin.osClass = chance.Below(3);
    twin.isLocal = chance.OneIn(5);
    twin.nameUnresolved = chance.OneIn(2);
    twin.osFromBrowse = chance.OneIn(2);
    twin.hostName = chance.Of<const char*>({"", "name", "Hostname not available"});
    host.os = twin.os.c_str();
    host.osClass = static_cast<OsClass>(twin.osClass);
    host.isLocal = static_cast<u8>(twin.isLocal);
    host.nameUnresolved = static_cast<u8>(twin.nameUnresolved);
    host.osFromBrowse = static_cast<u8>(twin.osFromBrowse);
    host.hostName = twin.hostName.c_str();
}

TEST(BrowseTwin, AgreesOverRandomDatagrams) {
    Chance chance(20240707);
    WatchedLan lan;
    LiteralState state;
    LiteralIp literal;
    state.texts = TwinTexts();
    HostRecord& host = lan.Knows(kIp);
    LiteralHost& twin = *(state.arpMap[kIp] = state.NewHost());
    twin.ip = kIp;
    lan.data.arpMap.Insert("10.0.0.6", nullptr);
    state.arpMap["10.0.0.6"] = nullptr;

    std::map<std::string, u64> labels;
    const u64 rounds = TwinRounds(kDatagrams);
    Frame drawn;
    for (u64 round = 0; round < rounds; ++round) {
        // A drawn datagram serves some rounds, each time with other changes.
        if (round % 8 == 0) drawn = DrawFrame(chance);
        Frame frame = drawn;
        if (chance.OneIn(64)) frame[29] = chance.Of<u8>({5, 6, 8});
        if (!chance.OneIn(4)) Mutate(frame, chance.OneIn(8) ? 14 : 42, chance);
        DrawHost(chance, host, twin);
        lan.Says(frame);
        literal.PacketReceived(&frame, &state);
        ASSERT_EQ(Difference(host, twin), "") << "round " << round;
        ++labels[twin.os];
    }
    EXPECT_EQ(Difference(lan, state), "");
    EXPECT_EQ(lan.ip.packetCount, literal.packetCount);
    std::cout << "[ twins    ] " << rounds << " datagrams, " << literal.announcements << " announcements, "
              << labels.size() << " labels\n";
    EXPECT_GT(literal.announcements, rounds / 5);
    EXPECT_EQ(labels.size(), 5u + 14u + 3u);  // drawn with the host, by version, by bits
}

}  // namespace
}  // namespace vardel::test

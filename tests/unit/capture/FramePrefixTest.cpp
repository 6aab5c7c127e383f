// Frames that end anywhere: every prefix of every kind of frame goes through its handler, with the sanitizers
// on in their build, in a buffer that ends where the frame ends.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/support/SampleFile.h"
#include "tests/unit/support/Savefile.h"
#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

struct Sample {
    const char* name;
    Frame frame;
};

std::vector<Sample> Samples() {
    return {
        {"ARP request", ArpFrame{}},
        {"ARP reply", ArpReply{.ip = "10.0.0.2"}},
        {"ARP probe", ArpProbe{}},
        {"RARP request", RarpRequest{}},
        {"TCP", TcpFrame{.payload = "GET / HTTP/1.0"}},
        {"other UDP", UdpFrame{.payload = "any"}},
        {"SSDP", UdpFrame{.sourcePort = 1900, .payload = "NOTIFY * HTTP/1.1\r\n"}},
        {"device announcement", UdpFrame{.sourcePort = 22936, .payload = std::string(320, 'x')}},
        {"browse announcement", BrowseAnnouncement{}},
        {"browse announcement of a master", BrowseAnnouncement{.serverType = 0xffffffff, .operation = 15}},
        {"browse announcement with many setup words",
         NetBiosDatagram{.block = BrowseBlock{.setupCount = 204}}},
        {"browse announcement, length beyond the frame",
         NetBiosDatagram{.block = BrowseBlock{}, .datagramLength = u16{0xffff}, .padded = false}},
        {"names without an end", NetBiosDatagram{.sourceName = std::string(300, 'a'),
                                                 .destinationName = std::string(300, 'b'),
                                                 .datagramLength = u16{0xffff}}},
        {"syslog", SyslogDatagram{.message = "<191>text\r\n\n"}},
        {"syslog without a bracket", SyslogDatagram{.message = "<999", .padded = false}},
        {"syslog of the greatest length", SyslogDatagram{.message = "<191>" + std::string(1023, 'x')}},
        {"syslog too long", SyslogDatagram{.message = "<191>" + std::string(1400, '\n')}},
    };
}

TEST(FramePrefixes, DoNoHarmWhereverAFrameEnds) {
    WatchedLan lan;
    lan.data.settings.Syslog = 1;
    lan.data.settings.SyslogMaxEntries = 3;
    lan.data.settings.SyslogNotification = 1;
    lan.data.settings.SyslogNotificationLevel = 8;
    lan.data.settings.ShareSearch = 1;
    lan.data.settings.UseWMI = 1;
    lan.Knows("10.0.0.1").nameUnresolved = 1;
    u64 frames = 0;
    for (const Sample& sample : Samples()) {
        SCOPED_TRACE(sample.name);
        for (std::size_t size = 0; size <= sample.frame.size(); ++size, ++frames)
            lan.Says(Frame(sample.frame.begin(), sample.frame.begin() + static_cast<std::ptrdiff_t>(size)));
    }
    EXPECT_EQ(lan.arp.packetCount + lan.ip.packetCount, frames);
    EXPECT_GT(frames, 5000u);
    EXPECT_EQ(lan.Host("10.0.0.1").osFromBrowse, 1);
    EXPECT_FALSE(lan.MessagesOf("10.0.0.1").empty());
}

// What once brought a defect to light.
TEST(FramePrefixes, OfTheSavefilesKeptDoNoHarmEither) {
    for (const std::string& sample : SampleNames("frames")) {
        SCOPED_TRACE(sample);
        WatchedLan lan;
        lan.data.settings.Syslog = 1;
        u64 frames = 0;
        for (const auto& [second, frame] : FramesOf(test::Sample(sample)))
            for (std::size_t size = 0; size <= frame.size(); ++size, ++frames) {
                const Frame prefix(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size));
                lan.Says(prefix, second);
            }
        EXPECT_GT(frames, 60u);
        EXPECT_EQ(lan.arp.packetCount + lan.ip.packetCount, frames);
    }
}

// A frame that was cut holds less, never something else: its address is padded with zeros.
TEST(FramePrefixes, AnAddressThatIsCutOffReadsAsZeros) {
    const Frame whole = ArpReply{.ip = "10.20.30.40"};
    WatchedLan lan;
    for (std::size_t size : {29u, 30u, 31u})
        lan.Says(Frame(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    EXPECT_EQ(lan.data.arpMap.Count(), 3u);
    for (const char* address : {"10.0.0.0", "10.20.0.0", "10.20.30.0"})
        EXPECT_NE(lan.FindHost(address), nullptr);
}

}  // namespace
}  // namespace vardel::test

#include "capture/DeviceAnnouncement.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/support/SampleFile.h"
#include "tests/unit/support/TracedLines.h"
#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

const std::string kBoxIp = "10.0.0.50";

struct StorageBox {
    std::string name = "LS-Attic";
    std::string model = "LS-WVL";
    u8 major = 1;
    u8 minor = 64;
    std::size_t size = 320;

    operator std::string() const {  // NOLINT: turning into bytes is what a builder is for
        std::string payload(size, '\xaa');
        payload.replace(48, name.size() + 1, name.c_str(), name.size() + 1);
        payload.replace(80, model.size() + 1, model.c_str(), model.size() + 1);
        payload[188] = static_cast<char>(major);
        payload[189] = static_cast<char>(minor);
        return payload;
    }
};

class DeviceAnnouncementTest : public testing::Test {
  protected:
    DeviceAnnouncementTest() : host(lan.Knows(kBoxIp)) {
        host.hostName = "Hostname not available";
        host.nameUnresolved = 1;
    }
    void Announces(const std::string& payload, u16 sourcePort = 22936, u16 destinationPort = 22936) {
        lan.Says(UdpFrame{.sourceIp = kBoxIp,
                          .sourcePort = sourcePort,
                          .destinationPort = destinationPort,
                          .payload = payload});
    }
    void ExpectNothingLearned() {
        EXPECT_EQ(host.hostName, "Hostname not available");
        EXPECT_EQ(host.nameUnresolved, 1);
        EXPECT_TRUE(host.os.IsEmpty());
        EXPECT_EQ(host.osFromBrowse, 0);
        EXPECT_EQ(host.deviceProbed, 0);
        EXPECT_TRUE(lan.SeenEvents().empty());
    }

    WatchedLan lan;
    HostRecord& host;
};

TEST_F(DeviceAnnouncementTest, TellsNameModelAndFirmware) {
    Announces(StorageBox{});
    EXPECT_EQ(host.hostName, "LS-Attic");
    EXPECT_EQ(host.nameUnresolved, 0);
    EXPECT_EQ(host.os, "LS-WVL FW: 1.64");
    EXPECT_EQ(host.osFromBrowse, 1);
    EXPECT_EQ(host.deviceProbed, 1);
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{12, "LS-Attic", kBoxIp, "LS-WVL FW: 1.64", -1}}));
}

TEST_F(DeviceAnnouncementTest, LeavesTheClassAndTheRowAlone) {
    host.osClass = OsClass::Server;
    Announces(StorageBox{});
    EXPECT_EQ(host.osClass, OsClass::Server);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_EQ(host.upnpDone, 0);
}

TEST_F(DeviceAnnouncementTest, KeepsTheNameThatTheResolverGave) {
    host.hostName = "storage.example";
    host.nameUnresolved = 0;
    Announces(StorageBox{});
    EXPECT_EQ(host.hostName, "storage.example");
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{12, "storage.example", kBoxIp, "LS-WVL FW: 1.64", -1}}));
}

TEST_F(DeviceAnnouncementTest, AnEmptyNameLeavesTheHostUnnamed) {
    Announces(StorageBox{.name = ""});
    EXPECT_EQ(host.hostName, "Hostname not available");
    EXPECT_EQ(host.nameUnresolved, 1);
    EXPECT_EQ(lan.SeenEvents().at(0).host, "Hostname not available");
    Announces(StorageBox{.name = "Later"});
    EXPECT_EQ(host.hostName, "Later");
}

TEST_F(DeviceAnnouncementTest, OnlyAPayloadOf320BytesIsOne) {
    TracedLines traced;
    for (std::size_t size : {319u, 321u, 0u, 32u, 640u})
        Announces(size < 200 ? std::string(size, 'x') : std::string(StorageBox{.size = size}));
    ExpectNothingLearned();
    const std::vector<std::string> each{"VardelIPImpl::Receiving packet: is an UDP packet",
                                        "VardelIPImpl::Receiving packet: no related UDP packet"};
    std::vector<std::string> all;
    for (int i = 0; i < 5; ++i) all.insert(all.end(), each.begin(), each.end());
    EXPECT_EQ(traced.Steps(), all);
}

TEST_F(DeviceAnnouncementTest, HasNoTraceLineOfItsOwn) {
    TracedLines traced;
    Announces(StorageBox{});
    EXPECT_EQ(traced.Steps(), (std::vector<std::string>{"VardelIPImpl::Receiving packet: is an UDP packet"}));
}

TEST_F(DeviceAnnouncementTest, TheHeadersLengthDecidesAndNotTheFrame) {
    UdpFrame frame{.sourceIp = kBoxIp, .sourcePort = 22936, .payload = StorageBox{}};
    frame.udpLength = static_cast<u16>(8 + 319);
    lan.Says(frame);
    ExpectNothingLearned();
    frame.payload = std::string(StorageBox{}).substr(0, 85);  // the model is cut, the firmware reads as 0
    frame.udpLength = static_cast<u16>(8 + 320);
    lan.Says(frame);
    EXPECT_EQ(host.os, "LS-WV FW: 0.0");
}

TEST_F(DeviceAnnouncementTest, IsKnownByItsSourcePort) {
    Announces(StorageBox{}, 22935, 22936);
    Announces(StorageBox{}, 40000, 22936);
    ExpectNothingLearned();
    Announces(StorageBox{}, 22936, 7);
    EXPECT_EQ(host.deviceProbed, 1);
}

TEST_F(DeviceAnnouncementTest, WithThePortOfDeviceMessagesItIsTakenForOne) {
    Announces(StorageBox{}, 22936, 1900);
    ExpectNothingLearned();
    EXPECT_EQ(host.upnpDone, 0);
}

TEST_F(DeviceAnnouncementTest, AnAddressThatArpHasNotSeenTakesTheNextOne) {
    const Frame frame = UdpFrame{.sourceIp = "10.0.0.51", .sourcePort = 22936, .payload = StorageBox{}};
    lan.Says(frame);
    EXPECT_EQ(lan.FindHost("10.0.0.51"), nullptr);
    EXPECT_TRUE(lan.SeenEvents().empty());
    lan.Says(ArpReply{.ip = "10.0.0.51"});
    lan.Says(frame);
    EXPECT_EQ(lan.Host("10.0.0.51").os, "LS-WVL FW: 1.64");
}

TEST_F(DeviceAnnouncementTest, ALocalAdaptersRecordIsClosed) {
    host.isLocal = 1;
    Announces(StorageBox{});
    ExpectNothingLearned();
}

TEST_F(DeviceAnnouncementTest, ANewFirmwareReplacesTheLabelWithoutAnotherEvent) {
    Announces(StorageBox{});
    Announces(StorageBox{.name = "Renamed", .model = "LS-QL", .major = 2, .minor = 0});
    EXPECT_EQ(host.os, "LS-QL FW: 2.0");
    EXPECT_EQ(host.hostName, "LS-Attic");
    EXPECT_EQ(lan.SeenEvents().size(), 1u);
}

TEST_F(DeviceAnnouncementTest, ReplacesTheSystemThatAnotherSourceTold) {
    host.os = "Unix/Linux";
    host.osFromBrowse = 1;
    Announces(StorageBox{});
    EXPECT_EQ(host.os, "LS-WVL FW: 1.64");
}

TEST_F(DeviceAnnouncementTest, FirmwareNumbersAreWholeBytes) {
    Announces(StorageBox{.major = 0, .minor = 255});
    EXPECT_EQ(host.os, "LS-WVL FW: 0.255");
    Announces(StorageBox{.major = 200, .minor = 128});
    EXPECT_EQ(host.os, "LS-WVL FW: 200.128");
}

TEST_F(DeviceAnnouncementTest, ALongModelIsCutWithTheLabel) {
    Announces(StorageBox{.model = std::string(100, 'm')});
    EXPECT_EQ(host.os, std::string(99, 'm').c_str());
    EXPECT_EQ(lan.SeenEvents().at(0).text, std::string(99, 'm'));
    Announces(StorageBox{.model = std::string(92, 'm')});
    EXPECT_EQ(host.os, (std::string(92, 'm') + " FW: 1.").c_str());
}

TEST_F(DeviceAnnouncementTest, TextsWithoutAnEndStopAtTheFrames) {
    Announces(Sample("device_announcement/no-end.bin"));
    EXPECT_EQ(host.hostName, std::string(272, 'n').c_str());
    EXPECT_EQ(host.os, std::string(99, 'n').c_str());
}

TEST_F(DeviceAnnouncementTest, FormatSignsInTheModelAreData) {
    Announces(StorageBox{.name = "%s%n", .model = "%s%n%99d"});
    EXPECT_EQ(host.hostName, "%s%n");
    EXPECT_EQ(host.os, "%s%n%99d FW: 1.64");
}

TEST_F(DeviceAnnouncementTest, SamplesMeanWhatTheirListSays) {
    Announces(Sample("device_announcement/attic.bin"));
    EXPECT_EQ(host.hostName, "LS-Attic");
    EXPECT_EQ(host.os, "LS-WVL FW: 1.64");
    Announces(Sample("device_announcement/no-name.bin"));
    EXPECT_EQ(host.os, "LS-QL FW: 0.255");
}

TEST_F(DeviceAnnouncementTest, SamplesDoNoHarmWhereverTheyEnd) {
    u64 prefixes = 0;
    for (const std::string& name : SampleNames("device_announcement")) {
        SCOPED_TRACE(name);
        const Frame frame = UdpFrame{.sourceIp = kBoxIp, .sourcePort = 22936, .payload = Sample(name)};
        for (std::size_t size = 0; size <= frame.size(); ++size, ++prefixes) {
            host.nameUnresolved = 1;
            host.deviceProbed = 0;
            lan.Says(Frame(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size)));
        }
    }
    EXPECT_EQ(prefixes, 3u * 363);
    EXPECT_GT(lan.SeenEvents().size(), 900u);
}

}  // namespace
}  // namespace vardel::test

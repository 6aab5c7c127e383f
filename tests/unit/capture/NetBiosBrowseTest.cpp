#include "capture/NetBiosBrowse.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

constexpr u32 kNovellBit = 0x80;
constexpr u32 kMacBit = 0x40;
constexpr u32 kUnixBit = 0x800;
constexpr u32 kNtWorkstationBit = 0x1000;
constexpr u32 kServerBit = 0x8000;
constexpr u32 kEveryOtherBit = ~(kNovellBit | kMacBit | kUnixBit | kNtWorkstationBit | kServerBit);

const std::string kBrowserIp = "10.0.0.7";
const std::string kBefore = "as it was";

class NetBiosBrowse : public testing::Test {
  protected:
    NetBiosBrowse() : host(lan.Knows(kBrowserIp)) {
        host.os = kBefore.c_str();
        host.hostName = "resolved";
    }
    void Announces(const BrowseBlock& block) { lan.Says(NetBiosDatagram{.sourceIp = kBrowserIp, .block = block}); }
    void ExpectNothingChanged() {
        EXPECT_EQ(std::string(host.os), kBefore);
        EXPECT_EQ(host.osClass, OsClass::Unknown);
        EXPECT_EQ(host.osFromBrowse, 0);
        EXPECT_STREQ(host.hostName, "resolved");
    }
    void ExpectAccepted() { EXPECT_EQ(host.osFromBrowse, 1); }

    WatchedLan lan;
    HostRecord& host;
};

// ---- the table of labels ----

struct OsCase {
    u8 major, minor;
    u32 bits;
    const char* os;
    OsClass osClass;
};

class NetBiosBrowseLabels : public testing::TestWithParam<OsCase> {};

TEST_P(NetBiosBrowseLabels, FollowVersionAndBits) {
    const OsCase& expected = GetParam();
    for (u32 noise : {0u, kEveryOtherBit}) {
        WatchedLan lan;
        HostRecord& host = lan.Knows(kBrowserIp);
        host.os = kBefore.c_str();
        lan.Says(BrowseAnnouncement{.sourceIp = kBrowserIp,
                                    .major = expected.major,
                                    .minor = expected.minor,
                                    .serverType = expected.bits | noise});
        EXPECT_STREQ(host.os, expected.os);
        EXPECT_EQ(host.osClass, expected.osClass);
        EXPECT_EQ(host.osFromBrowse, 1);
        EXPECT_EQ(host.rowDirty, 0);
    }
}

constexpr OsClass kNone = OsClass::Unknown;
constexpr OsClass kWorkstation = OsClass::Workstation;
constexpr OsClass kServer = OsClass::Server;
constexpr u32 kNoTableBits = kNovellBit | kMacBit;  // have no say where the table gives a label

INSTANTIATE_TEST_SUITE_P(
    EveryRow, NetBiosBrowseLabels,
    testing::Values(
        OsCase{4, 0, kUnixBit, "Unix/Linux", kNone}, OsCase{4, 9, kUnixBit, "Unix/Linux", kNone},
        OsCase{4, 9, kUnixBit | kServerBit | kNtWorkstationBit | kNoTableBits, "Unix/Linux", kNone},
        OsCase{4, 0, kServerBit, "Microsoft Windows NT 4.0 Server", kServer},
        OsCase{4, 7, kServerBit | kNtWorkstationBit | kNoTableBits, "Microsoft Windows NT 4.0 Server",
               kServer},
        OsCase{4, 0, kNtWorkstationBit, "Microsoft Windows NT 4.0 Workstation", kWorkstation},
        OsCase{4, 1, kNtWorkstationBit | kNoTableBits, "Microsoft Windows NT 4.0 Workstation", kWorkstation},
        OsCase{4, 0, 0, "Microsoft Windows 9x/ME", kWorkstation},
        OsCase{4, 90, kNoTableBits, "Microsoft Windows 9x/ME", kWorkstation},
        OsCase{5, 0, kServerBit, "Microsoft Windows Server 2000", kServer},
        OsCase{5, 0, 0, "Microsoft Windows 2000 Workstation", kWorkstation},
        OsCase{5, 0, kUnixBit | kNtWorkstationBit | kNoTableBits, "Microsoft Windows 2000 Workstation",
               kWorkstation},
        OsCase{5, 1, 0, "Microsoft Windows XP", kWorkstation},
        OsCase{5, 1, kServerBit | kNoTableBits, "Microsoft Windows XP", kWorkstation},
        OsCase{5, 2, 0, "Microsoft Windows Server 2003", kServer},
        OsCase{5, 2, kServerBit | kNoTableBits, "Microsoft Windows Server 2003", kServer},
        OsCase{6, 0, kServerBit, "Microsoft Windows Server 2008", kServer},
        OsCase{6, 0, kNoTableBits, "Microsoft Windows Vista", kWorkstation},
        OsCase{6, 1, kServerBit, "Microsoft Windows Server 2008 R2", kServer},
        OsCase{6, 1, kNoTableBits, "Microsoft Windows 7", kWorkstation},
        OsCase{6, 2, kServerBit, "Microsoft Windows Server 2012", kServer},
        OsCase{6, 2, kNoTableBits, "Microsoft Windows 8", kWorkstation},
        OsCase{6, 3, kServerBit | kNoTableBits, "as it was", kNone}, OsCase{6, 255, 0, "as it was", kNone}));

INSTANTIATE_TEST_SUITE_P(VersionsWithoutALabel, NetBiosBrowseLabels,
                         testing::Values(OsCase{5, 3, 0, "Unkown operating system", kNone},
                                         OsCase{5, 3, kServerBit | kUnixBit | kNtWorkstationBit,
                                                "Unkown operating system", kNone},
                                         OsCase{5, 3, kNovellBit, "Novell", kServer},
                                         OsCase{5, 3, kMacBit, "Mac OS", kWorkstation},
                                         OsCase{5, 255, kNovellBit | kMacBit, "Novell", kServer},
                                         OsCase{0, 0, 0, "Unkown operating system", kNone},
                                         OsCase{3, 1, kServerBit, "Unkown operating system", kNone},
                                         OsCase{3, 0, kMacBit | kServerBit, "Mac OS", kWorkstation},
                                         OsCase{7, 0, kNovellBit, "Novell", kServer},
                                         OsCase{10, 0, 0, "Unkown operating system", kNone},
                                         OsCase{255, 255, 0, "Unkown operating system", kNone}));

TEST_F(NetBiosBrowse, AVersionAboveTheTableLeavesAnEmptyLabelEmptyAndStillMarksTheHost) {
    host.os.Clear();
    Announces({.major = 6, .minor = 3});
    EXPECT_TRUE(host.os.IsEmpty());
    EXPECT_EQ(host.osFromBrowse, 1);
}

TEST_F(NetBiosBrowse, ABlankLabelThatIsLeftAsItIsBecomesUnknown) {
    host.os = " ";
    Announces({.major = 6, .minor = 3});
    EXPECT_STREQ(host.os, "Unkown operating system");
    host.os = " ";
    Announces({.major = 6, .minor = 3, .serverType = kNovellBit});
    EXPECT_STREQ(host.os, "Novell");
    EXPECT_EQ(host.osClass, OsClass::Server);
}

TEST_F(NetBiosBrowse, RowsWithoutAClassKeepTheOneThatTheHostHas) {
    for (const BrowseBlock& block :
         {BrowseBlock{.major = 4, .minor = 0, .serverType = kUnixBit}, BrowseBlock{.major = 5, .minor = 9},
          BrowseBlock{.major = 6, .minor = 9}, BrowseBlock{.major = 9, .minor = 0}}) {
        host.osClass = OsClass::Server;
        Announces(block);
        EXPECT_EQ(host.osClass, OsClass::Server);
    }
}

TEST_F(NetBiosBrowse, AnAnnouncementOverwritesWhatInspectionFound) {
    host.wmiOsKnown = 1;
    host.osClass = OsClass::Server;
    Announces({.major = 5, .minor = 1});
    EXPECT_STREQ(host.os, "Microsoft Windows XP");
    EXPECT_EQ(host.osClass, OsClass::Workstation);
    Announces({.major = 6, .minor = 0, .serverType = kServerBit});
    EXPECT_STREQ(host.os, "Microsoft Windows Server 2008");
    EXPECT_EQ(host.osClass, OsClass::Server);
}

TEST_F(NetBiosBrowse, ALocalMasterAnnouncementCountsAsWell) {
    Announces({.major = 5, .minor = 1, .operation = 15});
    EXPECT_STREQ(host.os, "Microsoft Windows XP");
}

TEST_F(NetBiosBrowse, TheServerTypeIsReadLowByteFirst) {
    Announces({.major = 4, .minor = 0, .serverType = 0x00080000});
    EXPECT_STREQ(host.os, "Microsoft Windows 9x/ME");
    Announces({.major = 5, .minor = 9, .serverType = 0x40800000});
    EXPECT_STREQ(host.os, "Unkown operating system");
}

// ---- names ----

TEST_F(NetBiosBrowse, AHostWithoutANameTakesTheServerNameInLowerCase) {
    host.hostName = "Hostname not available";
    host.nameUnresolved = 1;
    Announces({.serverName = "FILE-Server_01"});
    EXPECT_STREQ(host.hostName, "file-server_01");
    EXPECT_EQ(host.nameUnresolved, 0);
}

TEST_F(NetBiosBrowse, ANameFromTheResolverIsKept) {
    Announces({.serverName = "OTHER"});
    EXPECT_STREQ(host.hostName, "resolved");
    ExpectAccepted();
}

TEST_F(NetBiosBrowse, OnlyTheFirstAnnouncedNameIsTaken) {
    host.nameUnresolved = 1;
    Announces({.serverName = "FIRST"});
    Announces({.serverName = "SECOND"});
    EXPECT_STREQ(host.hostName, "first");
}

TEST_F(NetBiosBrowse, ANameThatFillsItsFieldEndsThere) {
    host.nameUnresolved = 1;
    Announces({.serverName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"});
    EXPECT_STREQ(host.hostName, "abcdefghijklmnop");
}

TEST_F(NetBiosBrowse, AnEmptyServerNameIsTakenToo) {
    host.nameUnresolved = 1;
    Announces({.serverName = ""});
    EXPECT_TRUE(host.hostName.IsEmpty());
    EXPECT_EQ(host.nameUnresolved, 0);
}

TEST_F(NetBiosBrowse, ALocalAdaptersRecordTakesANameButNoOperatingSystem) {
    host.isLocal = 1;
    host.nameUnresolved = 1;
    Announces({.serverName = "ME", .major = 5, .minor = 1});
    EXPECT_EQ(std::string(host.os), kBefore);
    EXPECT_EQ(host.osClass, OsClass::Unknown);
    EXPECT_EQ(host.osFromBrowse, 0);
    EXPECT_STREQ(host.hostName, "me");
    EXPECT_EQ(host.nameUnresolved, 0);
}

// ---- who is meant ----

TEST_F(NetBiosBrowse, AnAnnouncementFromAnUnknownAddressChangesNothing) {
    lan.Says(BrowseAnnouncement{.sourceIp = "10.0.0.8"});
    EXPECT_EQ(lan.FindHost("10.0.0.8"), nullptr);
    EXPECT_EQ(lan.data.arpMap.Count(), 1u);
    ExpectNothingChanged();
}

TEST_F(NetBiosBrowse, AnAddressStoredWithoutARecordIsPassedOver) {
    lan.data.arpMap.Insert("10.0.0.9", nullptr);
    lan.Says(BrowseAnnouncement{.sourceIp = "10.0.0.9"});
    ExpectNothingChanged();
}

// ---- the checks of the block, each at its border ----

TEST_F(NetBiosBrowse, ATransactionIsTheOnlyCommand) {
    for (int command : {0x24, 0x26, 0x00, 0x72}) Announces({.command = static_cast<u8>(command)});
    ExpectNothingChanged();
}

TEST_F(NetBiosBrowse, AWordCountOfEightIsRejected) {
    Announces({.wordCount = 8});
    ExpectNothingChanged();
    Announces({.wordCount = 7});
    ExpectAccepted();
}

TEST_F(NetBiosBrowse, AByteCountWhoseLowByteIsZeroIsRejected) {
    Announces({.byteCount = u16{0}});
    Announces({.byteCount = u16{256}});
    ExpectNothingChanged();
    Announces({.byteCount = u16{1}});
    ExpectAccepted();
}

TEST_F(NetBiosBrowse, TheSetupWordsMoveWhatFollowsThem) {
    for (int setupCount : {0, 1, 3, 100, 200}) {
        host.osFromBrowse = 0;
        Announces({.setupCount = static_cast<u8>(setupCount)});
        EXPECT_EQ(host.osFromBrowse, 1) << setupCount;
    }
}

// With s setup words the operation stands at 80 + 2s and the server type at 104 + 2s.
TEST_F(NetBiosBrowse, WhatLiesBehind512BytesOfTheBlockReadsAsZero) {
    const BrowseBlock inside{
        .serverName = "S", .major = 5, .minor = 3, .serverType = kMacBit, .setupCount = 203};
    Announces(inside);
    EXPECT_STREQ(host.os, "Mac OS");
    BrowseBlock behind = inside;
    behind.setupCount = 204;  // server type at 512
    Announces(behind);
    EXPECT_STREQ(host.os, "Unkown operating system");
    host.osFromBrowse = 0;
    behind.setupCount = 216;  // operation at 512
    Announces(behind);
    EXPECT_EQ(host.osFromBrowse, 0);
    behind.setupCount = 255;
    Announces(behind);
    EXPECT_EQ(host.osFromBrowse, 0);
}

TEST_F(NetBiosBrowse, TheTransactionNameMustLeadToTheBrowseMailslot) {
    for (const char* name : {"", "\\MAILSLOT", "\\MAILSLOT\\", "\\MAILSLOT\\BROWS", "\\MAILSLOT\\LANMAN",
                             "\\mailslot\\browse", "\\MAILSLOT\\browse", "MAILSLOT\\BROWSE", "\\PIPE\\BROWSE",
                             "\\MAILSLOT\\ BROWSE", "\\MAILSLOT.BROWSE"})
        Announces({.transaction = name});
    ExpectNothingChanged();
}

TEST_F(NetBiosBrowse, TheTransactionNameMayGoOnBehindIt) {
    Announces({.major = 5, .minor = 1, .transaction = "\\MAILSLOT\\BROWSER\\MORE"});
    EXPECT_STREQ(host.os, "Microsoft Windows XP");
}

TEST_F(NetBiosBrowse, ATransactionNameThatNeverEndsIsRejected) {
    Announces({.transaction = "\\MAILSLOT\\BROWSE" + std::string(600, '\x01')});
    ExpectNothingChanged();
}

TEST_F(NetBiosBrowse, OtherBrowserOperationsAreRejected) {
    for (int operation : {0, 2, 8, 12, 14, 16, 255}) Announces({.operation = static_cast<u8>(operation)});
    ExpectNothingChanged();
}

// ---- the datagram around the block ----

u16 LengthWithRest(int rest, const NetBiosDatagram& datagram) {
    return static_cast<u16>(
        static_cast<int>(datagram.sourceName.size() + 1 + datagram.destinationName.size() + 1) + rest);
}

TEST_F(NetBiosBrowse, ARestOfZeroBytesOrLessIsDropped) {
    NetBiosDatagram datagram{.sourceIp = kBrowserIp, .block = BrowseBlock{}};
    for (int rest : {0, -1, -60}) {
        datagram.datagramLength = LengthWithRest(rest, datagram);
        lan.Says(datagram);
    }
    datagram.datagramLength = u16{0};
    lan.Says(datagram);
    ExpectNothingChanged();
}

TEST_F(NetBiosBrowse, BytesBehindTheDatagramsLengthReadAsZero) {
    NetBiosDatagram datagram{.sourceIp = kBrowserIp,
                             .block = BrowseBlock{.major = 5, .minor = 3, .serverType = kMacBit}};
    // The server type stands 110 bytes into the block.
    datagram.datagramLength = LengthWithRest(111, datagram);
    lan.Says(datagram);
    EXPECT_STREQ(host.os, "Mac OS");
    datagram.datagramLength = LengthWithRest(110, datagram);
    lan.Says(datagram);
    EXPECT_STREQ(host.os, "Unkown operating system");
    host.osFromBrowse = 0;
    datagram.datagramLength = LengthWithRest(86, datagram);  // the operation is the first byte behind
    lan.Says(datagram);
    EXPECT_EQ(host.osFromBrowse, 0);
    datagram.datagramLength = LengthWithRest(87, datagram);
    lan.Says(datagram);
    EXPECT_EQ(host.osFromBrowse, 1);
}

TEST_F(NetBiosBrowse, ADatagramLengthBeyondTheFrameIsNoHarm) {
    lan.Says(NetBiosDatagram{
        .sourceIp = kBrowserIp, .block = BrowseBlock{.major = 5, .minor = 1}, .datagramLength = u16{0xffff}});
    EXPECT_STREQ(host.os, "Microsoft Windows XP");
}

TEST_F(NetBiosBrowse, NamesAreReadAsTheyStandInAnyLength) {
    for (std::size_t length : {0u, 1u, 100u, 254u, 255u}) {
        host.osFromBrowse = 0;
        lan.Says(NetBiosDatagram{.sourceIp = kBrowserIp,
                                 .sourceName = std::string(length, 'a'),
                                 .destinationName = std::string(255 - length, 'b'),
                                 .block = BrowseBlock{}});
        EXPECT_EQ(host.osFromBrowse, 1) << length;
    }
}

// The 256th character is taken for the terminator, the true terminator for an empty destination name, and
// what follows that for the block.
TEST_F(NetBiosBrowse, ANameOf256CharactersIsCutAt255) {
    const std::string tooLong(256, 'a');
    lan.Says(NetBiosDatagram{
        .sourceIp = kBrowserIp, .sourceName = tooLong, .destinationName = "b", .block = BrowseBlock{}});
    ExpectNothingChanged();
    const std::string block = BrowseBlock{};  // its sixth byte is 0: ends what stands where the name is sent
    lan.Says(NetBiosDatagram{.sourceIp = kBrowserIp,
                             .sourceName = tooLong,
                             .destinationName = block.substr(0, 5),
                             .block = block.substr(6)});
    ExpectAccepted();
}

TEST_F(NetBiosBrowse, AFrameThatEndsInItsNamesIsDropped) {
    Frame frame = BrowseAnnouncement{.sourceIp = kBrowserIp};
    for (std::size_t size : {55u, 56u, 57u, 89u, 90u, 91u, 124u})
        lan.Says(Frame(frame.begin(), frame.begin() + static_cast<long>(size)));
    ExpectNothingChanged();
}

TEST(HostAnnouncement, IsReadWithoutAHostTable) {
    const Frame frame = NetBiosDatagram{
        .block = BrowseBlock{.serverName = "Box", .major = 10, .minor = 4, .serverType = 0x12345678}};
    const auto announcement = ParseHostAnnouncement(FrameView(frame.data(), static_cast<u32>(frame.size())));
    ASSERT_TRUE(announcement.has_value());
    EXPECT_STREQ(announcement->serverName, "Box");
    EXPECT_EQ(announcement->osMajor, 10);
    EXPECT_EQ(announcement->osMinor, 4);
    EXPECT_EQ(announcement->serverType, 0x12345678u);
    EXPECT_FALSE(ParseHostAnnouncement(FrameView(nullptr, 0)).has_value());
}

}  // namespace
}  // namespace vardel::test

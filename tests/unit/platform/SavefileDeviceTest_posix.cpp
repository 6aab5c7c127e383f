#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/unit/support/Savefile.h"
#include "tests/unit/support/SystemCapture.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel::test {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kEndOfFile = -2;

// A savefile played through the program's entry points. What a read gave is told by the last octet of the
// sender's address: hosts are numbered in the order of their frames.
class SavefileDevice : public testing::Test {
  protected:
    void TearDown() override { Close(); }

    static Frame FrameOf(int host) { return ArpReply{.ip = "10.0.0." + std::to_string(host)}; }
    void Save(const std::vector<SavedFrame>& frames, u32 linkType = kLinkTypeEthernet, std::size_t torn = 0) {
        WriteFile(path, SavefileBytes(frames, linkType, torn));
    }
    bool Open(int timeoutMs) { return OpenSource("file://" + path, timeoutMs); }
    bool OpenSource(const std::string& source, int timeoutMs) {
        handle = capture.open(source.c_str(), 65536, 1, timeoutMs, nullptr, errors);
        return handle != nullptr;
    }
    void Close() {
        if (handle) capture.close(handle);
        handle = nullptr;
    }
    // The result of one read; `host` is the frame's.
    int Read() {
        pcap_pkthdr* header = nullptr;
        const u8* frame = nullptr;
        const auto start = Clock::now();
        const int result = capture.next_ex(handle, &header, &frame);
        waited = Clock::now() - start;
        host = result == 1 && header->caplen >= 60 ? frame[31] : 0;
        return result;
    }

    const CaptureEntryPoints capture = SystemEntryPoints();
    TestFolder folder;
    std::string path = folder.Path("lan.pcap");
    pcap_handle* handle = nullptr;
    char errors[kPcapErrorBufferSize] = "";
    int host = 0;
    Clock::duration waited{};
};

}  // namespace

TEST_F(SavefileDevice, HandsOutTheFramesInOrderThenTheEnd) {
    Save({{0, FrameOf(1)}, {0, FrameOf(2)}, {1, FrameOf(3)}});
    ASSERT_TRUE(Open(1000)) << errors;
    for (int expected : {1, 2, 3}) {
        EXPECT_EQ(Read(), 1);
        EXPECT_EQ(host, expected);
    }
    EXPECT_EQ(Read(), kEndOfFile);
}

TEST_F(SavefileDevice, WaitsAsLongAsTheFramesAreApart) {
    Save({{0, FrameOf(1)}, {150, FrameOf(2)}});
    ASSERT_TRUE(Open(1000));
    const auto start = Clock::now();
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 2);
    EXPECT_GE(Clock::now() - start, milliseconds(150));
}

TEST_F(SavefileDevice, TimesOutAfterASecondWithoutAFrame) {
    Save({{0, FrameOf(1)}, {60'000, FrameOf(2)}});
    ASSERT_TRUE(Open(1000));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), 0);
    EXPECT_GE(waited, milliseconds(1000));
}

TEST_F(SavefileDevice, GoesOnWhereItStoodWhenItIsOpenedAgain) {
    Save({{0, FrameOf(1)}, {200, FrameOf(2)}, {201, FrameOf(3)}});
    ASSERT_TRUE(Open(20));
    std::vector<int> hosts;
    int timeOuts = 0;
    for (int result = Read(); result >= 0; result = Read()) {
        if (result == 1) {
            hosts.push_back(host);
            continue;
        }
        ++timeOuts;
        Close();
        ASSERT_TRUE(Open(20));
    }
    EXPECT_EQ(hosts, (std::vector<int>{1, 2, 3}));
    EXPECT_GE(timeOuts, 1);
}

TEST_F(SavefileDevice, StandsStillWhileItIsClosed) {
    Save({{0, FrameOf(1)}, {200, FrameOf(2)}});
    ASSERT_TRUE(Open(1000));
    EXPECT_EQ(Read(), 1);
    const auto played = Clock::now();
    Close();
    std::this_thread::sleep_for(milliseconds(250));
    const auto reopened = Clock::now();
    ASSERT_TRUE(Open(1000));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 2);
    EXPECT_GE(Clock::now() - played, milliseconds(350));
    EXPECT_GE(Clock::now() - reopened, milliseconds(100));
}

TEST_F(SavefileDevice, IsASilentNetworkAfterItsEnd) {
    Save({{0, FrameOf(1)}});
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), kEndOfFile);
    for (int round = 0; round < 3; ++round) {
        Close();
        ASSERT_TRUE(Open(30));
        EXPECT_EQ(capture.datalink(handle), 1);
        EXPECT_EQ(Read(), 0);
        EXPECT_GE(waited, milliseconds(30));
    }
}

TEST_F(SavefileDevice, StartsAnewAfterAnotherSourceWasOpened) {
    Save({{0, FrameOf(1)}, {0, FrameOf(2)}});
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    Close();
    EXPECT_FALSE(OpenSource("vardel-no-such", 30));
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 1);
}

TEST_F(SavefileDevice, PlaysAnotherFileFromItsStart) {
    Save({{0, FrameOf(1)}});
    const std::string other = folder.Path("other.pcap");
    WriteFile(other, SavefileBytes({{0, FrameOf(7)}}));
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), kEndOfFile);
    Close();
    ASSERT_TRUE(OpenSource("file://" + other, 30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 7);
    Close();
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 1);
}

TEST_F(SavefileDevice, HandsOutAFrameWithAnEarlierTimeStampAtOnce) {
    Save({{5000, FrameOf(1)}, {0, FrameOf(2)}, {100, FrameOf(3)}});
    ASSERT_TRUE(Open(1000));
    const auto start = Clock::now();
    for (int expected : {1, 2, 3}) {
        EXPECT_EQ(Read(), 1);
        EXPECT_EQ(host, expected);
    }
    EXPECT_GE(Clock::now() - start, milliseconds(100));
}

TEST_F(SavefileDevice, KeepsTheFrameUntilTheNextRead) {
    Save({{0, FrameOf(1)}, {100, FrameOf(2)}});
    ASSERT_TRUE(Open(20));
    pcap_pkthdr* header = nullptr;
    const u8* frame = nullptr;
    ASSERT_EQ(capture.next_ex(handle, &header, &frame), 1);
    const Frame copy(frame, frame + header->caplen);
    EXPECT_EQ(copy, FrameOf(1));
    EXPECT_EQ(header->len, 60u);
    EXPECT_EQ(header->ts.tv_sec, 1'700'000'000);
}

TEST_F(SavefileDevice, AppliesTheFilter) {
    Frame ipv6 = FrameOf(9);
    ipv6[12] = 0x86;
    ipv6[13] = 0xdd;
    Save({{0, ipv6}, {0, FrameOf(1)}, {0, ipv6}, {0, RarpRequest{.ip = "10.0.0.2"}}, {0, UdpFrame{}}});
    ASSERT_TRUE(Open(30));
    pcap_filter program{};
    ASSERT_GE(capture.compile(handle, &program, "arp or rarp or ip", 1, 0xffff0000), 0);
    EXPECT_GT(program.length, 0u);
    ASSERT_GE(capture.setfilter(handle, &program), 0);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 1);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 2);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), kEndOfFile);
}

TEST_F(SavefileDevice, RefusesAFilterThatIsNone) {
    Save({{0, FrameOf(1)}});
    ASSERT_TRUE(Open(30));
    pcap_filter program{};
    EXPECT_LT(capture.compile(handle, &program, "no filter at all", 1, 0xffff0000), 0);
}

TEST_F(SavefileDevice, TellsALinkTypeOtherThanEthernet) {
    constexpr u32 kRawIp = 101;
    Save({{0, FrameOf(1)}}, kRawIp);
    ASSERT_TRUE(Open(30));
    EXPECT_NE(capture.datalink(handle), 1);
}

TEST_F(SavefileDevice, OfATornFileGivesTheFramesBeforeTheTearThenAnErrorThenSilence) {
    Save({{0, FrameOf(1)}, {0, FrameOf(2)}}, kLinkTypeEthernet, 10);
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 1);
    EXPECT_LT(Read(), 0);
    Close();
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 0);
}

TEST_F(SavefileDevice, OfAFileWithoutFramesGivesTheEnd) {
    Save({});
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), kEndOfFile);
    EXPECT_EQ(Read(), 0);
}

TEST_F(SavefileDevice, IsNotOpenedWhereTheFileIsMissingOrNoSavefile) {
    EXPECT_FALSE(Open(30));
    EXPECT_STRNE(errors, "");
    EXPECT_FALSE(OpenSource("file://" + folder.Path(), 30));
    EXPECT_FALSE(OpenSource("file://", 30));
    WriteFile(path, "no savefile, but a text of more than twenty-four bytes");
    EXPECT_FALSE(Open(30));
    WriteFile(path, SavefileBytes({}).substr(0, 10));
    EXPECT_FALSE(Open(30));
}

TEST_F(SavefileDevice, OpensAsSoonAsTheFileIsThere) {
    EXPECT_FALSE(Open(30));
    Save({{0, FrameOf(1)}});
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
}

TEST_F(SavefileDevice, SurvivesTimeStampsThatNoCaptureHas) {
    std::string bytes = SavefileBytes({{0, FrameOf(1)}, {0, FrameOf(2)}, {0, FrameOf(3)}});
    constexpr std::size_t kHeader = 24, kRecord = 16 + 60;
    bytes.replace(kHeader + kRecord, 8, "\xff\xff\xff\xff\xff\xff\xff\xff");
    bytes.replace(kHeader + 2 * kRecord, 8, "\xff\xff\xff\x7f\xff\xff\xff\xff");
    WriteFile(path, bytes);
    ASSERT_TRUE(Open(30));
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(host, 2);
    EXPECT_EQ(Read(), 0) << "the third frame is due in decades";
}

}  // namespace vardel::test

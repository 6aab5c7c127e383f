// The share scan of a real server.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "platform/ShareEnumeration.h"
#include "tests/live/OwnNetwork.h"
#include "tests/live/SambaServer.h"
#include "watchers/ShareScan.h"

namespace vardel::test {

namespace {

constexpr char kServer[] = "\\\\127.0.0.1";
// A program that ends waits 15 s for its threads.
constexpr double kLongestAnswerSeconds = 14;

// Listens on a port of loopback; nobody ever reads what connects.
class MuteServer {
  public:
    explicit MuteServer(u16 port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        const int on = 1;
        setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        listens_ = bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(socket_, 16) == 0;
    }
    ~MuteServer() { close(socket_); }
    MuteServer(const MuteServer&) = delete;
    MuteServer& operator=(const MuteServer&) = delete;
    bool Listens() const { return listens_; }

  private:
    const int socket_;
    bool listens_ = false;
};

class ShareLive : public testing::Test {
  protected:
    std::string FileShare(const std::string& name, const std::string& comment) {
        return "[" + name + "]\npath = " + server.Folder() + "/files\ncomment = " + comment + "\nguest ok = yes\n";
    }
    std::string PrinterShare(const std::string& name) {
        return "[" + name + "]\npath = " + server.Folder() + "/files\nprintable = yes\nguest ok = yes\n";
    }
    u32 Ask() {
        u32 handle = 0;
        std::vector<ShareEntry> entries;
        const u32 result = SystemShareEnumeration().Enumerate(kServer, handle, entries);
        EXPECT_EQ(handle, 0u);
        found.clear();
        for (const ShareEntry& entry : entries) found[entry.name] = entry;
        return result;
    }

    SambaServer server;
    std::map<std::string, ShareEntry> found;
};

TEST_F(ShareLive, ListsNamesTypesAndRemarks) {
    ASSERT_TRUE(server.Start("", FileShare("Photos", "für alle") + PrinterShare("Laser"))) << server.Log();
    ASSERT_EQ(Ask(), kAllShares) << server.Log();
    ASSERT_TRUE(found.count("Photos") && found.count("Laser") && found.count("IPC$")) << server.Log();
    EXPECT_EQ(found["Photos"].type, 0u);
    EXPECT_EQ(found["Photos"].remark, "für alle");
    EXPECT_EQ(found["Laser"].type, 1u);
    EXPECT_EQ(found["IPC$"].type, 3u);
    EXPECT_EQ(found["IPC$"].remark, "IPC Service (test)");
    EXPECT_EQ(found.size(), 3u);
}

TEST_F(ShareLive, LeavesWhatTheLibraryDoesNotGiveEmpty) {
    ASSERT_TRUE(server.Start("", FileShare("Photos", ""))) << server.Log();
    ASSERT_EQ(Ask(), kAllShares);
    const ShareEntry& photos = found["Photos"];
    EXPECT_EQ(photos.remark, "");
    EXPECT_EQ(photos.path, "");
    EXPECT_EQ(photos.permissions, 0u);
    EXPECT_EQ(photos.maxUses, 0u);
    EXPECT_EQ(photos.currentUses, 0u);
}

TEST_F(ShareLive, CutsLongTextsBetweenTwoCharacters) {
    std::string remark;
    for (int i = 0; i < 99; ++i) remark += 'x';
    ASSERT_TRUE(server.Start("", FileShare("Photos", remark + "üüü"))) << server.Log();
    ASSERT_EQ(Ask(), kAllShares);
    EXPECT_EQ(found["Photos"].remark, remark);
}

TEST_F(ShareLive, ServerThatListsNothingToGuestsRefuses) {
    ASSERT_TRUE(server.Start("restrict anonymous = 2\nmap to guest = Never", FileShare("Photos", ""))) << server.Log();
    const u32 result = Ask();
    EXPECT_NE(result, kAllShares);
    EXPECT_NE(result, kMoreShares);
    EXPECT_TRUE(found.empty());
}

TEST_F(ShareLive, HostWithoutAServerRefuses) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(Ask(), kAllShares);
    EXPECT_TRUE(found.empty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
}

TEST_F(ShareLive, ServerThatAcceptsAndNeverAnswersIsGivenUp) {
    const MuteServer direct(445), overNetBios(139);
    ASSERT_TRUE(direct.Listens() && overNetBios.Listens());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(Ask(), kAllShares);
    EXPECT_TRUE(found.empty());
    const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GT(seconds, 5) << "it was not waited for";
    EXPECT_LT(seconds, kLongestAnswerSeconds);
}

TEST_F(ShareLive, ScanFindsThreeSharesThenNoneThenTheOneThatWasAdded) {
    const std::string first = FileShare("Photos", "") + PrinterShare("Laser");
    ASSERT_TRUE(server.Start("", first)) << server.Log();
    VardelData data(SystemServices());
    HostRecord& host = *data.Adopt(std::make_unique<HostRecord>());
    host.ip = "127.0.0.1";
    host.hostName = "nas";
    const ThreadParams params;
    const auto scan = [&] {
        data.newShares.Clear();
        ScanShares(host, data, params);
        return data.newShares.Count();
    };
    EXPECT_EQ(scan(), 3u) << server.Log();
    EXPECT_EQ(scan(), 0u);
    server.Configure("", first + FileShare("Music", ""));
    EXPECT_EQ(scan(), 1u);
    EXPECT_STREQ((*data.newShares.TakeFront())->name.GetContent(), "Music");
    EXPECT_EQ(host.shares.Count(), 4u);

    server.Stop();
    EXPECT_EQ(scan(), 0u);
    EXPECT_EQ(host.shareScanRefused, 1);
    EXPECT_EQ(host.shares.Count(), 4u) << "the old ones stay";
}

}  // namespace

}  // namespace vardel::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string why = vardel::test::EnterOwnNetwork();
    if (why.empty() && std::system("ip link set lo up") != 0) why = "no loopback interface";
    if (!why.empty()) {
        std::fprintf(stderr, "the share scan can't be tested here: %s\n", why.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}

#include "watchers/ShareAccesses.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

#include "capture/EventMap.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

using Lines = std::vector<std::string>;

ServerConnection Row(const char* computer, const char* share, const char* user, i32 activeTime = 10) {
    return {.computer = computer, .share = share, .user = user, .activeTime = activeTime};
}

class ShareAccesses : public testing::Test {
  protected:
    ShareAccesses() { TheEventMap().Clear(); }
    ~ShareAccesses() override { TheEventMap().Clear(); }

    void Take(const ServerConnection& connection) { TakeConnection(data, connection); }
    const RemoteAccess* Find(const ServerConnection& connection) {
        ReadPin pin;
        const auto* node = data.remoteAccesses.Find(RemoteAccessKey(connection));
        return node ? node->Value() : nullptr;
    }
    // "kind host|info|text" of each event.
    Lines Events() {
        Lines lines;
        TheEventMap().ForEach([&](i32, const EventRecord* event) {
            lines.push_back(std::to_string(event->kind) + " " + event->host.GetContent() + "|" +
                            event->info.GetContent() + "|" + event->text.GetContent());
        });
        return lines;
    }
    std::vector<RemoteAccess*> Waiting() {
        std::vector<RemoteAccess*> waiting;
        data.shareAccesses.ForEach([&](RemoteAccess* access) { return waiting.push_back(access), true; });
        return waiting;
    }
    void KnowHost(const char* ip) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip;
        data.arpMap.Insert(ip, host);
    }
    static u32 Address(u8 a, u8 b, u8 c, u8 d) {
        const u8 octets[] = {a, b, c, d};
        u32 address;
        std::memcpy(&address, octets, sizeof address);
        return address;
    }

    test::TestServices system;
    VardelData data{system.services};
};

TEST_F(ShareAccesses, ANewConnectionIsToldRecordedAndHandedOn) {
    Take(Row("10.0.0.5", "Public", "ann"));
    EXPECT_EQ(Events(), (Lines{"6 10.0.0.5|Public|ann"}));
    const RemoteAccess* access = Find(Row("10.0.0.5", "Public", "ann"));
    ASSERT_NE(access, nullptr);
    EXPECT_TRUE(access->computer == "10.0.0.5");
    EXPECT_TRUE(access->share == "Public");
    EXPECT_TRUE(access->user == "ann");
    EXPECT_EQ(access->activeTime, 0);
    EXPECT_EQ(access->previousActiveTime, 0);
    ASSERT_EQ(Waiting().size(), 1u);
    EXPECT_EQ(Waiting()[0], access);
}

TEST_F(ShareAccesses, AClientThatStaysIsToldOnceAndItsTimeFollows) {
    const i32 times[] = {10, 11, 12, 13};
    const i32 now[] = {0, 11, 12, 13}, before[] = {0, 0, 11, 12};
    for (int pass = 0; pass < 4; ++pass) {
        Take(Row("10.0.0.5", "Public", "ann", times[pass]));
        const RemoteAccess* access = Find(Row("10.0.0.5", "Public", "ann"));
        EXPECT_EQ(access->activeTime, now[pass]);
        EXPECT_EQ(access->previousActiveTime, before[pass]);
    }
    EXPECT_EQ(Events().size(), 1u);
    EXPECT_EQ(Waiting().size(), 1u);
}

TEST_F(ShareAccesses, AClientThatComesBackIsNotToldAgain) {
    Take(Row("10.0.0.5", "Public", "ann"));
    data.shareAccesses.Clear();
    Take(Row("10.0.0.5", "Public", "ann", 1));
    EXPECT_TRUE(Waiting().empty());
    EXPECT_EQ(Events().size(), 1u);
    EXPECT_EQ(data.remoteAccesses.Count(), 1u);
}

TEST_F(ShareAccesses, AnotherShareOrUserOfTheSameComputerIsAnotherAccess) {
    Take(Row("10.0.0.5", "Public", "ann"));
    Take(Row("10.0.0.5", "Music", "ann"));
    Take(Row("10.0.0.5", "Public", "bob"));
    EXPECT_EQ(data.remoteAccesses.Count(), 3u);
    EXPECT_EQ(Waiting().size(), 3u);
    EXPECT_EQ(Events().size(), 3u);
}

TEST_F(ShareAccesses, TextsThatJoinAlikeAreOneAccess) {
    EXPECT_EQ(RemoteAccessKey(Row("10.0.0.5", "Public", "ann")), TcString("10.0.0.5Publicann").GetHashNum());
    Take(Row("10.0.0.5", "ab", "c"));
    Take(Row("10.0.0.5", "a", "bc"));
    EXPECT_EQ(data.remoteAccesses.Count(), 1u);
}

TEST_F(ShareAccesses, AnEmptyUserIsToldAsAnEmptyText) {
    Take(Row("10.0.0.5", "IPC$", ""));
    EXPECT_EQ(Events(), (Lines{"6 10.0.0.5|IPC$|"}));
    EXPECT_EQ(Waiting().size(), 1u);
}

TEST_F(ShareAccesses, RowsWithoutComputerOrShareArePassedOver) {
    Take(Row("", "Public", "ann"));
    Take(Row("10.0.0.5", "", "ann"));
    EXPECT_TRUE(data.remoteAccesses.IsEmpty());
    EXPECT_TRUE(Waiting().empty());
    EXPECT_TRUE(Events().empty());
    EXPECT_TRUE(system.arpRequests.asked.empty());
}

TEST_F(ShareAccesses, AKeyWithoutARecordIsLeftAlone) {
    data.remoteAccesses.Insert(RemoteAccessKey(Row("10.0.0.5", "Public", "ann")), nullptr);
    Take(Row("10.0.0.5", "Public", "ann"));
    EXPECT_TRUE(Events().empty());
    EXPECT_TRUE(Waiting().empty());
}

TEST_F(ShareAccesses, ATimeThatIsNotToldIsKeptAsMinusOne) {
    Take(Row("10.0.0.5", "Public", "ann", 5));
    Take(Row("10.0.0.5", "Public", "ann", 6));
    Take(Row("10.0.0.5", "Public", "ann", -1));
    EXPECT_EQ(Find(Row("10.0.0.5", "Public", "ann"))->activeTime, -1);
    EXPECT_EQ(Find(Row("10.0.0.5", "Public", "ann"))->previousActiveTime, 6);
}

TEST_F(ShareAccesses, TheHandingOnWaitsForTheFence) {
    data.fences.CreateAll();
    data.fences.Raise(Fence::Shares);
    std::atomic<bool> recorded{false};
    ThreadHandle thread = nullptr;
    u32 id = 0;
    struct Feeder {
        VardelData* data;
        std::atomic<bool>* done;
    } feeder{&data, &recorded};
    ASSERT_TRUE(SystemThreads().Start(
        [](void* raw) {
            const Feeder* own = static_cast<Feeder*>(raw);
            TakeConnection(*own->data, Row("10.0.0.5", "Public", "ann"));
            *own->done = true;
        },
        &feeder, thread, id));
    EXPECT_FALSE(SystemThreads().WaitAll({&thread, 1}, 100));
    EXPECT_TRUE(data.shareAccesses.IsEmpty());
    data.fences.Lower(Fence::Shares);
    EXPECT_TRUE(SystemThreads().WaitAll({&thread, 1}, 20000));
    SystemThreads().Close(thread);
    EXPECT_TRUE(recorded);
    EXPECT_EQ(Waiting().size(), 1u);
}

// Making the client known

TEST(ShareAccessAddress, ThreeDotsMakeAnAddress) {
    EXPECT_TRUE(CountsAsAddress("10.0.0.5"));
    EXPECT_TRUE(CountsAsAddress("a.b.c.d"));
    EXPECT_TRUE(CountsAsAddress("..."));
    EXPECT_FALSE(CountsAsAddress("pc.example.net"));
    EXPECT_FALSE(CountsAsAddress("10.0.0.5."));
    EXPECT_FALSE(CountsAsAddress("PC-5"));
    EXPECT_FALSE(CountsAsAddress(""));
}

TEST_F(ShareAccesses, AnUnknownAddressIsAskedForOnce) {
    Take(Row("10.0.0.5", "Public", "ann"));
    Take(Row("10.0.0.5", "Public", "ann"));
    EXPECT_EQ(system.arpRequests.asked, (Lines{"10.0.0.5"}));
    EXPECT_TRUE(system.resolver.calls.empty());
}

TEST_F(ShareAccesses, AKnownAddressIsNotAskedFor) {
    KnowHost("10.0.0.5");
    Take(Row("10.0.0.5", "Public", "ann"));
    EXPECT_TRUE(system.arpRequests.asked.empty());
    EXPECT_EQ(Waiting().size(), 1u);
}

TEST_F(ShareAccesses, ANameOfTheFormOfAnAddressIsNeverResolved) {
    Take(Row("a.b.c.d", "Public", "ann"));
    EXPECT_TRUE(system.resolver.calls.empty());
    EXPECT_EQ(system.arpRequests.asked, (Lines{"a.b.c.d"}));
}

TEST_F(ShareAccesses, ANameIsResolvedAndItsAddressAskedFor) {
    system.resolver.addresses["PC-5"] = Address(192, 168, 1, 205);
    Take(Row("PC-5", "Public", "ann"));
    EXPECT_EQ(system.resolver.calls, (Lines{"name PC-5"}));
    EXPECT_EQ(system.arpRequests.asked, (Lines{"192.168.1.205"}));
}

TEST_F(ShareAccesses, ANameWhoseAddressIsKnownIsNotAskedFor) {
    KnowHost("192.168.1.205");
    system.resolver.addresses["PC-5"] = Address(192, 168, 1, 205);
    Take(Row("PC-5", "Public", "ann"));
    EXPECT_TRUE(system.arpRequests.asked.empty());
}

TEST_F(ShareAccesses, ANameThatDoesNotResolveIsToldAllTheSame) {
    Take(Row("PC-5", "Public", "ann"));
    EXPECT_TRUE(system.arpRequests.asked.empty());
    EXPECT_EQ(Events(), (Lines{"6 PC-5|Public|ann"}));
    EXPECT_EQ(Waiting().size(), 1u);
}

}  // namespace
}  // namespace vardel

#include "watchers/ShareScan.h"

#include <gtest/gtest.h>

#include <map>
#include <unordered_map>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

using Calls = std::vector<test::ScriptedShareEnumeration::Call>;
using Answer = test::ScriptedShareEnumeration::Answer;

class ShareScan : public testing::Test {
  protected:
    ShareScan() : host(*data.Adopt(std::make_unique<HostRecord>())) {
        host.ip = "10.0.0.5";
        host.hostName = "nas";
    }
    void Scan() { ScanShares(host, data, params); }
    void Offers(std::vector<ShareEntry> entries, u32 result = kAllShares, u32 nextHandle = 0) {
        enumeration.answers.push_back({result, std::move(entries), nextHandle});
    }
    static ShareEntry Share(const std::string& name, u32 type = 0) {
        return {.name = name, .type = type, .remark = {}, .path = {}};
    }
    std::vector<std::string> NewShares() {
        std::vector<std::string> names;
        data.newShares.ForEach([&](const NetShare* share) {
            names.push_back(share->name.GetContent());
            return true;
        });
        return names;
    }
    const NetShare* Find(const std::string& name) {
        const NetShare* found = nullptr;
        host.shares.ForEach([&](i32, const NetShare* share) {
            if (share->name == name.c_str()) found = share;
        });
        return found;
    }

    test::TestServices system;
    test::ScriptedShareEnumeration& enumeration = system.shareEnumeration;
    VardelData data{system.services};
    HostRecord& host;
    ThreadParams params;
};

struct ClassCase {
    u32 typeWord;
    i32 shareClass;
};
class ShareClassTest : public testing::TestWithParam<ClassCase> {};

TEST_P(ShareClassTest, IsTakenFromTheWholeTypeWord) {
    EXPECT_EQ(ShareClassOf(GetParam().typeWord), GetParam().shareClass);
}

INSTANTIATE_TEST_SUITE_P(Rows, ShareClassTest,
                         testing::Values(ClassCase{0, 1}, ClassCase{1, 3}, ClassCase{2, 5}, ClassCase{3, 4},
                                         ClassCase{0x80000000, 2}, ClassCase{0x80000001, 0}, ClassCase{0x80000002, 0},
                                         ClassCase{0x80000003, 0}, ClassCase{0x40000000, 0}, ClassCase{4, 0},
                                         ClassCase{0xffffffff, 0}));

TEST_F(ShareScan, AsksTheHostByItsAddress) {
    Offers({});
    Scan();
    EXPECT_EQ(enumeration.calls, (Calls{{"\\\\10.0.0.5", 0}}));
    EXPECT_EQ(host.shares.Count(), 0u);
}

TEST_F(ShareScan, CutsTheServerNameAt260Bytes) {
    host.ip = std::string(400, '1').c_str();
    Offers({});
    Scan();
    EXPECT_EQ(enumeration.calls.at(0).server, "\\\\" + std::string(258, '1'));
}

TEST_F(ShareScan, RecordsThreeSharesAtTheFirstScanAndNoneAtTheSecond) {
    Offers({Share("Photos"), Share("Music"), Share("IPC$", 3)});
    Offers({Share("Photos"), Share("Music"), Share("IPC$", 3)});
    Scan();
    EXPECT_EQ(host.shares.Count(), 3u);
    EXPECT_EQ(NewShares(), (std::vector<std::string>{"Photos", "Music", "IPC$"}));
    data.newShares.Clear();
    Scan();
    EXPECT_EQ(host.shares.Count(), 3u);
    EXPECT_TRUE(NewShares().empty());
}

TEST_F(ShareScan, FindsAShareThatWasAddedLater) {
    Offers({Share("Photos")});
    Offers({Share("Photos"), Share("Music")});
    Scan();
    data.newShares.Clear();
    Scan();
    EXPECT_EQ(NewShares(), std::vector<std::string>{"Music"});
    EXPECT_EQ(host.shares.Count(), 2u);
}

TEST_F(ShareScan, TakesEveryField) {
    Offers({{.name = "Photos",
             .type = 0x80000000,
             .remark = "for all",
             .permissions = 127,
             .maxUses = 0xffffffff,
             .currentUses = 3,
             .path = "D:\\Photos"}});
    Scan();
    const NetShare* share = Find("Photos");
    ASSERT_NE(share, nullptr);
    EXPECT_STREQ(share->hostName.GetContent(), "nas");
    EXPECT_STREQ(share->ip.GetContent(), "10.0.0.5");
    EXPECT_TRUE(share->unused.IsEmpty());
    EXPECT_EQ(share->type, kSpecialDiskShare);
    EXPECT_STREQ(share->remark.GetContent(), "for all");
    EXPECT_EQ(share->permissions, 127u);
    EXPECT_EQ(share->maxUses, 0xffffffffu);
    EXPECT_EQ(share->currentUses, 3u);
    EXPECT_STREQ(share->path.GetContent(), "D:\\Photos");
    EXPECT_TRUE(host.shares.Has(TcString("Photos").GetHashNum()));
}

TEST_F(ShareScan, LeavesPathAndRemarkEmptyWhereTheHostGivesNone) {
    Offers({Share("Photos")});
    Scan();
    EXPECT_TRUE(Find("Photos")->path.IsEmpty());
    EXPECT_TRUE(Find("Photos")->remark.IsEmpty());
}

TEST_F(ShareScan, HiddenInterprocessShareIsUnclassified) {
    Offers({Share("IPC$", 0x80000003)});
    Scan();
    EXPECT_EQ(Find("IPC$")->type, kUnclassifiedShare);
}

TEST_F(ShareScan, NeverUpdatesAShareAndKeepsOneThatVanished) {
    Offers({Share("Photos", 0), Share("Music", 0)});
    Offers({Share("Photos", 1)});
    Scan();
    const NetShare* before = Find("Photos");
    Scan();
    EXPECT_EQ(Find("Photos"), before);
    EXPECT_EQ(before->type, kDiskShare);
    EXPECT_NE(Find("Music"), nullptr);
}

TEST_F(ShareScan, GoesOnWithTheResumeHandleWhileThereIsMore) {
    Offers({Share("a")}, kMoreShares, 7);
    Offers({}, kMoreShares, 9);
    Offers({Share("b")});
    Scan();
    EXPECT_EQ(enumeration.calls, (Calls{{"\\\\10.0.0.5", 0}, {"\\\\10.0.0.5", 7}, {"\\\\10.0.0.5", 9}}));
    EXPECT_EQ(NewShares(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(host.shareScanRefused, 0);
}

TEST_F(ShareScan, BeginsEachScanWithAClearHandle) {
    Offers({}, kMoreShares, 7);
    Offers({}, kAllShares, 99);
    Offers({});
    Scan();
    Scan();
    EXPECT_EQ(enumeration.calls.at(2).resumeHandle, 0u);
}

TEST_F(ShareScan, RefusalMarksTheHostAndKeepsItsOldShares) {
    Offers({Share("Photos")});
    Scan();
    enumeration.answers.push_back({5, {Share("never seen")}, 0});
    Scan();
    EXPECT_EQ(host.shareScanRefused, 1);
    EXPECT_EQ(host.shareScanBusy, 0);
    EXPECT_EQ(host.shares.Count(), 1u);
    EXPECT_EQ(NewShares().size(), 1u);
}

TEST_F(ShareScan, RefusalInTheMiddleKeepsWhatCameBefore) {
    Offers({Share("a")}, kMoreShares, 7);
    enumeration.answers.push_back({53, {}, 0});
    Scan();
    EXPECT_EQ(host.shareScanRefused, 1);
    EXPECT_EQ(host.shares.Count(), 1u);
    EXPECT_EQ(enumeration.calls.size(), 2u);
}

TEST_F(ShareScan, AnyResultButAllAndMoreIsARefusal) {
    for (const u32 result : {1u, 5u, 53u, 233u, 235u, 2127u, 0xffffffffu}) {
        host.shareScanRefused = 0;
        enumeration.answers.push_back({result, {}, 0});
        Scan();
        EXPECT_EQ(host.shareScanRefused, 1) << result;
    }
}

TEST_F(ShareScan, IsBusyForItsTime) {
    int busyInside = -1;
    enumeration.onCall = [&] { busyInside = host.shareScanBusy; };
    Offers({});
    Scan();
    EXPECT_EQ(busyInside, 1);
    EXPECT_EQ(host.shareScanBusy, 0);
}

TEST_F(ShareScan, EndsOnTheStopRequestWithoutARefusal) {
    for (int i = 0; i < 5; ++i) Offers({}, kMoreShares, 1);
    enumeration.onCall = [&] { params.stop = 1; };
    Scan();
    EXPECT_EQ(enumeration.calls.size(), 1u);
    EXPECT_EQ(host.shareScanRefused, 0);
    EXPECT_EQ(host.shareScanBusy, 0);
}

TEST_F(ShareScan, HostThatAlwaysPromisesMoreIsLeftInTheEnd) {
    for (int i = 0; i < 2000; ++i) Offers({Share("same")}, kMoreShares, 1);
    Scan();
    EXPECT_EQ(enumeration.calls.size(), 1000u);
    EXPECT_EQ(host.shareScanRefused, 0);
}

TEST_F(ShareScan, HostThatInventsSharesWithoutEndFillsNoMemory) {
    int number = 0;
    for (int answer = 0; answer < 80; ++answer) {
        std::vector<ShareEntry> entries;
        for (int i = 0; i < 1000; ++i) entries.push_back(Share("s" + std::to_string(number++)));
        Offers(std::move(entries), answer < 79 ? kMoreShares : kAllShares, 1);
    }
    Scan();
    EXPECT_EQ(host.shares.Count(), 65536u);
    EXPECT_EQ(NewShares().size(), 65536u);
}

// The look-up goes by the number of the name and never by the name.
TEST_F(ShareScan, TwoNamesOfOneHashNumberAreOneShare) {
    std::unordered_map<i32, std::string> seen;
    std::string first, second;
    for (int i = 0; first.empty() && i < 1'000'000; ++i) {
        const std::string name = "s" + std::to_string(i);
        const auto [at, fresh] = seen.emplace(TcString(name.c_str()).GetHashNum(), name);
        if (!fresh) first = at->second, second = name;
    }
    ASSERT_FALSE(first.empty());
    Offers({Share(first), Share(second)});
    Scan();
    EXPECT_EQ(NewShares(), std::vector<std::string>{first});
}

TEST_F(ShareScan, SharesStayValidWhenTheHostIsDeleted) {
    data.arpMap.Insert("10.0.0.5", &host);
    Offers({Share("Photos")});
    Scan();
    ASSERT_TRUE(data.DeleteHost("10.0.0.5"));
    EXPECT_EQ(NewShares(), std::vector<std::string>{"Photos"});
}

TEST_F(ShareScan, HostsHaveSharesOfTheirOwn) {
    HostRecord& other = *data.Adopt(std::make_unique<HostRecord>());
    other.ip = "10.0.0.6";
    Offers({Share("Photos")});
    Offers({Share("Photos")});
    Scan();
    ScanShares(other, data, params);
    EXPECT_EQ(NewShares(), (std::vector<std::string>{"Photos", "Photos"}));
    EXPECT_EQ(other.shares.Count(), 1u);
}

}  // namespace
}  // namespace vardel

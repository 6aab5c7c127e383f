// The share enumeration with the two calls of the network API scripted, and once with the system's own.
#include <gtest/gtest.h>

#include <deque>

#include "platform/ShareEnumeration_win.h"

namespace vardel {
namespace {

struct Answer {
    NET_API_STATUS result;
    std::vector<SHARE_INFO_502> shares;
    DWORD nextHandle = 0;
    bool hasBuffer = true;
};

// What the calls are asked and answer; static, since the calls are plain functions.
struct Script {
    std::deque<Answer> answers;
    std::vector<std::wstring> servers;
    std::vector<DWORD> levels, limits, handles;
    std::vector<std::vector<SHARE_INFO_502>*> handedOut, freed;
};
Script script;

NET_API_STATUS WINAPI Enumerate(LPWSTR server, DWORD level, LPBYTE* buffer, DWORD limit, LPDWORD entriesRead,
                                LPDWORD totalEntries, LPDWORD resumeHandle) {
    script.servers.push_back(server);
    script.levels.push_back(level);
    script.limits.push_back(limit);
    script.handles.push_back(*resumeHandle);
    Answer answer = script.answers.front();
    script.answers.pop_front();
    *resumeHandle = answer.nextHandle;
    *entriesRead = *totalEntries = static_cast<DWORD>(answer.shares.size());
    if (answer.hasBuffer) {
        script.handedOut.push_back(new std::vector<SHARE_INFO_502>(answer.shares));
        *buffer = reinterpret_cast<LPBYTE>(script.handedOut.back()->data());
        // An answer without entries has a buffer all the same.
        if (answer.shares.empty()) *buffer = reinterpret_cast<LPBYTE>(script.handedOut.back());
    }
    return answer.result;
}

NET_API_STATUS WINAPI Free(LPVOID buffer) {
    for (auto* shares : script.handedOut)
        if (shares->data() == buffer || static_cast<void*>(shares) == buffer) script.freed.push_back(shares);
    return NERR_Success;
}

SHARE_INFO_502 Share(const wchar_t* name, DWORD type, const wchar_t* remark = nullptr, const wchar_t* path = nullptr) {
    SHARE_INFO_502 share{};
    share.shi502_netname = const_cast<wchar_t*>(name);
    share.shi502_type = type;
    share.shi502_remark = const_cast<wchar_t*>(remark);
    share.shi502_path = const_cast<wchar_t*>(path);
    return share;
}

class ShareEnumerationTest : public testing::Test {
  protected:
    ShareEnumerationTest() { script = {}; }
    ~ShareEnumerationTest() override {
        for (auto* shares : script.handedOut) delete shares;
        script = {};
    }
    u32 Ask() { return enumeration.Enumerate("\\\\10.0.0.5", handle, entries); }

    WindowsShareEnumeration enumeration{{&Enumerate, &Free}};
    u32 handle = 0;
    std::vector<ShareEntry> entries;
};

TEST_F(ShareEnumerationTest, AsksAtLevel502WithoutALimit) {
    script.answers.push_back({NERR_Success, {}, 0, false});
    EXPECT_EQ(Ask(), kAllShares);
    EXPECT_EQ(script.servers, std::vector<std::wstring>{L"\\\\10.0.0.5"});
    EXPECT_EQ(script.levels, std::vector<DWORD>{502});
    EXPECT_EQ(script.limits, std::vector<DWORD>{static_cast<DWORD>(-1)});
    EXPECT_TRUE(script.freed.empty());
}

TEST_F(ShareEnumerationTest, TakesEveryField) {
    SHARE_INFO_502 share = Share(L"Photos", 0x80000000, L"for all", L"D:\\Photos");
    share.shi502_permissions = 127;
    share.shi502_max_uses = 0xffffffff;
    share.shi502_current_uses = 3;
    script.answers.push_back({NERR_Success, {share, Share(L"IPC$", 0x80000003)}});
    EXPECT_EQ(Ask(), kAllShares);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].name, "Photos");
    EXPECT_EQ(entries[0].type, 0x80000000u);
    EXPECT_EQ(entries[0].remark, "for all");
    EXPECT_EQ(entries[0].permissions, 127u);
    EXPECT_EQ(entries[0].maxUses, 0xffffffffu);
    EXPECT_EQ(entries[0].currentUses, 3u);
    EXPECT_EQ(entries[0].path, "D:\\Photos");
    EXPECT_EQ(entries[1].name, "IPC$");
    EXPECT_EQ(entries[1].type, 0x80000003u);
    EXPECT_EQ(entries[1].remark, "");
    EXPECT_EQ(entries[1].path, "");
    EXPECT_EQ(script.freed, script.handedOut);
}

TEST_F(ShareEnumerationTest, CarriesTheResumeHandleAndFreesEachBuffer) {
    script.answers.push_back({ERROR_MORE_DATA, {Share(L"a", 0)}, 7});
    script.answers.push_back({NERR_Success, {Share(L"b", 1)}, 0});
    EXPECT_EQ(Ask(), kMoreShares);
    EXPECT_EQ(handle, 7u);
    EXPECT_EQ(Ask(), kAllShares);
    EXPECT_EQ(script.handles, (std::vector<DWORD>{0, 7}));
    EXPECT_EQ(entries.size(), 2u);
    EXPECT_EQ(script.freed, script.handedOut);
}

TEST_F(ShareEnumerationTest, FreesTheBufferOfAnAnswerWithoutEntries) {
    script.answers.push_back({NERR_Success, {}});
    EXPECT_EQ(Ask(), kAllShares);
    EXPECT_TRUE(entries.empty());
    EXPECT_EQ(script.freed, script.handedOut);
}

TEST_F(ShareEnumerationTest, TakesNothingFromARefusalButFreesItsBuffer) {
    script.answers.push_back({ERROR_ACCESS_DENIED, {Share(L"a", 0)}});
    EXPECT_EQ(Ask(), static_cast<u32>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(entries.empty());
    EXPECT_EQ(script.freed, script.handedOut);
}

TEST(NarrowShareText, IsEmptyForNull) { EXPECT_EQ(NarrowShareText(nullptr), ""); }

TEST(NarrowShareText, TakesAHundredBytesAndNoMore) {
    EXPECT_EQ(NarrowShareText(std::wstring(100, L'x').c_str()), std::string(100, 'x'));
    EXPECT_EQ(NarrowShareText(std::wstring(101, L'x').c_str()), std::string(100, 'x'));
    EXPECT_EQ(NarrowShareText(std::wstring(5000, L'x').c_str()), std::string(100, 'x'));
    EXPECT_EQ(NarrowShareText(L""), "");
}

TEST(SystemShareEnumeration, AnswersOrRefusesAndNeverHangsOnThisMachine) {
    u32 handle = 0;
    std::vector<ShareEntry> entries;
    const u32 result = SystemShareEnumeration().Enumerate("\\\\127.0.0.1", handle, entries);
    EXPECT_TRUE(result == kAllShares || entries.empty());
}

}  // namespace
}  // namespace vardel

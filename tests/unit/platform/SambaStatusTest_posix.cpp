#include "platform/SambaStatus_posix.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/support/SampleBytes.h"

namespace vardel {
namespace {

constexpr i64 kNow = 1714972200;  // 2024-05-06 05:10:00 UTC

// One connection whose members are as given, of a session 1 of "ann".
std::vector<ServerConnection> RowsOf(const std::string& members) {
    return ConnectionsOfSambaStatus(
        R"({"sessions": {"1": {"username": "ann"}, "2": 5, "3": {"username": null}}, "tcons": {"7": {)" + members + "}}}",
        kNow);
}

TEST(SambaStatus, GivesARowForEachConnectedShare) {
    std::vector<ServerConnection> rows = ConnectionsOfSambaStatus(test::SampleBytes("samba/two-clients.json"), kNow);
    ASSERT_EQ(rows.size(), 3u);
    std::sort(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.share < b.share; });
    EXPECT_EQ(rows[0].share, "IPC$");
    EXPECT_EQ(rows[0].computer, "pc-6");
    EXPECT_EQ(rows[0].user, "");
    EXPECT_EQ(rows[0].activeTime, 0);
    EXPECT_EQ(rows[1].share, "Music");
    EXPECT_EQ(rows[1].computer, "10.0.0.5");
    EXPECT_EQ(rows[1].user, "ann");
    EXPECT_EQ(rows[1].activeTime, 1);
    EXPECT_EQ(rows[2].share, "Public");
    EXPECT_EQ(rows[2].activeTime, 111);
}

TEST(SambaStatus, AServerWithoutClientsGivesNoRow) {
    const std::string sample = test::SampleBytes("samba/nobody.json");
    ASSERT_FALSE(sample.empty());
    EXPECT_TRUE(ConnectionsOfSambaStatus(sample, kNow).empty());
}

TEST(SambaStatus, EveryTornSampleGivesNoRow) {
    const std::string sample = test::SampleBytes("samba/two-clients.json");
    const std::size_t end = sample.rfind('}');
    for (std::size_t length = 0; length <= end; length += 7)
        EXPECT_TRUE(ConnectionsOfSambaStatus(sample.substr(0, length), kNow).empty()) << length;
}

TEST(SambaStatus, AnotherDocumentGivesNoRow) {
    for (const char* text : {"", "null", "[]", "7", "\"tcons\"", "{}", R"({"tcons": []})", R"({"tcons": null})",
                             R"({"tcons": {"1": 5, "2": [], "3": null}})", "usage: smbstatus", "{\"tcons\": {\"\xff\": {}}}"})
        EXPECT_TRUE(ConnectionsOfSambaStatus(text, kNow).empty()) << text;
    EXPECT_TRUE(ConnectionsOfSambaStatus(std::string(10000, '['), kNow).empty());
}

TEST(SambaStatus, ARowNeedsAShareAndAComputer) {
    EXPECT_EQ(RowsOf(R"("service": "s", "machine": "m")").size(), 1u);
    EXPECT_TRUE(RowsOf(R"("service": "s")").empty());
    EXPECT_TRUE(RowsOf(R"("machine": "m")").empty());
    EXPECT_TRUE(RowsOf(R"("service": 5, "machine": "m")").empty());
    EXPECT_TRUE(RowsOf(R"("service": "s", "machine": {})").empty());
    EXPECT_TRUE(RowsOf(R"("service": "", "machine": "m")").empty());
}

TEST(SambaStatus, TheUserIsThatOfTheSession) {
    const auto user = [](const char* session) {
        return RowsOf(std::string(R"("service": "s", "machine": "m", "session_id": )") + session).at(0).user;
    };
    EXPECT_EQ(user(R"("1")"), "ann");
    for (const char* session : {R"("2")", R"("3")", R"("4")", "1", "null"}) EXPECT_EQ(user(session), "") << session;
    EXPECT_EQ(ConnectionsOfSambaStatus(R"({"tcons": {"7": {"service": "s", "machine": "m"}}})", kNow).size(), 1u);
}

TEST(SambaStatus, AMappedAddressIsGivenPlain) {
    const auto computer = [](const char* machine) {
        return RowsOf(std::string(R"("service": "s", "machine": ")") + machine + "\"").at(0).computer;
    };
    EXPECT_EQ(computer("::ffff:10.0.0.5"), "10.0.0.5");
    EXPECT_EQ(computer("fe80::1"), "fe80::1");
    EXPECT_EQ(computer("::ffff:1"), "::ffff:1");
}

TEST(SambaStatus, TextsAreCutAtAHundredBytes) {
    const std::string longText(300, 'x');
    const auto rows = RowsOf("\"service\": \"" + longText + "\", \"machine\": \"" + longText + "\"");
    EXPECT_EQ(rows.at(0).share, std::string(100, 'x'));
    EXPECT_EQ(rows.at(0).computer, std::string(100, 'x'));
}

TEST(SambaStatus, TheTimeCountsFromTheConnectionAndIsNeverNegative) {
    const auto seconds = [](const char* moment) {
        return RowsOf(std::string(R"("service": "s", "machine": "m", "connected_at": ")") + moment + "\"")
            .at(0)
            .activeTime;
    };
    EXPECT_EQ(seconds("2024-05-06T05:09:00Z"), 60);
    EXPECT_EQ(seconds("2024-05-06T05:11:00Z"), 0);
    EXPECT_EQ(seconds("1970-01-01T00:00:00Z"), kNow);
    EXPECT_EQ(seconds("yesterday"), -1);
    EXPECT_EQ(RowsOf(R"("service": "s", "machine": "m")").at(0).activeTime, -1);
}

TEST(SambaStatus, ReadsTheFormsOfAMoment) {
    for (const char* text : {"2024-05-06T05:10:00Z", "2024-05-06 05:10:00Z", "2024-05-06T07:10:00+0200",
                             "2024-05-06T07:10:00+02:00", "2024-05-06T00:40:00.999999-0430"})
        EXPECT_EQ(SecondsOfSambaTime(text), kNow) << text;
    for (const char* text :
         {"", "2024", "2024-05-06", "2024-05-06T05:10:00", "2024-05-06T05:10Z", "2024/05/06T05:10:00Z",
          "2024-13-06T05:10:00Z", "2024-02-30T05:10:00Z", "2024-05-06T24:10:00Z", "2024-05-06T05:60:00Z",
          "2024-05-06T05:10:61Z", "2024-05-06T05:10:00+2", "2024-05-06T05:10:00+24:00", "2024-05-06T05:10:00Z ",
          "2024-05-06T05:10:00+0260", "0000-01-01T00:00:00Z", "-024-05-06T05:10:00Z"})
        EXPECT_EQ(SecondsOfSambaTime(text), -1) << text;
}

}  // namespace
}  // namespace vardel

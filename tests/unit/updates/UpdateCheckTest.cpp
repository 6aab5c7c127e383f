#include "updates/UpdateCheck.h"

#include <gtest/gtest.h>

#include <string>

#include "capture/VardelData.h"
#include "platform/Process.h"
#include "tests/unit/support/LoopbackServer.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {
namespace {

const std::string kServer = "https://update.vardelwatch.example";
const std::string kProgramFile = kServer + "/download/versions/vardelwatch.version";
const std::string kListFile = kServer + "/download/versions/arplist.version";

class UpdateCheck : public testing::Test {
  protected:
    UpdateCheck() { data.settings.MACListVersion = 4; }

    bool ProgramFileHolds(const std::string& text) {
        system.http.documents[kProgramFile] = text;
        return data.CheckProgramUpdate();
    }
    bool ListFileHolds(const std::string& text) {
        system.http.documents[kListFile] = text;
        return data.CheckMacListUpdate();
    }
    std::string Offered() const { return data.newestProgramVersion.GetContent(); }

    TestServices system;
    VardelData data{system.services};
};

TEST_F(UpdateCheck, AsksTheServerForTheProgramsVersion) {
    EXPECT_TRUE(ProgramFileHolds("0.7.0.1624"));
    ASSERT_EQ(system.http.fetches.size(), 1u);
    EXPECT_EQ(system.http.fetches[0].agent, "Vardelwatch - UpdateCheck");
    EXPECT_EQ(system.http.fetches[0].url, kProgramFile);
    EXPECT_EQ(system.http.fetches[0].maxBytes, 1024u);
    EXPECT_GT(system.http.fetches[0].timeoutMs, 0u);
    EXPECT_LE(system.http.fetches[0].timeoutMs, 15000u);
}

TEST_F(UpdateCheck, AsksTheServerForTheListsVersion) {
    EXPECT_TRUE(ListFileHolds("5"));
    ASSERT_EQ(system.http.fetches.size(), 1u);
    EXPECT_EQ(system.http.fetches[0].agent, "Vardelwatch - UpdateMACCheck");
    EXPECT_EQ(system.http.fetches[0].url, kListFile);
    EXPECT_EQ(system.http.fetches[0].maxBytes, 1024u);
    EXPECT_LE(system.http.fetches[0].timeoutMs, 15000u);
}

TEST_F(UpdateCheck, TheProgramOfTodayIsNotNewer) {
    EXPECT_FALSE(ProgramFileHolds("0.7.0.1623"));
    EXPECT_EQ(Offered(), "");
}

TEST_F(UpdateCheck, ANewerProgramIsOfferedByTheTextAsItIs) {
    for (const char* text : {"0.7.0.1624", "0.7.1.0", "0.8.0", "1.0", "0.8.0.0\r\n", " 9.9 and more\n"}) {
        EXPECT_TRUE(ProgramFileHolds(text)) << text;
        EXPECT_EQ(Offered(), text);
    }
}

TEST_F(UpdateCheck, WhatIsNotNewerIsNotOffered) {
    for (const char* text : {"0.8", "1", "", "0.7.1", "-1.0", "<html>error</html>", "a.b.c.d"}) {
        data.newestProgramVersion = "0.9.0.0";
        EXPECT_FALSE(ProgramFileHolds(text)) << text;
        EXPECT_EQ(Offered(), "") << text;
    }
}

TEST_F(UpdateCheck, AFailedCheckTakesAnEarlierOfferBack) {
    EXPECT_TRUE(ProgramFileHolds("1.0"));
    system.http.documents.clear();
    EXPECT_FALSE(data.CheckProgramUpdate());
    EXPECT_EQ(Offered(), "");
}

TEST_F(UpdateCheck, AVersionEndsAtItsFirstZeroByte) {
    EXPECT_FALSE(ProgramFileHolds("0.7" + std::string(1, '\0') + ".9.9"));
    EXPECT_TRUE(ProgramFileHolds("1.0" + std::string(1, '\0') + "rest"));
    EXPECT_EQ(Offered(), "1.0");
    EXPECT_FALSE(ProgramFileHolds(std::string(1, '\0') + "1.0"));
}

TEST_F(UpdateCheck, OnlyTheFirst1024BytesAreLookedAt) {
    EXPECT_FALSE(ProgramFileHolds("1" + std::string(1023, '0') + ".0"));
    EXPECT_TRUE(ProgramFileHolds("1." + std::string(100'000, '0')));
    EXPECT_EQ(Offered().size(), 1024u);
    EXPECT_FALSE(ListFileHolds(std::string(1024, ' ') + "5"));
}

TEST_F(UpdateCheck, TheListIsComparedWithTheInstalledOne) {
    data.settings.MACListVersion = 5;
    EXPECT_FALSE(ListFileHolds("5"));
    EXPECT_EQ(data.newestMacListVersion, 1);
    data.settings.MACListVersion = 4;
    EXPECT_TRUE(ListFileHolds("5"));
    EXPECT_EQ(data.newestMacListVersion, 5);
}

TEST_F(UpdateCheck, TheListsNumberMayHaveAnythingBehindIt) {
    EXPECT_TRUE(ListFileHolds("17\r\n"));
    EXPECT_EQ(data.newestMacListVersion, 17);
    EXPECT_TRUE(ListFileHolds(" 18 of today"));
    EXPECT_EQ(data.newestMacListVersion, 18);
    EXPECT_TRUE(ListFileHolds("99999999999999999999"));
    EXPECT_EQ(data.newestMacListVersion, 2147483647);
}

TEST_F(UpdateCheck, AListThatIsNotNewerLeavesTheOfferAlone) {
    EXPECT_TRUE(ListFileHolds("9"));
    data.settings.MACListVersion = 9;
    for (const char* text : {"", "9", "8", "0", "-5", "-99999999999999999999", "<html>10</html>", "x10"}) {
        EXPECT_FALSE(ListFileHolds(text)) << text;
        EXPECT_EQ(data.newestMacListVersion, 9) << text;
    }
    system.http.documents.clear();
    EXPECT_FALSE(data.CheckMacListUpdate());
    EXPECT_EQ(data.newestMacListVersion, 9);
}

TEST_F(UpdateCheck, TheTwoChecksAreOfTheirOwn) {
    EXPECT_TRUE(ProgramFileHolds("1.0"));
    EXPECT_EQ(data.newestMacListVersion, 1);
    EXPECT_TRUE(ListFileHolds("5"));
    EXPECT_EQ(Offered(), "1.0");
    EXPECT_EQ(data.settings.MACListVersion, 4);
}

TEST_F(UpdateCheck, TheServerIsNamedBesideTheProgram) {
    const TestFolder folder;
    folder.Write("vardelwatch.ini", "[Addresses]\r\nUpdateServer=http://10.0.0.9:8080/\r\n");
    system.folders.programPath = folder.Path("vardelwatch");
    data.CheckProgramUpdate();
    data.CheckMacListUpdate();
    ASSERT_EQ(system.http.fetches.size(), 2u);
    EXPECT_EQ(system.http.fetches[0].url, "http://10.0.0.9:8080/download/versions/vardelwatch.version");
    EXPECT_EQ(system.http.fetches[1].url, "http://10.0.0.9:8080/download/versions/arplist.version");
}

// The whole way, over the system's own client.
TEST_F(UpdateCheck, FindsWhatARealServerOffers) {
    SystemProcess().StartNetwork();
    ReachLoopbackDirectly();
    {
        LoopbackServer server([](Connection& client) {
            client.Send(OkAnswer(client.Path().ends_with("arplist.version") ? "77\r\n" : "0.7.0.1624\r\n"));
        });
        const TestFolder folder;
        folder.Write("vardelwatch.ini", "[Addresses]\nUpdateServer=" + server.Url() + "\n");
        system.folders.programPath = folder.Path("vardelwatch");
        Services real = system.services.With(SystemHttp());
        VardelData own(real);
        own.settings.MACListVersion = 76;
        EXPECT_TRUE(own.CheckProgramUpdate());
        EXPECT_EQ(own.newestProgramVersion, "0.7.0.1624\r\n");
        EXPECT_TRUE(own.CheckMacListUpdate());
        EXPECT_EQ(own.newestMacListVersion, 77);
        ASSERT_EQ(server.Requests().size(), 2u);
        EXPECT_EQ(server.Requests()[0].find("GET /download/versions/vardelwatch.version HTTP/1.1\r\n"), 0u);
        EXPECT_NE(server.Requests()[0].find("\r\nUser-Agent: Vardelwatch - UpdateCheck\r\n"), std::string::npos);
        EXPECT_NE(server.Requests()[1].find("\r\nUser-Agent: Vardelwatch - UpdateMACCheck\r\n"), std::string::npos);
    }
    SystemProcess().StopNetwork();
}

}  // namespace
}  // namespace vardel::test

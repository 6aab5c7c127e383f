#include "capture/SsdpReception.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "tests/unit/support/SampleFile.h"
#include "tests/unit/support/WatchedLan.h"

namespace vardel::test {
namespace {

const std::string kIp = "10.0.0.1";
const std::string kUrl = "http://10.0.0.1:49152/description.xml";

std::string NotificationOf(const std::string& location) {
    return "NOTIFY * HTTP/1.1\r\nHOST: 239.255.255.250:1900\r\nLocation: " + location + "\r\nNTS: ssdp:alive\r\n\r\n";
}

std::string Description(const std::string& name, const std::string& url = "") {
    return "<root><device><friendlyName>" + name + "</friendlyName>" +
           (url.empty() ? "" : "<presentationURL>" + url + "</presentationURL>") + "</device></root>";
}

class Ssdp : public testing::Test {
  protected:
    Ssdp() : host(lan.Knows(kIp)) { Serves(Description("Meeting Room TV", "http://10.0.0.1:8001/")); }

    void Serves(const std::string& document) { lan.system.http.documents[kUrl] = document; }
    void Hears(const std::string& message, u16 sourcePort = 1900, u16 destinationPort = 1900) {
        lan.Says(UdpFrame{.sourceIp = kIp,
                          .sourcePort = sourcePort,
                          .destinationPort = destinationPort,
                          .payload = message});
    }
    void HearsNotification() { Hears(NotificationOf(kUrl)); }
    std::size_t Fetches() const { return lan.system.http.fetches.size(); }
    void ExpectPassedBy() {
        EXPECT_EQ(Fetches(), 0u);
        EXPECT_EQ(host.upnpDone, 0);
        EXPECT_TRUE(lan.SeenEvents().empty());
    }
    void ExpectNameless() {
        EXPECT_TRUE(host.friendlyName.IsEmpty());
        EXPECT_TRUE(lan.SeenEvents().empty());
        EXPECT_EQ(host.upnpDone, 1);
    }

    WatchedLan lan;
    HostRecord& host;
};

TEST_F(Ssdp, ANotificationNamesItsDevice) {
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "Meeting Room TV");
    EXPECT_EQ(host.presentationUrl, "http://10.0.0.1:8001/");
    EXPECT_EQ(host.upnpDone, 1);
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{11, "Meeting Room TV", kIp, "", -1}}));
}

TEST_F(Ssdp, TheDescriptionIsFetchedInOneShortRead) {
    HearsNotification();
    ASSERT_EQ(Fetches(), 1u);
    const auto& fetch = lan.system.http.fetches[0];
    EXPECT_EQ(fetch.agent, "Vardelwatch-UPNP-Resolve");
    EXPECT_EQ(fetch.url, kUrl);
    EXPECT_EQ(fetch.maxBytes, 4096u);
    EXPECT_LT(fetch.timeoutMs, 5000u);
    EXPECT_GE(fetch.timeoutMs, 1000u);
}

TEST_F(Ssdp, OtherFieldsOfTheHostAreLeftAlone) {
    host.hostName = "tv";
    host.nameUnresolved = 1;
    HearsNotification();
    EXPECT_EQ(host.hostName, "tv");
    EXPECT_EQ(host.nameUnresolved, 1);
    EXPECT_EQ(host.rowDirty, 0);
    EXPECT_EQ(host.osFromBrowse, 0);
    EXPECT_TRUE(host.os.IsEmpty());
}

TEST_F(Ssdp, AnAnswerToASearchNamesItsDeviceToo) {
    Hears("HTTP/1.1 200 OK\r\nEXT:\r\nLocation: " + kUrl + "\r\n\r\n", 1900, 50126);
    EXPECT_EQ(host.friendlyName, "Meeting Room TV");
}

TEST_F(Ssdp, EitherPortMakesAMessage) {
    Hears(NotificationOf(kUrl), 40000, 40001);
    ExpectPassedBy();
    Hears(NotificationOf(kUrl), 40000, 1900);
    EXPECT_EQ(Fetches(), 1u);
    host.upnpDone = 0;
    Hears(NotificationOf(kUrl), 1900, 40000);
    EXPECT_EQ(Fetches(), 2u);
}

TEST_F(Ssdp, ASearchRequestIsIgnored) {
    Hears("M-SEARCH * HTTP/1.1\r\nLocation: " + kUrl + "\r\n\r\n");
    ExpectPassedBy();
}

TEST_F(Ssdp, TheFirstLineMustStandFirst) {
    Hears("X: y\r\n" + NotificationOf(kUrl));
    Hears(" " + NotificationOf(kUrl));
    Hears("X: y\r\nHTTP/1.1 200 OK\r\nLocation: " + kUrl + "\r\n\r\n");
    ExpectPassedBy();
}

TEST_F(Ssdp, TheFirstLineIsComparedWhole) {
    const std::string rest = "\r\nLocation: " + kUrl + "\r\n\r\n";
    for (const char* line : {"HTTP/1.1 200 OK ", "HTTP/1.0 200 OK", "HTTP/1.1 201 OK", "http/1.1 200 ok", "HTTP/1.1 200",
                             "NOTIFY * HTTP/1.0", "NOTIFY / HTTP/1.1", "notify * http/1.1", "NOTIFY", ""})
        Hears(line + rest);
    Hears("NOTIFY * HTTP/1.1\nLocation: " + kUrl + "\r\n\r\n");
    ExpectPassedBy();
}

TEST_F(Ssdp, AHeaderInOtherLettersIsNotFoundAndTheNextMessageCounts) {
    for (const char* header : {"LOCATION: ", "location: ", "Location : "})
        Hears(std::string("NOTIFY * HTTP/1.1\r\n") + header + kUrl + "\r\n\r\n");
    ExpectPassedBy();
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "Meeting Room TV");
}

TEST_F(Ssdp, AMessageWithoutALocationLeavesTheHostOpen) {
    Hears("NOTIFY * HTTP/1.1\r\nNTS: ssdp:byebye\r\n\r\n");
    ExpectPassedBy();
}

TEST_F(Ssdp, TheLocationMustEndInALineEnd) {
    Hears("NOTIFY * HTTP/1.1\r\nLocation: " + kUrl);
    Hears("NOTIFY * HTTP/1.1\r\nLocation: " + kUrl + "\n\n");
    Hears("NOTIFY * HTTP/1.1\r\nLocation: " + kUrl + "\r");
    ExpectPassedBy();
}

TEST_F(Ssdp, BlanksAroundTheLocationGo) {
    for (const std::string& location : {" \t " + kUrl + " \t ", "\n" + kUrl + "\n", kUrl}) {
        host.upnpDone = 0;
        Hears("NOTIFY * HTTP/1.1\r\nLocation:" + location + "\r\n\r\n");
        ASSERT_FALSE(lan.system.http.fetches.empty());
        EXPECT_EQ(lan.system.http.fetches.back().url, kUrl);
    }
    EXPECT_EQ(Fetches(), 3u);
}

TEST_F(Ssdp, TheFirstLocationCountsWhereverItStands) {
    Hears("NOTIFY * HTTP/1.1\r\nContent-Location: " + kUrl + "\r\nLocation: http://10.0.0.1/other\r\n\r\n");
    ASSERT_EQ(Fetches(), 1u);
    EXPECT_EQ(lan.system.http.fetches[0].url, kUrl);
}

TEST_F(Ssdp, AMessageEndsAtItsFirstZeroByte) {
    Hears("NOTIFY * HTTP/1.1\r\n" + std::string(1, '\0') + "Location: " + kUrl + "\r\n\r\n");
    Hears("NOTIFY * HTTP/1.1\r\nLocation: " + kUrl + std::string(1, '\0') + "\r\n\r\n");
    ExpectPassedBy();
}

TEST_F(Ssdp, AHostThatArpHasNotSeenIsOpenOnceItHas) {
    const Frame message = UdpFrame{.sourceIp = "10.0.0.9", .sourcePort = 1900, .payload = NotificationOf(kUrl)};
    lan.Says(message);
    EXPECT_EQ(Fetches(), 0u);
    EXPECT_EQ(lan.FindHost("10.0.0.9"), nullptr);
    lan.Knows("10.0.0.9");
    lan.Says(message);
    EXPECT_EQ(lan.Host("10.0.0.9").friendlyName, "Meeting Room TV");
}

TEST_F(Ssdp, ALocalAdaptersRecordIsClosed) {
    host.isLocal = 1;
    HearsNotification();
    ExpectPassedBy();
}

TEST_F(Ssdp, ASecondMessageMakesNoSecondFetch) {
    HearsNotification();
    Serves(Description("Another"));
    HearsNotification();
    EXPECT_EQ(Fetches(), 1u);
    EXPECT_EQ(host.friendlyName, "Meeting Room TV");
    EXPECT_EQ(lan.SeenEvents().size(), 1u);
}

TEST_F(Ssdp, ADeadAddressCountsAsTheOneAttempt) {
    lan.system.http.documents.clear();
    HearsNotification();
    ExpectNameless();
    Serves(Description("Late"));
    HearsNotification();
    EXPECT_EQ(Fetches(), 1u);
    ExpectNameless();
}

TEST_F(Ssdp, OtherAddressesThanThoseOfTheWebCountAsDead) {
    for (const char* location : {"", " ", "file:///etc/passwd", "ftp://10.0.0.1/a", "\\\\10.0.0.1\\share", "10.0.0.1/a",
                                 "javascript:alert(1)", "http:/a", "//10.0.0.1/a"}) {
        host.upnpDone = 0;
        lan.system.http.documents[location] = Description("Opened");
        Hears(NotificationOf(location));
        EXPECT_EQ(Fetches(), 0u) << location;
        ExpectNameless();
    }
    lan.system.http.documents["HTTPS://10.0.0.1/a"] = Description("By TLS");
    host.upnpDone = 0;
    Hears(NotificationOf("HTTPS://10.0.0.1/a"));
    EXPECT_EQ(host.friendlyName, "By TLS");
}

TEST_F(Ssdp, TheNameEndsAtItsColon) {
    Serves(Description(" NAS: Living Room "));
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "NAS");
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>{{11, "NAS", kIp, "", -1}}));
}

TEST_F(Ssdp, AnEmptyNameIsAnEventAsWell) {
    for (const char* name : {"", " \t\r\n", ": behind"}) {
        host.upnpDone = 0;
        host.friendlyName = "old";
        Serves(Description(name));
        HearsNotification();
        EXPECT_TRUE(host.friendlyName.IsEmpty());
    }
    EXPECT_EQ(lan.SeenEvents(), (std::vector<SeenEvent>(3, {11, "", kIp, "", -1})));
}

TEST_F(Ssdp, ADescriptionWithoutTagsGivesNoName) {
    for (const char* document :
         {"", "<html>not found</html>", "<friendlyName>TV", "TV</friendlyName>", "<friendlyname>TV</friendlyname>",
          "<friendlyName >TV</friendlyName>", "</friendlyName>TV<friendlyName>"}) {
        host.upnpDone = 0;
        Serves(document);
        HearsNotification();
        ExpectNameless();
    }
}

TEST_F(Ssdp, APageWithoutANameIsTakenWithoutAnEvent) {
    Serves("<presentationURL>\r\n /status.html\t</presentationURL>");
    HearsNotification();
    EXPECT_EQ(host.presentationUrl, "/status.html");
    ExpectNameless();
}

TEST_F(Ssdp, APageMayHoldColons) {
    Serves(Description("TV", " http://10.0.0.1:80/a:b "));
    HearsNotification();
    EXPECT_EQ(host.presentationUrl, "http://10.0.0.1:80/a:b");
}

TEST_F(Ssdp, AnUnclosedPageIsNone) {
    Serves("<friendlyName>TV</friendlyName><presentationURL>http://10.0.0.1/");
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "TV");
    EXPECT_TRUE(host.presentationUrl.IsEmpty());
}

TEST_F(Ssdp, TheFirstElementCounts) {
    Serves(Description("Outer", "http://outer/") + Description("Inner", "http://inner/"));
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "Outer");
    EXPECT_EQ(host.presentationUrl, "http://outer/");
}

TEST_F(Ssdp, TagsBehindTheFirst4096BytesGiveNoNameAndNoSecondFetch) {
    Serves(std::string(4096, ' ') + Description("Too Late", "http://10.0.0.1/"));
    HearsNotification();
    ExpectNameless();
    EXPECT_TRUE(host.presentationUrl.IsEmpty());
    HearsNotification();
    EXPECT_EQ(Fetches(), 1u);
}

TEST_F(Ssdp, TheReadMayEndWithTheClosingTag) {
    const std::string element = "<friendlyName>TV</friendlyName>";
    Serves(std::string(4096 - element.size(), ' ') + element + "rest");
    HearsNotification();
    EXPECT_EQ(host.friendlyName, "TV");
    host.upnpDone = 0;
    host.friendlyName.Clear();
    Serves(std::string(4097 - element.size(), ' ') + element + "rest");
    HearsNotification();
    EXPECT_TRUE(host.friendlyName.IsEmpty());
}

TEST_F(Ssdp, ADescriptionEndsAtItsFirstZeroByte) {
    Serves("<friendlyName>TV" + std::string(1, '\0') + "</friendlyName>");
    HearsNotification();
    ExpectNameless();
}

TEST_F(Ssdp, WhatADeviceCallsItselfIsDataAndNothingElse) {
    const std::string name = "%s%n%99999d<script>\"'`$(x)\x1b[2J\xe4";
    Serves(Description(name, "javascript:alert(1)"));
    HearsNotification();
    EXPECT_EQ(host.friendlyName, name.c_str());
    EXPECT_EQ(host.presentationUrl, "javascript:alert(1)");
    EXPECT_EQ(lan.SeenEvents().at(0).host, name);
}

TEST_F(Ssdp, AFetchWithoutMemoryCountsAndTheCaptureGoesOn) {
    lan.system.http.onFetch = [] { throw std::bad_alloc(); };
    HearsNotification();
    ExpectNameless();
    lan.system.http.onFetch = nullptr;
    lan.Knows("10.0.0.2");
    lan.Says(UdpFrame{.sourceIp = "10.0.0.2", .sourcePort = 1900, .payload = NotificationOf(kUrl)});
    EXPECT_EQ(lan.Host("10.0.0.2").friendlyName, "Meeting Room TV");
}

TEST_F(Ssdp, AHostThatIsDeletedDuringItsFetchIsStillSafe) {
    lan.system.http.onFetch = [this] { lan.data.DeleteHost(kIp.c_str()); };
    HearsNotification();
    EXPECT_EQ(lan.FindHost(kIp), nullptr);
    EXPECT_EQ(host.friendlyName, "Meeting Room TV");
}

TEST(SsdpSamples, MeanWhatTheirListSays) {
    EXPECT_EQ(ParseSsdpLocation(Sample("ssdp/notify.txt")), kUrl);
    EXPECT_EQ(ParseSsdpLocation(Sample("ssdp/answer.txt")), kUrl);
    for (const char* name : {"upper-case", "search", "late-start", "open-end", "byebye"})
        EXPECT_EQ(ParseSsdpLocation(Sample("ssdp/" + std::string(name) + ".txt")), std::nullopt) << name;
}

// Every prefix of every sample, once as a message on the wire and once as a description.
TEST(SsdpSamples, DoNoHarmWhereverTheyEnd) {
    u64 prefixes = 0;
    u64 named = 0;
    for (const std::string& name : SampleNames("ssdp")) {
        SCOPED_TRACE(name);
        const std::string sample = Sample(name);
        ASSERT_FALSE(sample.empty());
        WatchedLan lan;
        HostRecord& host = lan.Knows(kIp);
        lan.system.http.documents[kUrl] = Description("TV");
        // The frame itself is cut, so the bounded view ends wherever the bytes end.
        const Frame frame = UdpFrame{.sourceIp = kIp, .sourcePort = 1900, .payload = sample, .padded = false};
        for (std::size_t size = 0; size <= frame.size(); ++size, ++prefixes) {
            lan.Says(Frame(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size)));
            host.upnpDone = 0;
        }
        for (std::size_t size = 0; size <= sample.size(); ++size, ++prefixes) {
            lan.system.http.documents[kUrl] = sample.substr(0, size);
            lan.Says(UdpFrame{.sourceIp = kIp, .sourcePort = 1900, .payload = NotificationOf(kUrl)});
            host.upnpDone = 0;
        }
        named += lan.SeenEvents().size();
    }
    EXPECT_GT(prefixes, 10000u);
    EXPECT_GT(named, 100u);
}

}  // namespace
}  // namespace vardel::test

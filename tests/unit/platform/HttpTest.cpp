// The real HTTP client against servers of the test's own, well-behaved and hostile ones.
#include "platform/Http.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "platform/Process.h"
#include "tests/unit/support/LoopbackServer.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel::test {
namespace {

constexpr u32 kLongMs = 4500;
constexpr u32 kShortMs = 700;
// What a busy machine may add to a time-out.
constexpr u32 kSlackMs = 1000;
constexpr char kUntouched[] = "untouched";

class HttpTest : public testing::Test {
  protected:
    void SetUp() override {
        SystemProcess().StartNetwork();
        ReachLoopbackDirectly();
    }
    void TearDown() override {
        server.reset();
        SystemProcess().StopNetwork();
    }

    void Serve(LoopbackServer::Answer answer) { server = std::make_unique<LoopbackServer>(std::move(answer)); }
    void ServeBytes(const std::string& bytes) {
        Serve([bytes](Connection& client) { client.Send(bytes); });
    }

    bool Fetch(const std::string& url, u32 timeoutMs = kLongMs, u32 maxBytes = 4096) {
        block = kUntouched;
        const auto start = std::chrono::steady_clock::now();
        const bool fetched =
            SystemHttp().Fetch({"Vardelwatch-Test", url.c_str(), maxBytes, timeoutMs}, block);
        tookMs = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                     .count();
        if (!fetched) {
            EXPECT_EQ(block, kUntouched);
        }
        return fetched;
    }
    void ExpectHeldBack() {
        EXPECT_FALSE(Fetch(server->Url(), kShortMs));
        EXPECT_LT(tookMs, kShortMs + kSlackMs);
    }

    std::unique_ptr<LoopbackServer> server;
    std::string block;
    i64 tookMs = 0;
};

TEST_F(HttpTest, AsksForTheAddressWithTheAgentsName) {
    ServeBytes(OkAnswer("hello"));
    ASSERT_TRUE(Fetch(server->Url("/devices/tv.xml?a=1")));
    EXPECT_EQ(block, "hello");
    ASSERT_EQ(server->Requests().size(), 1u);
    const std::string request = server->Requests()[0];
    EXPECT_EQ(request.find("GET /devices/tv.xml?a=1 HTTP/1.1\r\n"), 0u) << request;
    EXPECT_NE(request.find("\r\nUser-Agent: Vardelwatch-Test\r\n"), std::string::npos) << request;
}

TEST_F(HttpTest, GivesEachByteAsItCame) {
    std::string bytes;
    for (int i = 0; i < 1024; ++i) bytes += static_cast<char>(i);
    ServeBytes(OkAnswer(bytes));
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, bytes);
}

TEST_F(HttpTest, AnEmptyDocumentIsFetchedToo) {
    ServeBytes(OkAnswer(""));
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, "");
}

TEST_F(HttpTest, TakesTheFirstBytesOfADocumentOfMegabytes) {
    std::string document;
    while (document.size() < 3'000'000) document += "<line>" + std::to_string(document.size()) + "</line>\r\n";
    ServeBytes(OkAnswer(document));
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, document.substr(0, 4096));
    ASSERT_TRUE(Fetch(server->Url(), kLongMs, 1024));
    EXPECT_EQ(block, document.substr(0, 1024));
}

TEST_F(HttpTest, ADocumentOfJustTheSizeIsWhole) {
    const std::string document(1024, 'x');
    ServeBytes(OkAnswer(document));
    ASSERT_TRUE(Fetch(server->Url(), kLongMs, 1024));
    EXPECT_EQ(block, document);
}

TEST_F(HttpTest, ADocumentWithoutALengthEndsWithTheConnection) {
    ServeBytes("HTTP/1.1 200 OK\r\n\r\nno length told");
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, "no length told");
}

TEST_F(HttpTest, AnEndlessDocumentWithoutALengthIsCut) {
    Serve([](Connection& client) {
        client.Send("HTTP/1.1 200 OK\r\n\r\n");
        while (client.Send(std::string(10'000, 'y'))) {}
    });
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, std::string(4096, 'y'));
}

TEST_F(HttpTest, ADocumentInChunksIsPutTogether) {
    ServeBytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n6\r\n world\r\n0\r\n\r\n");
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, "hello world");
}

TEST_F(HttpTest, AnErrorPageIsADocument) {
    ServeBytes("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone");
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, "gone");
}

TEST_F(HttpTest, ADocumentThatIsTornGivesWhatCame) {
    ServeBytes("HTTP/1.1 200 OK\r\nContent-Length: 4000\r\nConnection: close\r\n\r\nthe first part");
    ASSERT_TRUE(Fetch(server->Url()));
    EXPECT_EQ(block, "the first part");
}

TEST_F(HttpTest, ATornHeaderGivesNoContent) {
    for (const char* header : {"H", "HTTP/1.1 200", "HTTP/1.1 200 OK\r\nContent-Le", "HTTP/1.1 200 OK\r\nA: b\r\n"}) {
        SCOPED_TRACE(header);
        ServeBytes(header);
        if (Fetch(server->Url())) {
            EXPECT_EQ(block, "");
        }
        EXPECT_LT(tookMs, kLongMs);
    }
}

TEST_F(HttpTest, AServerThatSaysNothingAndClosesGivesNoContent) {
    ServeBytes("");
    if (Fetch(server->Url())) {
        EXPECT_EQ(block, "");
    }
    EXPECT_LT(tookMs, kLongMs);
}

TEST_F(HttpTest, BinaryGarbageDoesNoHarm) {
    std::string garbage;
    for (u32 i = 0, value = 1; i < 100'000; ++i, value = value * 1664525 + 1013904223)
        garbage += static_cast<char>(value >> 24);
    for (const std::string& start : {std::string(), std::string("HTTP/1.1 "), std::string("HTTP/1.1 200 OK\r\n")}) {
        ServeBytes(start + garbage);
        if (Fetch(server->Url())) {
            EXPECT_LE(block.size(), 4096u);
        }
        EXPECT_LT(tookMs, kLongMs);
    }
}

TEST_F(HttpTest, FollowsRedirects) {
    Serve([](Connection& client) {
        const std::string path = client.Path();
        if (path == "/a") client.Send(RedirectTo("/b"));
        else if (path == "/b") client.Send(RedirectTo(client.Url("/c")));
        else client.Send(OkAnswer("at " + path));
    });
    ASSERT_TRUE(Fetch(server->Url("/a")));
    EXPECT_EQ(block, "at /c");
    EXPECT_EQ(server->Requests().size(), 3u);
}

TEST_F(HttpTest, GivesUpOnRedirectsWithoutAnEnd) {
    Serve([](Connection& client) { client.Send(RedirectTo("/again")); });
    if (Fetch(server->Url(), kShortMs)) {
        EXPECT_EQ(block, "");
    }
    EXPECT_LT(tookMs, kShortMs + kSlackMs);
}

TEST_F(HttpTest, RefusesARedirectToAFile) {
    const TestFolder folder;
    const std::string file = folder.Write("secret.txt", "a file of this machine");
    const std::string url = file[0] == '/' ? "file://" + file : "file:///" + file;
    ServeBytes(RedirectTo(url));
    if (Fetch(server->Url())) {
        EXPECT_EQ(block, "");
    }
    EXPECT_EQ(server->Requests().size(), 1u);
}

TEST_F(HttpTest, RefusesARedirectToAnotherProtocol) {
    LoopbackServer other([](Connection& client) { client.Send("220 ready\r\n"); });
    ServeBytes(RedirectTo("ftp://127.0.0.1:" + std::to_string(other.Port()) + "/a"));
    if (Fetch(server->Url(), kShortMs)) {
        EXPECT_EQ(block, "");
    }
    EXPECT_LT(tookMs, kShortMs + kSlackMs);
}

TEST_F(HttpTest, OpensNoAddressOfAnotherScheme) {
    const TestFolder folder;
    const std::string file = folder.Write("secret.txt", "a file of this machine");
    ServeBytes(OkAnswer("served"));
    const std::string rest = server->Url().substr(4);
    const std::vector<std::string> others = {
        "file://" + file, "ftp" + rest, "gopher" + rest, "xhttp" + rest, "file:///etc/passwd", rest,
        rest.substr(3),   "",           "http:",         "http:/",       "javascript:1"};
    for (const std::string& url : others) EXPECT_FALSE(Fetch(url)) << url;
    EXPECT_TRUE(server->Requests().empty());
    EXPECT_TRUE(Fetch("HTTP" + rest));
}

TEST_F(HttpTest, AMalformedAddressFails) {
    for (const char* url : {"http://", "http://:80/", "http://[::1", "http://127.0.0.1:99999/", "http://\x01/",
                            "http://%%%/", "http://a b/"}) {
        EXPECT_FALSE(Fetch(url, kShortMs)) << url;
        EXPECT_LT(tookMs, kShortMs + kSlackMs) << url;
    }
    EXPECT_FALSE(Fetch("http://127.0.0.1:1/" + std::string(100'000, 'a'), kShortMs));
}

TEST_F(HttpTest, ABlankInAnAddressIsEscaped) {
    ServeBytes(OkAnswer("hello"));
    ASSERT_TRUE(Fetch(server->Url("/living room.xml")));
    EXPECT_EQ(server->Requests()[0].find("GET /living%20room.xml HTTP/1.1\r\n"), 0u) << server->Requests()[0];
}

TEST_F(HttpTest, NoAddressAddsALineToTheRequest) {
    ServeBytes(OkAnswer("hello"));
    Fetch(server->Url("/a HTTP/1.1\r\nX-Own: 1\r\nY: "), kShortMs);
    for (const std::string& request : server->Requests())
        EXPECT_EQ(request.find("\nX-Own"), std::string::npos) << request;
}

TEST_F(HttpTest, ARefusedConnectionFails) {
    EXPECT_FALSE(Fetch("http://127.0.0.1:" + std::to_string(PortOfNobody()) + "/"));
    EXPECT_LT(tookMs, kLongMs + kSlackMs);
}

TEST_F(HttpTest, ASilentServerHoldsItsCallerNoLongerThanAllowed) {
    Serve([](Connection& client) { client.AwaitEnd(); });
    ExpectHeldBack();
    EXPECT_GE(tookMs, kShortMs - 50);
}

TEST_F(HttpTest, AServerThatSendsAByteNowAndThenIsGivenUp) {
    Serve([](Connection& client) {
        client.Send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        while (client.Send("x") && client.Pause(100)) {}
    });
    ExpectHeldBack();
}

TEST_F(HttpTest, AHeaderThatComesByteByByteIsGivenUp) {
    Serve([](Connection& client) {
        client.Send("HTTP/1.1 200 OK\r\nX: ");
        while (client.Send("x") && client.Pause(100)) {}
    });
    ExpectHeldBack();
}

TEST_F(HttpTest, AHeaderWithoutAnEndIsGivenUp) {
    Serve([](Connection& client) {
        client.Send("HTTP/1.1 200 OK\r\n");
        while (client.Send("X-Line: a header that goes on and on\r\n")) {}
    });
    ExpectHeldBack();
}

TEST_F(HttpTest, SlowRedirectsCountTogether) {
    Serve([](Connection& client) {
        client.Pause(300);
        client.Send(RedirectTo("/again" + std::to_string(client.Path().size())));
    });
    ExpectHeldBack();
}

TEST_F(HttpTest, GoesOnAfterAFetchThatWasGivenUp) {
    Serve([](Connection& client) {
        if (client.Path() == "/silent") client.Pause(2 * kShortMs);
        else client.Send(OkAnswer("hello"));
    });
    EXPECT_FALSE(Fetch(server->Url("/silent"), kShortMs));
    EXPECT_TRUE(Fetch(server->Url("/hello")));
    EXPECT_EQ(block, "hello");
}

TEST(IsWebAddress, KnowsTheTwoSchemes) {
    for (const char* url : {"http://a", "https://a", "HTTP://A", "hTTpS://"}) EXPECT_TRUE(IsWebAddress(url)) << url;
    for (const char* url : {"", "h", "http", "http:", "http:/", "httpx://a", "https:/a", " http://a", "file:///a",
                            "ftp://a", "shttp://a", "http.//a"})
        EXPECT_FALSE(IsWebAddress(url)) << url;
}

}  // namespace
}  // namespace vardel::test

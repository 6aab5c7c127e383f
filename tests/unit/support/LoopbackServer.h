// An HTTP server of a test's own: it listens at a free port of this machine's loopback address from construction
// until destruction, and answers each connection as the test's function says, one after the other.
//
//     LoopbackServer server([](Connection& client) { client.Send(OkAnswer("hello")); });
//     http.Fetch({"Agent", server.Url("/a").c_str(), 4096, 1000}, block);
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/Types.h"

namespace vardel::test {

class LoopbackServer;

class Connection {
  public:
    // From its first line to the empty one; what came until the client closed or the server ended otherwise.
    const std::string& Request() const { return request_; }
    // The path of the request's first line.
    std::string Path() const;
    // An address of the same server.
    std::string Url(const std::string& path) const;
    // False once the client is gone or the server ends.
    bool Send(std::string_view bytes);
    // False when the server ends.
    bool Pause(u32 ms);
    // Until the client is gone or the server ends.
    void AwaitEnd();

  private:
    friend class LoopbackServer;
    Connection(LoopbackServer& server, std::intptr_t socket) : server_(server), socket_(socket) {}
    bool ReadRequest();

    LoopbackServer& server_;
    const std::intptr_t socket_;
    std::string request_;
};

class LoopbackServer {
  public:
    using Answer = std::function<void(Connection&)>;

    explicit LoopbackServer(Answer answer);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    u16 Port() const { return port_; }
    std::string Url(const std::string& path = "/") const;
    std::vector<std::string> Requests() const;

  private:
    friend class Connection;
    void Serve();

    const Answer answer_;
    std::intptr_t listener_;
    u16 port_ = 0;
    mutable std::mutex guard_;
    std::vector<std::string> requests_;
    std::atomic<bool> ends_{false};
    std::thread thread_;
};

// No proxy of the test's environment stands between its clients and its servers from here on.
void ReachLoopbackDirectly();

// A port of the loopback address at which nobody listens.
u16 PortOfNobody();

inline std::string OkAnswer(const std::string& document) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(document.size()) +
           "\r\nConnection: close\r\n\r\n" + document;
}
inline std::string RedirectTo(const std::string& url) {
    return "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

}  // namespace vardel::test

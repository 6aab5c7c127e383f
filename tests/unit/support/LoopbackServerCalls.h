// The loopback server over the socket calls that both systems offer under the same names. Included by the two
// LoopbackServer files alone, each after its system's socket headers and after
//     using Socket, using SendSize, constexpr Socket kNoSocket, void CloseSocket(Socket), constexpr int kSendFlags.
#pragma once

#include <chrono>
#include <stdexcept>

#include "tests/unit/support/LoopbackServer.h"

namespace vardel::test {

namespace {

constexpr u32 kLookMs = 20;

Socket Native(std::intptr_t socket) { return static_cast<Socket>(socket); }

sockaddr_in LoopbackAddress(u16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// A bound socket and its port, of the system's choice.
Socket Bind(u16& port) {
    const Socket socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = LoopbackAddress(0);
    socklen_t size = sizeof address;
    if (socket == kNoSocket || bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no loopback socket");
    port = ntohs(address.sin_port);
    return socket;
}

// True when reading (or accepting) would not wait.
bool IsReadable(Socket socket, u32 waitMs) {
    fd_set sockets;
    FD_ZERO(&sockets);
    FD_SET(socket, &sockets);
    timeval wait{0, static_cast<int>(waitMs) * 1000};
    return select(static_cast<int>(socket) + 1, &sockets, nullptr, nullptr, &wait) > 0;
}

}  // namespace

std::string Connection::Path() const {
    const std::size_t start = request_.find(' ');
    if (start == std::string::npos) return {};
    return request_.substr(start + 1, request_.find(' ', start + 1) - start - 1);
}

std::string Connection::Url(const std::string& path) const { return server_.Url(path); }

bool Connection::ReadRequest() {
    while (request_.find("\r\n\r\n") == std::string::npos) {
        if (server_.ends_) return false;
        if (!IsReadable(Native(socket_), kLookMs)) continue;
        char piece[2048];
        const auto count = recv(Native(socket_), piece, sizeof piece, 0);
        if (count <= 0) return false;
        request_.append(piece, static_cast<std::size_t>(count));
    }
    return true;
}

bool Connection::Send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (server_.ends_) return false;
        fd_set sockets;
        FD_ZERO(&sockets);
        FD_SET(Native(socket_), &sockets);
        timeval wait{0, kLookMs * 1000};
        if (select(static_cast<int>(socket_) + 1, nullptr, &sockets, nullptr, &wait) <= 0) continue;
        const std::size_t most = bytes.size() < 1024 ? bytes.size() : 1024;
        const auto count = send(Native(socket_), bytes.data(), static_cast<SendSize>(most), kSendFlags);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool Connection::Pause(u32 ms) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (!server_.ends_ && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return !server_.ends_;
}

void Connection::AwaitEnd() {
    char piece[256];
    while (!server_.ends_)
        if (IsReadable(Native(socket_), kLookMs) && recv(Native(socket_), piece, sizeof piece, 0) <= 0) return;
}

LoopbackServer::LoopbackServer(Answer answer) : answer_(std::move(answer)) {
    const Socket listener = Bind(port_);
    listener_ = static_cast<std::intptr_t>(listener);
    if (listen(listener, 16) != 0) throw std::runtime_error("no listening socket");
    thread_ = std::thread([this] { Serve(); });
}

LoopbackServer::~LoopbackServer() {
    ends_ = true;
    thread_.join();
    CloseSocket(Native(listener_));
}

std::string LoopbackServer::Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> LoopbackServer::Requests() const {
    const std::lock_guard hold(guard_);
    return requests_;
}

void LoopbackServer::Serve() {
    while (!ends_) {
        if (!IsReadable(Native(listener_), kLookMs)) continue;
        const Socket socket = accept(Native(listener_), nullptr, nullptr);
        if (socket == kNoSocket) continue;
        Connection client(*this, static_cast<std::intptr_t>(socket));
        if (client.ReadRequest()) {
            {
                const std::lock_guard hold(guard_);
                requests_.push_back(client.Request());
            }
            answer_(client);
        }
        CloseSocket(socket);
    }
}

u16 PortOfNobody() {
    u16 port = 0;
    CloseSocket(Bind(port));
    return port;
}

}  // namespace vardel::test

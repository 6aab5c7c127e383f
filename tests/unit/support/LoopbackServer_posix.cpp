#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>

namespace vardel::test {
namespace {

using Socket = int;
using SendSize = std::size_t;
constexpr Socket kNoSocket = -1;
constexpr int kSendFlags = MSG_NOSIGNAL;
void CloseSocket(Socket socket) { close(socket); }

}  // namespace
}  // namespace vardel::test

#include "tests/unit/support/LoopbackServerCalls.h"

namespace vardel::test {

void ReachLoopbackDirectly() { setenv("no_proxy", "127.0.0.1", 1); }

}  // namespace vardel::test

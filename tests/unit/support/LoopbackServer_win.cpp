#include "platform/WindowsApi.h"

namespace vardel::test {
namespace {

using Socket = SOCKET;
using SendSize = int;
constexpr Socket kNoSocket = INVALID_SOCKET;
constexpr int kSendFlags = 0;
void CloseSocket(Socket socket) { closesocket(socket); }

}  // namespace
}  // namespace vardel::test

#include "tests/unit/support/LoopbackServerCalls.h"

namespace vardel::test {

void ReachLoopbackDirectly() { SetEnvironmentVariableA("no_proxy", "127.0.0.1"); }

}  // namespace vardel::test

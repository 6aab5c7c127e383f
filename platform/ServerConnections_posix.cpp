#include "platform/ServerConnections.h"

#include <ctime>

#include "platform/ChildOutput_posix.h"
#include "platform/SambaStatus_posix.h"

namespace vardel {

namespace {

constexpr int kTimeoutMs = 5000;
constexpr std::size_t kLargestOutput = 16 * 1024 * 1024;

class SambaConnections : public ServerConnections {
  public:
    // Samba may be installed and started at any time, so the command is looked for each time.
    bool EnterThread() override { return true; }
    void LeaveThread() override {}
    std::vector<ServerConnection> List() override {
        std::string status;
        if (!RunForOutput({"smbstatus", "--json"}, kTimeoutMs, kLargestOutput, status)) return {};
        return ConnectionsOfSambaStatus(status, std::time(nullptr));
    }
};

}  // namespace

ServerConnections& SystemServerConnections() {
    static SambaConnections connections;
    return connections;
}

}  // namespace vardel

// Who is connected to the shares of this machine, as rows of the moment.
//
// Used by one thread, inside EnterThread and LeaveThread. Windows asks its own WMI for Win32_ServerConnection; Linux
// asks Samba, through the command "smbstatus --json", which tells root alone.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"
#include "platform/Wmi.h"

namespace vardel {

// Texts are cut at kWmiTextLimit bytes; empty where they are not told.
struct ServerConnection {
    std::string computer{};  // a dotted address or a name
    std::string share{};
    std::string user{};
    i32 activeTime = -1;  // seconds; -1 where it is not told
};

class ServerConnections {
  public:
    virtual ~ServerConnections() = default;

    // Before the thread's first List. False: there is nobody to ask, and nothing to leave.
    virtual bool EnterThread() = 0;
    virtual void LeaveThread() = 0;

    // A failure on the way gives the rows up to there. May take seconds.
    virtual std::vector<ServerConnection> List() = 0;
};

ServerConnections& SystemServerConnections();

// The rows of Win32_ServerConnection, each time over a connection of its own.
class WmiServerConnections : public ServerConnections {
  public:
    explicit WmiServerConnections(WmiService& wmi) : wmi_(wmi) {}
    bool EnterThread() override;
    void LeaveThread() override { wmi_.LeaveThread(); }
    std::vector<ServerConnection> List() override;

  private:
    WmiService& wmi_;
};

}  // namespace vardel

// Facts and services of the running process as a whole.
#pragma once

#include "platform/Types.h"

namespace vardel {

class ProcessServices {
  public:
    virtual ~ProcessServices() = default;

    // True if another process of this user holds the name. A false answer also claims it for this process until
    // that ends.
    virtual bool ClaimName(const char* name) = 0;

    // A line for an attached debugger (OutputDebugString); on Linux for standard error.
    virtual void DebugText(const char* text) = 0;

    // COM, apartment threaded, for the calling thread; nothing on Linux. The result is what Leave undoes.
    virtual bool EnterApartment() = 0;
    virtual void LeaveApartment() = 0;

    // WSAStartup 2.2 and WSACleanup; nothing on Linux.
    virtual void StartNetwork() = 0;
    virtual void StopNetwork() = 0;
};

ProcessServices& SystemProcess();

}  // namespace vardel

// The operating system's own ARP table.
#pragma once

#include "platform/Types.h"

namespace vardel {

class ArpCache {
  public:
    virtual ~ArpCache() = default;

    // Empties it, if possible, without showing a window and without waiting. Windows starts the outside command
    // "arp" with "-d"; Linux asks the kernel over netlink. Failure is silent: a user without the right keeps it.
    virtual void Flush() = 0;

    // How far the system's network interfaces are numbered, from 1: on Windows how many there are
    // (GetNumberOfInterfaces), on Linux the highest index. 0 on failure.
    virtual u32 CountInterfaces() = 0;
    // Empties the table of one interface (FlushIpNetTable); nothing for a number that none has, or without the right.
    virtual void FlushInterface(u32 index) = 0;
};

ArpCache& SystemArpCache();

}  // namespace vardel

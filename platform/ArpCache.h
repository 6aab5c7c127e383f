// The operating system's own ARP table.
#pragma once

namespace vardel {

class ArpCache {
  public:
    virtual ~ArpCache() = default;

    // Empties it, if possible, without showing a window and without waiting. Windows starts the outside command
    // "arp" with "-d"; Linux asks the kernel over netlink. Failure is silent: a user without the right keeps it.
    virtual void Flush() = 0;
};

ArpCache& SystemArpCache();

}  // namespace vardel

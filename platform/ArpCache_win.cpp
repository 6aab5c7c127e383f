#include "platform/ArpCache.h"

#include "platform/WindowsApi.h"

#include <shellapi.h>

namespace vardel {

namespace {

class WindowsArpCache : public ArpCache {
  public:
    // The result is of no use: nobody waits for the command, and a user without the right keeps the table.
    void Flush() override { ShellExecuteA(nullptr, "open", "arp", "-d", nullptr, SW_HIDE); }
};

}  // namespace

ArpCache& SystemArpCache() {
    static WindowsArpCache cache;
    return cache;
}

}  // namespace vardel

#include "platform/ArpCache.h"

#include "platform/WindowsApi.h"

#include <iphlpapi.h>
#include <shellapi.h>

namespace vardel {

namespace {

class WindowsArpCache : public ArpCache {
  public:
    // The result is of no use: nobody waits for the command, and a user without the right keeps the table.
    void Flush() override { ShellExecuteA(nullptr, "open", "arp", "-d", nullptr, SW_HIDE); }

    u32 CountInterfaces() override {
        DWORD count = 0;
        return GetNumberOfInterfaces(&count) == NO_ERROR ? count : 0;
    }
    void FlushInterface(u32 index) override { FlushIpNetTable(index); }
};

}  // namespace

ArpCache& SystemArpCache() {
    static WindowsArpCache cache;
    return cache;
}

}  // namespace vardel

#include "platform/ArpRequests.h"

#include "platform/WindowsApi.h"

#include <iphlpapi.h>

namespace vardel {

namespace {

class WindowsArpRequests : public ArpRequests {
  public:
    void Ask(const char* dottedAddress) override {
        const IPAddr address = inet_addr(dottedAddress);
        if (address == INADDR_NONE) return;
        ULONG answer[2] = {};
        ULONG size = 6;
        SendARP(address, 0, answer, &size);
    }
};

}  // namespace

ArpRequests& SystemArpRequests() {
    static WindowsArpRequests requests;
    return requests;
}

}  // namespace vardel

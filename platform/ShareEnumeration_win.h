// The share enumeration over the two calls of the network API, which a test replaces by its own.
#pragma once

#include "platform/WindowsApi.h"
// The network API's headers come after the system's.
#include <lmcons.h>
#include <lmshare.h>
#include <lmapibuf.h>
#include <lmerr.h>

#include "platform/ShareEnumeration.h"

namespace vardel {

struct NetworkApi {
    decltype(&::NetShareEnum) shareEnum;
    decltype(&::NetApiBufferFree) bufferFree;
};

class WindowsShareEnumeration : public ShareEnumeration {
  public:
    explicit WindowsShareEnumeration(const NetworkApi& api) : api_(api) {}
    u32 Enumerate(const char* server, u32& resumeHandle, std::vector<ShareEntry>& entries) override;

  private:
    const NetworkApi api_;
};

// A text in the system code page, of at most kLongestShareText bytes. Null gives an empty one.
std::string NarrowShareText(const wchar_t* text);

}  // namespace vardel

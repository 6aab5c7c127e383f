// The shares that a host on the network offers, as the system's NetShareEnum lists them at level 502.
//
// Asking goes over the network and may block for as long as the system wants. Called from one thread at a time.
//
// Linux asks through Samba's client library, as a guest, on port 445, at most some ten seconds for each step. That
// library gives name, type and remark; permissions, use counts and path stay 0 and empty there, and all shares come
// in one answer. It is loaded when the first host is asked; where it isn't installed every host counts as refusing.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel {

constexpr std::size_t kLongestShareText = 100;  // bytes; longer texts are cut between two characters

struct ShareEntry {
    std::string name;
    u32 type = 0;  // the share type word (STYPE_*), flag bits included
    std::string remark;
    u32 permissions = 0;
    u32 maxUses = 0;  // 0xffffffff: no limit
    u32 currentUses = 0;
    std::string path;
};

// The results that are an answer (NERR_Success, ERROR_MORE_DATA); any other is a refusal.
constexpr u32 kAllShares = 0;
constexpr u32 kMoreShares = 234;

class ShareEnumeration {
  public:
    virtual ~ShareEnumeration() = default;

    // One call for the shares of `server`, two backslashes and a dotted address. `resumeHandle` is 0 at first and
    // goes from call to call while the result is kMoreShares. The entries of an answer are appended; a refusal
    // leaves them alone.
    virtual u32 Enumerate(const char* server, u32& resumeHandle, std::vector<ShareEntry>& entries) = 0;
};

ShareEnumeration& SystemShareEnumeration();

}  // namespace vardel

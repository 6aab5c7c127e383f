// The report written down step by step, as slowly and plainly as its rules read: the oracle for the fast one.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel::test {

struct LiteralReportHost {
    std::string name, ip, mac, os, vendor;
    u32 trust = 0;
    bool vendorUnknown = false;
};
struct LiteralWatched {
    std::string name, ip;
    bool online = false;
};
struct LiteralAccess {
    std::string computer, share, user;
};

struct LiteralReport {
    std::vector<LiteralReportHost> hosts;
    std::vector<LiteralWatched> watched;
    std::vector<LiteralAccess> accesses;  // by their keys

    // With `aside` the values are kept out of the document until it is finished, so that none of them is searched for
    // tags and markers; without it they are put in at once.
    std::string Form(const std::string& text, bool aside) const;
};

}  // namespace vardel::test

// What the running system tells of its own version.
#pragma once

#include "platform/Types.h"

namespace vardel {

struct SystemVersion {
    u32 major = 0;
    u32 minor = 0;
    u32 build = 0;
    bool server = false;         // a server or a domain controller
    bool secondRelease = false;  // the "R2" of server 5.2
    u32 suites = 0;              // VER_SUITE_ bits
    u32 product = 0;             // PRODUCT_ number of GetProductInfo; 0 before version 6
};

// The true version, whatever the program's manifest says. False where the system is no Windows; `version` is
// then untouched.
bool QuerySystemVersion(SystemVersion& version);

// Version of the common controls, major version in the upper 16 bits; 0 where there are none.
u32 QueryControlsVersion();

}  // namespace vardel

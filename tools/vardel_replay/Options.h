// What the user asked for on the command line.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel::replay {

// One --local: a usable address of this machine, and its MAC or an empty text.
struct LocalAddress {
    std::string ip;   // dotted decimal, no leading zeros, not 0.0.0.0
    std::string mac;  // "xx:xx:xx:xx:xx:xx", lower case
};

struct Options {
    std::string settingsFile;  // empty: the defaults of an installation without any settings
    std::string vendorFile;    // empty: no vendor table
    std::vector<LocalAddress> localAddresses;
    bool resolve = false;
    bool fetch = false;
    bool drain = false;
    bool quiet = false;
    u32 repeat = 0;  // 0: not given; the frames are then fed once, straight from the savefiles
    std::vector<std::string> captures;
};

// The lines to show with a complaint about the arguments.
extern const char kUsage[];

// Fills `options` from the arguments behind the program's name. False with a one-line message in `complaint`.
bool ParseOptions(const std::vector<std::string>& arguments, Options& options, std::string& complaint);

}  // namespace vardel::replay

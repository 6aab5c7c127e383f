// The addresses of the program's maker: where versions are asked for, and which pages its commands open.
//
// They are no settings of a user but belong to the installation: the file vardelwatch.ini beside the program holds
// them, and where it says nothing the defaults stand. Each call reads the file anew.
#pragma once

#include <string>
#include <string_view>

#include "platform/Folders.h"

namespace vardel {

inline constexpr const char* kSiteAddressFile = "vardelwatch.ini";

// "http://..." or "https://...", without a slash at the end, of printable characters alone: safe to be put in front
// of a path and to be handed to the system's opener.
struct SiteAddresses {
    std::string updateServer = "https://update.vardelwatch.example";
    std::string makerSite = "https://www.vardelwatch.example";
    std::string helpSite = "https://help.vardelwatch.example";
};

// Reads "Name=value" lines below "[Addresses]". A value that is no web address leaves the default; of a name that
// stands twice the last usable value holds.
SiteAddresses ParseSiteAddresses(std::string_view text);

// The defaults where there is no such file, or where it has more than 64 KB.
SiteAddresses ReadSiteAddresses(Folders& folders);

}  // namespace vardel

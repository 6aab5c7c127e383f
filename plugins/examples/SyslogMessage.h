// A notification's records as syslog messages (RFC 5424), one a record.
//
// Functions of values: what a message says, not where it goes.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "plugins/plugin_interface.h"

namespace vardel::examples {

// What every message of a run has in common.
struct SyslogSource {
    long facility = 16;    // 0 to 23; 16 is "local0"
    std::string hostName;  // of this machine; empty where it has none
};

// Empty for a kind that isn't known.
std::vector<std::string> SyslogMessages(const PluginNotifyItem& item, const SyslogSource& source,
                                        std::time_t now);

}  // namespace vardel::examples

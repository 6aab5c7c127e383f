// The fixed-size records of the settings' lists. They are stored byte for byte as binary registry values, so their
// layout is a storage format: 8-bit texts, NUL-terminated inside their field, no padding.
#pragma once

#include <cstring>

#include "foundation/TcString.h"

namespace vardel {

struct PluginEntry {
    char name[50];  // the plugin's id, also the key of the table
    u8 active;      // 1: switched on
    u8 present;     // set to 1 at start for a plugin that was loaded in this run
};

struct ApplicationEntry {
    char name[260];
    char executable[260];
    char parameters[1040];
};

struct ListedHost {
    char hostName[260];
    char macAddress[260];
    char ipAddress[260];  // dotted text, the key of the table
    char lastPacket[50];  // time of day of the last received frame, as text
};

struct WatchedHost {
    char hostName[50];
    char ipAddress[20];  // dotted text, the key of the table
    u8 online;           // last known state, 1 online
};

struct AdminAccount {
    char userName[50];
    char password[100];  // enciphered by TcBlowfish, a NUL-terminated text
    char accountName[50];
};

static_assert(sizeof(PluginEntry) == 52);
static_assert(offsetof(PluginEntry, active) == 50 && offsetof(PluginEntry, present) == 51);
static_assert(sizeof(ApplicationEntry) == 1560);
static_assert(offsetof(ApplicationEntry, executable) == 260 && offsetof(ApplicationEntry, parameters) == 520);
static_assert(sizeof(ListedHost) == 830);
static_assert(offsetof(ListedHost, macAddress) == 260 && offsetof(ListedHost, ipAddress) == 520 &&
              offsetof(ListedHost, lastPacket) == 780);
static_assert(sizeof(WatchedHost) == 71);
static_assert(offsetof(WatchedHost, ipAddress) == 50 && offsetof(WatchedHost, online) == 70);
static_assert(sizeof(AdminAccount) == 200);
static_assert(offsetof(AdminAccount, password) == 50 && offsetof(AdminAccount, accountName) == 150);

// The text of a field; stored bytes need not be terminated in it.
template <std::size_t size>
TcString FieldText(const char (&field)[size]) {
    TcString text;
    text.Set(field, static_cast<int>(strnlen(field, size)));
    return text;
}

}  // namespace vardel

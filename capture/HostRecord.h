// HostRecord: what is known of one IP address seen in this run (or of one local adapter).
//
// Its identity is the text of its address. Made by the ARP handler or the adapter discovery; lives until VardelData
// ends, also after it left the host table, so a HostRecord* once handed out stays valid. All fields may be read and
// written by any thread: texts are indivisible, flags and numbers single-word atomics.
#pragma once

#include "capture/NetShare.h"
#include "foundation/Shared.h"
#include "foundation/TcString.h"

namespace vardel {

enum class TrustState : u32 { Unknown = 0, Trusted = 1, Distrusted = 2 };
enum class OsClass : u32 { Unknown = 0, Workstation = 1, Server = 2 };

// What each further ARP frame of the host reads and writes comes first and fills two cache lines: with tens of
// thousands of hosts the time of a frame is the number of lines, and of pages, that it touches.
struct alignas(64) HostRecord {
    HostRecord() = default;
    HostRecord(const HostRecord&) = delete;
    HostRecord& operator=(const HostRecord&) = delete;

    // Records lie close together, in a pool of the process.
    static void* operator new(std::size_t size);
    static void operator delete(void* record) noexcept;

    TcString ip;            // dotted decimal, no leading zeros; never changes once others know the record
    TcString mac;           // "xx:xx:xx:xx:xx:xx", lower case; the first one seen
    TcString lastSeenText;  // local time of the last ARP frame, "%H:%M:%S"
    Shared<i64> lastSeen;   // seconds since 1970 of the last ARP frame
    Shared<TrustState> trustState = TrustState::Unknown;
    Shared<u8> vendorUnknown = 1;  // 1 until a vendor text came from the vendor table
    Shared<u8> greyedOut;
    Shared<u8> rowDirty;
    Shared<u8> shareScanBusy;
    // How often the record waits in a work list; each belongs to its list (see SharedList).
    u32 waitingSpoofs = 0;
    u32 waitingNetRes = 0;

    TcString hostName;  // or string id 90
    TcString vendor;    // or string id 91
    Shared<u8> wmiOsKnown;
    Shared<u8> shareScanRefused;
    Shared<u8> isLocal;
    Shared<u8> nameUnresolved;  // 1 while hostName holds no resolved name
    Shared<u8> osFromBrowse;
    Shared<u8> offline;
    Shared<u8> upnpDone;
    Shared<u8> deviceProbed;
    Shared<i32> wmiStatus = 999;
    Shared<OsClass> osClass = OsClass::Unknown;
    TcString os;
    HostShares shares;  // by the hash number of their names; they live as long as the record
    TcString displayName;
    TcString friendlyName;
    TcString presentationUrl;
};

static_assert(offsetof(HostRecord, hostName) <= 128);

}  // namespace vardel

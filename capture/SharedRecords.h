// The smaller records that threads share through VardelData, and the lists they wait in.
#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "capture/HostRecord.h"
#include "foundation/SharedList.h"
#include "foundation/SharedMap.h"
#include "foundation/SharedOrderedMap.h"
#include "foundation/TcString.h"

namespace vardel {

// One local adapter, as the capture library lists it. Written by the adapter discovery before any thread exists.
struct AdapterRecord {
    TcString deviceName;
    TcString friendlyName;
    TcString description;
    TcString ipAddress;
    TcString netMask;
    TcString hostName;
    TcString macAddress;
};

// A host waiting for remote inspection. Owned by the list; the consumer frees it.
struct WmiWorkItem {
    u32 accountKey = 0;
    HostRecord* host = nullptr;
    u8 isLocal = 0;
};

// One received syslog message. `expired` may be set by the capture thread while the view reads.
struct SyslogRecord {
    SyslogRecord();  // stamps `received` with the current time

    TcString source;
    TcString text;
    i32 severity = -1;
    i32 facility = -1;
    u32 serial = 0;  // running number within its source, from 1; 0 in a copy for notification
    i64 received;    // seconds since 1970
    Shared<u8> expired = 0;
};

// The messages of one sender, oldest first. Owns its records.
//
// The capture thread adds and marks; the syslog view purges and walks. Each runs under the list's guard, which is
// what makes the freeing in Purge safe: a walker sees the records only inside ForEach.
class SyslogSourceList {
  public:
    SyslogSourceList() = default;
    ~SyslogSourceList();
    SyslogSourceList(const SyslogSourceList&) = delete;
    SyslogSourceList& operator=(const SyslogSourceList&) = delete;

    // Counts one more message and gives its running number, from 1. Never reset.
    u32 NextSerial();
    u32 MessageCount() const;
    std::size_t RecordCount() const;

    // With a limit above 0: while the list holds at least that many records, marks the oldest one that isn't yet.
    void ExpireOldest(u32 limit);
    void Append(std::unique_ptr<SyslogRecord> record);

    // Frees the expired records. Gives how many.
    std::size_t PurgeExpired();

    template <class Visit>
    void ForEach(Visit&& visit) const {
        std::lock_guard hold(guard_);
        for (const SyslogRecord* record : records_) visit(*record);
    }

  private:
    mutable std::mutex guard_;
    std::deque<SyslogRecord*> records_;
    std::size_t expired_ = 0;  // how many at the front are marked
    u32 messages_ = 0;
};

// A remote client's connection to a share of this machine. Made by the share access watcher, owned by
// VardelData::remoteAccesses and never taken out, so a list may hold it for as long as it likes.
struct RemoteAccess {
    TcString computer;  // address or name of the client
    TcString user;      // may be empty
    TcString share;
    Shared<i32> activeTime;          // seconds; 0 until the connection was seen a second time
    Shared<i32> previousActiveTime;  // activeTime before its last update
};

struct SpoofWaiting {
    static u32* Waiting(HostRecord* host) { return &host->waitingSpoofs; }
};
struct NetResWaiting {
    static u32* Waiting(HostRecord* host) { return &host->waitingNetRes; }
};

struct KeyOfHost {
    static const TcString& Of(const HostRecord& host) { return host.ip; }
};

using ArpMap = SharedMap<HostRecord, Ownership::BorrowsValues, KeyOfHost>;  // the records belong to VardelData, also after their erasure
using VendorMap = SharedMap<TcString, Ownership::OwnsValues>;
using SyslogMap = SharedMap<SyslogSourceList, Ownership::OwnsValues>;
using NotificationWordSet = SharedMap<TcString, Ownership::OwnsValues>;  // key and value are the word
using NewEntryList = SharedList<HostRecord*>;
using MacSpoofList = SharedList<HostRecord*, SpoofWaiting>;
using WmiWorkList = SharedList<WmiWorkItem*>;
using NetResWorkList = SharedList<HostRecord*, NetResWaiting>;
using SyslogNotifyList = SharedList<SyslogRecord*>;
using ShareAccessList = SharedList<RemoteAccess*>;
using NewShareList = SharedList<NetShare*>;  // the records belong to their hosts
using RemoteAccessMap = SharedOrderedMap<RemoteAccess, Ownership::OwnsValues>;  // key: hash of computer, share and user

}  // namespace vardel

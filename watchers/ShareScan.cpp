#include "watchers/ShareScan.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace vardel {

namespace {

constexpr std::size_t kLongestServerName = 260;
// No honest host comes near these; one that never comes to an end must not hold the scan, nor fill the memory.
constexpr u32 kMostSharesOfAHost = 65536;
constexpr int kMostFruitlessAnswers = 1000;

struct ClassRow {
    u32 typeWord;
    ShareClass shareClass;
};
constexpr ClassRow kClasses[] = {{0, kDiskShare},
                                 {1, kPrintQueueShare},
                                 {2, kDeviceShare},
                                 {3, kIpcShare},
                                 {0x80000000, kSpecialDiskShare}};

std::string ServerName(const HostRecord& host) {
    const TcString ip(host.ip);
    return ("\\\\" + std::string(ip.GetContent())).substr(0, kLongestServerName);
}

std::unique_ptr<NetShare> RecordOf(const ShareEntry& entry, const HostRecord& host) {
    auto share = std::make_unique<NetShare>();
    share->hostName = host.hostName;
    share->ip = host.ip;
    share->name = entry.name.c_str();
    share->type = ShareClassOf(entry.type);
    share->currentUses = entry.currentUses;
    share->maxUses = entry.maxUses;
    share->permissions = entry.permissions;
    share->path = entry.path.c_str();
    share->remark = entry.remark.c_str();
    return share;
}

// True when the share is new. Without memory it is left out, and found again at the host's next scan.
bool RecordShare(const ShareEntry& entry, HostRecord& host, VardelData& data) {
    try {
        NetShare* share = host.shares.Insert(RecordOf(entry, host));
        if (!share) return false;
        // Wanted: no fence is waited for. The tick takes a mark, so what joins meanwhile waits for the next one.
        data.newShares.Append(share);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// True when the answer brought anything new.
bool RecordShares(const std::vector<ShareEntry>& entries, HostRecord& host, VardelData& data) {
    bool anyNew = false;
    for (const ShareEntry& entry : entries)
        if (host.shares.Count() < kMostSharesOfAHost) anyNew |= RecordShare(entry, host, data);
    return anyNew;
}

void AskForShares(HostRecord& host, VardelData& data, const ThreadParams& params) {
    const std::string server = ServerName(host);
    u32 resumeHandle = 0;
    u32 result = kMoreShares;
    for (int fruitless = 0; result == kMoreShares && fruitless < kMostFruitlessAnswers && !params.stop; ++fruitless) {
        std::vector<ShareEntry> entries;
        result = data.services.shareEnumeration.Enumerate(server.c_str(), resumeHandle, entries);
        if (result != kAllShares && result != kMoreShares) {
            // Wanted: a passing error of the network counts as much as a denied access, and for the whole run.
            host.shareScanRefused = 1;
            return;
        }
        if (RecordShares(entries, host, data)) fruitless = 0;
    }
}

}  // namespace

i32 ShareClassOf(u32 typeWord) {
    for (const ClassRow& row : kClasses)
        if (row.typeWord == typeWord) return row.shareClass;
    return kUnclassifiedShare;
}

void ScanShares(HostRecord& host, VardelData& data, const ThreadParams& params) {
    host.shareScanBusy = 1;
    try {
        AskForShares(host, data, params);
    } catch (const std::bad_alloc&) {
        // This scan is given up; the host comes up for another one.
    }
    host.shareScanBusy = 0;
}

}  // namespace vardel

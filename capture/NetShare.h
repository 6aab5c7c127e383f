// The shares of a host, as the share scan found them.
//
// A NetShare is written once, before any other thread knows it, and never again: a share that changes or vanishes
// later stays as it was first seen. It belongs to its host's record and lives as long as that, so a NetShare* once
// handed out stays valid until VardelData ends.
#pragma once

#include <atomic>
#include <memory>

#include "foundation/SharedOrderedMap.h"
#include "foundation/TcString.h"

namespace vardel {

// The class of a share, as far as its type word tells. Plugins get these numbers.
enum ShareClass : i32 {
    kUnclassifiedShare = 0,
    kDiskShare = 1,
    kSpecialDiskShare = 2,
    kPrintQueueShare = 3,
    kIpcShare = 4,
    kDeviceShare = 5
};

struct NetShare {
    TcString hostName;
    TcString ip;
    TcString unused;  // always empty; plugins get it as a field of its own
    TcString name;
    i32 type = kUnclassifiedShare;  // ShareClass
    u32 currentUses = 0;
    u32 maxUses = 0;  // 0xffffffff: no limit
    u32 permissions = 0;
    TcString path;
    TcString remark;
};

// Safe for any mix of threads. A host without shares takes no more than a pointer.
class HostShares {
  public:
    HostShares() = default;
    ~HostShares() { delete shares_.load(); }
    HostShares(const HostShares&) = delete;
    HostShares& operator=(const HostShares&) = delete;

    // Under the hash number of the share's name; two names of one number are one share here. Takes the record over
    // and gives it back, or null when the key is present: the record is freed then.
    NetShare* Insert(std::unique_ptr<NetShare> share) {
        if (!Made().Insert(share->name.GetHashNum(), share.get())) return nullptr;
        return share.release();
    }
    bool Has(i32 nameHash) const {
        ReadPin pin;
        const Map* shares = shares_.load();
        return shares && shares->Find(nameHash);
    }
    u32 Count() const {
        const Map* shares = shares_.load();
        return shares ? shares->Count() : 0;
    }
    // `visit(key, share)` in the order of the keys; a visit that gives bool ends the walk with false.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        if (const Map* shares = shares_.load()) shares->ForEach(visit);
    }

  private:
    using Map = SharedOrderedMap<NetShare, Ownership::OwnsValues>;

    Map& Made() {
        Map* shares = shares_.load();
        if (shares) return *shares;
        auto fresh = std::make_unique<Map>();
        if (shares_.compare_exchange_strong(shares, fresh.get())) return *fresh.release();
        return *shares;
    }

    std::atomic<Map*> shares_{nullptr};
};

}  // namespace vardel

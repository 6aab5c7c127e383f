#include "views/HostRows.h"

#include <algorithm>

#include "views/HostSort.h"

namespace vardel {

struct HostRows::Found {
    std::vector<HostRecord*> hidden, regrouped, fresh;
};

bool TakeRowChange(HostRecord& host, const VardelSettings& settings, i64 now) {
    if (host.rowDirty) {
        host.rowDirty = 0;
        return true;
    }
    const bool greysOut = settings.GreyedOutOldEntries != 0;
    const bool change = greysOut ? !host.greyedOut && IsHostStale(host.lastSeen, now, settings.ViewGrayTime)
                                 : host.greyedOut != 0;
    if (change) host.greyedOut = greysOut ? 1 : 0;
    return change;
}

void HostRows::Look(HostRecord& host, const VardelSettings& settings, i64 now, Found& found, RowChanges& changes) {
    const TrustState trust = host.trustState;
    const bool hidden = IsHostHidden(trust, settings.ViewFilterOptions, settings.ViewHideSecure != 0);
    const int row = RowOf(host);
    if (row < 0) {
        if (!hidden) found.fresh.push_back(&host);
        return;
    }
    if (hidden) {
        found.hidden.push_back(&host);
        return;
    }
    if (TakeRowChange(host, settings, now)) changes.repaint = true;
    if (GroupAt(row) != HostGroup(trust)) found.regrouped.push_back(&host);
}

RowChanges HostRows::Refresh(VardelData& data, i64 now) {
    RowChanges changes;
    Found found;
    {
        const FenceTaken taken(data.fences, Fence::ArpMap);
        data.arpMap.ForEach([&](const TcString&, HostRecord* host) {
            ++changes.hosts;
            if (host) Look(*host, data.settings, now, found, changes);
        });
    }
    changes.removed = Remove(found.hidden);
    for (HostRecord* host : found.regrouped) {
        const int group = HostGroup(host->trustState);
        const int row = RowOf(*host);
        rows_[static_cast<std::size_t>(row)].group = group;
        changes.regrouped.push_back({row, group});
    }
    changes.firstInserted = Count();
    for (HostRecord* host : found.fresh) rows_.push_back({host, HostGroup(host->trustState)});
    Number(static_cast<std::size_t>(changes.firstInserted));
    if (!found.fresh.empty()) ++version_;
    return changes;
}

std::vector<u32> HostRows::Sort(const HostViewColumn& column, bool ascending) {
    std::vector<HostRecord*> hosts;
    hosts.reserve(rows_.size());
    for (const Row& row : rows_) hosts.push_back(row.host);
    const u32 version = version_;
    std::vector<u32> order = SortedOrder(hosts, column, ascending);
    if (version_ != version) return {};
    std::vector<Row> sorted;
    sorted.reserve(rows_.size());
    for (const u32 place : order) sorted.push_back(rows_[place]);
    rows_.swap(sorted);
    Number(0);
    ++version_;
    return order;
}

std::vector<int> HostRows::Remove(std::span<HostRecord* const> hosts) {
    std::vector<int> removed;
    for (const HostRecord* host : hosts) {
        const auto found = places_.find(host);
        if (found == places_.end()) continue;
        removed.push_back(found->second);
        rows_[static_cast<std::size_t>(found->second)].host = nullptr;
        places_.erase(found);
    }
    if (removed.empty()) return removed;
    std::sort(removed.rbegin(), removed.rend());
    std::erase_if(rows_, [](const Row& row) { return !row.host; });
    Number(static_cast<std::size_t>(removed.back()));
    ++version_;
    return removed;
}

void HostRows::Clear() {
    rows_.clear();
    places_.clear();
    ++version_;
}

void HostRows::Number(std::size_t from) {
    for (std::size_t row = from; row < rows_.size(); ++row) places_[rows_[row].host] = static_cast<int>(row);
}

}  // namespace vardel

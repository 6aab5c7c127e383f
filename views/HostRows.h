// HostRows: which host stands in which row of the open host view, and what a look at the host table changes about it.
//
// The window's own, on the main thread. All costs are linear in the number of hosts: the row of a record is looked up,
// not searched for, and a refresh that finds nothing changed only reads. The window carries out what it is told on its
// list control, whose rows are numbered the same.
#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "views/HostColumns.h"

namespace vardel {

// To be carried out in this order.
struct RowChanges {
    struct NewGroup {
        int row, group;
    };
    std::vector<int> removed;          // highest first
    std::vector<NewGroup> regrouped;   // by the numbers after the removal
    int firstInserted = 0;             // from here on rows are new, up to HostRows::Count
    bool repaint = false;              // a row that stays looks different
    u32 hosts = 0;                     // in the table, shown or not

    bool ChangeRows(int count) const {
        return !removed.empty() || !regrouped.empty() || firstInserted < count;
    }
};

class HostRows {
  public:
    // Brings the rows in line with the host table and the filter; `now` in seconds since 1970. On an empty object it
    // is the view's first filling.
    RowChanges Refresh(VardelData& data, i64 now);

    // Element n of the result is the number so far of the row that becomes the n-th. Nothing was sorted when it is
    // empty: there are no rows, or a plugin that was asked to compare had them changed meanwhile.
    std::vector<u32> Sort(const HostViewColumn& column, bool ascending);

    // Takes the hosts' rows out and gives the numbers they had, highest first. Hosts without a row are passed over.
    std::vector<int> Remove(std::span<HostRecord* const> hosts);

    void Clear();

    int Count() const { return static_cast<int>(rows_.size()); }
    HostRecord* HostAt(int row) const { return rows_[static_cast<std::size_t>(row)].host; }
    int GroupAt(int row) const { return rows_[static_cast<std::size_t>(row)].group; }
    // -1: none.
    int RowOf(const HostRecord& host) const {
        const auto found = places_.find(&host);
        return found == places_.end() ? -1 : found->second;
    }

  private:
    struct Row {
        HostRecord* host;
        int group;
    };
    struct Found;  // what a walk of the table came upon

    void Look(HostRecord& host, const VardelSettings& settings, i64 now, Found& found, RowChanges& changes);
    void Number(std::size_t from);

    std::vector<Row> rows_;
    std::unordered_map<const HostRecord*, int> places_;  // in rows_
    u32 version_ = 0;  // counts changes of the order
};

// Whether the row looks different since the last look: a frame or an inspection touched the host, or it became grey
// or ceased to be.
bool TakeRowChange(HostRecord& host, const VardelSettings& settings, i64 now);

}  // namespace vardel

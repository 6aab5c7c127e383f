// Sorting the rows of the host view.
//
// What a fixed column sorts by is read from each host once, not at each comparison: frames that arrive meanwhile can't
// make the comparisons contradict each other, and a sort of the largest network takes a moment. A plugin is asked at
// each comparison, and whatever it answers, the sort ends. Main thread.
#pragma once

#include <span>
#include <vector>

#include "views/HostColumns.h"

namespace vardel {

// Hosts that are equal keep their order. Element n of the result is the place in `hosts` of the one that comes n-th.
std::vector<u32> SortedOrder(std::span<HostRecord* const> hosts, const HostViewColumn& column, bool ascending);

}  // namespace vardel

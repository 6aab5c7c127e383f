#include "views/HostSort.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace vardel {

namespace {

// A merge sort: unlike the library's it stays within its bounds whatever `isBefore` answers, also where the answers
// of a plugin contradict each other.
template <class IsBefore>
std::vector<u32> MergeSorted(std::size_t count, IsBefore isBefore) {
    std::vector<u32> order(count), merged(count);
    std::iota(order.begin(), order.end(), 0u);
    for (std::size_t length = 1; length < count; length *= 2) {
        for (std::size_t begin = 0; begin < count; begin += 2 * length) {
            const std::size_t middle = std::min(begin + length, count), end = std::min(middle + length, count);
            std::size_t left = begin, right = middle;
            for (std::size_t at = begin; at < end; ++at) {
                const bool takeRight = right < end && (left >= middle || isBefore(order[right], order[left]));
                merged[at] = order[takeRight ? right++ : left++];
            }
        }
        order.swap(merged);
    }
    return order;
}

// What a column sorts by, where that is a number.
u64 NumberOf(const HostRecord& host, HostColumn column) {
    switch (column) {
        case HostColumn::Trust: return static_cast<u32>(host.trustState.Get());
        case HostColumn::Ip: return AddressSortKey(host.ip);
        default: return host.wmiOsKnown ? 1 : 0;
    }
}

// And where it is a text: the field; null for a column of numbers.
const TcString HostRecord::* TextFieldOf(HostColumn column) {
    switch (column) {
        case HostColumn::Mac: return &HostRecord::mac;
        case HostColumn::LastPacket: return &HostRecord::lastSeenText;
        // Wanted: the host's own name, also where the cell prefers another.
        case HostColumn::Name: return &HostRecord::hostName;
        case HostColumn::Vendor: return &HostRecord::vendor;
        default: return nullptr;
    }
}

template <class Key>
std::vector<u32> SortedByKeys(const std::vector<Key>& keys, bool ascending) {
    if (ascending) return MergeSorted(keys.size(), [&](u32 first, u32 second) { return keys[first] < keys[second]; });
    return MergeSorted(keys.size(), [&](u32 first, u32 second) { return keys[second] < keys[first]; });
}

}  // namespace

std::vector<u32> SortedOrder(std::span<HostRecord* const> hosts, const HostViewColumn& column, bool ascending) {
    if (column.plugin)
        return MergeSorted(hosts.size(), [&](u32 first, u32 second) {
            return CompareInColumn(column, *hosts[first], *hosts[second], ascending) < 0;
        });
    if (const TcString HostRecord::* field = TextFieldOf(column.fixed)) {
        std::vector<std::string> texts;
        texts.reserve(hosts.size());
        for (const HostRecord* host : hosts) {
            TcString text(host->*field);
            text.ToLower();
            texts.emplace_back(text.GetContent());
        }
        return SortedByKeys(texts, ascending);
    }
    std::vector<u64> numbers;
    numbers.reserve(hosts.size());
    for (const HostRecord* host : hosts) numbers.push_back(NumberOf(*host, column.fixed));
    return SortedByKeys(numbers, ascending);
}

}  // namespace vardel

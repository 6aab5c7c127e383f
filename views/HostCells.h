// What the host view shows of a host: the text, icon and colour of each cell, which rows are there, how they sort.
//
// Functions of values. Text of other threads is copied first, so any thread may call them; the view does from its own.
#pragma once

#include "capture/VardelData.h"

namespace vardel {

enum class HostColumn { Trust, Ip, Mac, LastPacket, Name, Vendor, Information };
constexpr int kHostColumns = 7;

struct HostColumnForm {
    u32 titleId;
    int width;       // pixels, by default
    i32 shownDigit;  // the place in VisibleColumns; 0: always shown
};
const HostColumnForm& FormOf(HostColumn column);

// VisibleColumns is a decimal number of five digits; a digit that is not 0 shows its column.
bool IsColumnShown(HostColumn column, i32 visibleColumns);

// The name to show: the view's own, or while no name was resolved that of the device, or the host's.
TcString ShownName(const HostRecord& host);

// The vendor, or nothing while it isn't known, whatever the record holds.
TcString KnownVendor(const HostRecord& host);

// The operating system, or how the remote inspection went, or one blank. `language`: the module of the view's texts.
TcString ShownInformation(const HostRecord& host, const VardelData& data, ModuleHandle language);

// The cell's text; the trust column has none.
TcString HostCellText(const HostRecord& host, HostColumn column, const VardelData& data, ModuleHandle language);

inline constexpr int kNoIcon = -1;

// Place in the view's image list, or kNoIcon.
int HostCellIcon(const HostRecord& host, HostColumn column);

struct RowColor {
    u8 red, green, blue;
    bool operator==(const RowColor&) const = default;
};
constexpr RowColor kDefaultRowColor{17, 13, 130};
RowColor HostRowColor(const HostRecord& host, bool offlineInRed);

// Group of the list view, 1 to 3, and the text that heads it.
int HostGroup(TrustState trust);
u32 HostGroupTitleId(int group);

// Bits of ViewFilterOptions.
constexpr i32 kShowTrusted = 1;
constexpr i32 kShowDistrusted = 2;
constexpr i32 kShowUnknown = 4;

bool IsHostHidden(TrustState trust, i32 filter, bool hideTrusted);

// The filter with the bit turned over. The last group can't be switched off: the filter then stays as it is.
i32 TurnFilter(i32 filter, i32 bit);

// Whether a host that is not grey yet becomes so. Times are seconds since 1970.
bool IsHostStale(i64 lastSeen, i64 now, u32 grayTimeMinutes);

// A number that sorts as the address does: each of its four numbers formatted with three digits.
u64 AddressSortKey(const TcString& ip);

// Below 0, 0 or above 0: how two hosts stand to each other in ascending order of the column.
int CompareHosts(const HostRecord& first, const HostRecord& second, HostColumn column);

}  // namespace vardel

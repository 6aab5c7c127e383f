#include "views/HostCells.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "resources/ResourceIds.h"

namespace vardel {

namespace {

constexpr int kTextSize = 260;

// By HostColumn.
constexpr std::array<HostColumnForm, kHostColumns> kColumns = {{
    {IDS_HOST_COLUMN_STATE, 25, 0},
    {IDS_HOST_COLUMN_IP, 100, 0},
    {IDS_HOST_COLUMN_MAC, 100, 10000},
    {IDS_HOST_COLUMN_LAST_PACKET, 80, 1000},
    {IDS_HOST_COLUMN_NAME, 200, 100},
    {IDS_HOST_COLUMN_VENDOR, 200, 10},
    {IDS_HOST_COLUMN_INFORMATION, 250, 1},
}};

// How a remote inspection went that gave no operating system.
struct InspectionForm {
    i32 status;
    u32 textId;
    int icon;
};
constexpr InspectionForm kInspections[] = {
    {100, IDS_ACCESS_DENIED, 7}, {200, IDS_ACCESS_BLOCKED, 8}, {300, IDS_NO_ADMIN_ACCOUNT, 9}};
constexpr int kInspectedIcon = 6;

// How the three known states are shown; any other one is shown nowhere.
struct TrustForm {
    TrustState trust;
    int icon;  // the one for a grey row is the next
    int group;
    i32 filterBit;
};
constexpr TrustForm kTrusts[] = {{TrustState::Trusted, 0, 1, kShowTrusted},
                                 {TrustState::Distrusted, 2, 2, kShowDistrusted},
                                 {TrustState::Unknown, 4, 3, kShowUnknown}};
constexpr int kUnknownGroup = 3;

const TrustForm* FormOf(TrustState trust) {
    for (const TrustForm& form : kTrusts)
        if (form.trust == trust) return &form;
    return nullptr;
}

const InspectionForm* FormOf(i32 wmiStatus) {
    for (const InspectionForm& form : kInspections)
        if (form.status == wmiStatus) return &form;
    return nullptr;
}

int Sign(int number) { return (number > 0) - (number < 0); }

int CompareIgnoringCase(const TcString& first, const TcString& second) {
    TcString left(first), right(second);
    left.ToLower();
    right.ToLower();
    return Sign(std::strcmp(left, right));
}

}  // namespace

const HostColumnForm& FormOf(HostColumn column) { return kColumns[static_cast<std::size_t>(column)]; }

bool IsColumnShown(HostColumn column, i32 visibleColumns) {
    const i32 place = FormOf(column).shownDigit;
    if (place == 0) return true;
    constexpr i32 kFirstPlace = 10000;
    // The first digit takes all that stands ahead of it.
    return (place == kFirstPlace ? visibleColumns : visibleColumns % (place * 10)) / place != 0;
}

TcString ShownName(const HostRecord& host) {
    TcString name(host.displayName);
    if (name.IsEmpty() && host.nameUnresolved) name = host.friendlyName;
    if (name.IsEmpty()) name = host.hostName;
    return name;
}

TcString KnownVendor(const HostRecord& host) { return host.vendorUnknown ? TcString() : TcString(host.vendor); }

TcString ShownInformation(const HostRecord& host, const VardelData& data, ModuleHandle language) {
    if (host.wmiOsKnown || host.osFromBrowse) return host.os;
    const InspectionForm* form = FormOf(host.wmiStatus.Get());
    if (!form) return " ";
    char text[kTextSize];
    data.services.strings.Load(language, form->textId, text, sizeof text);
    return text;
}

TcString HostCellText(const HostRecord& host, HostColumn column, const VardelData& data, ModuleHandle language) {
    switch (column) {
        case HostColumn::Trust: break;
        case HostColumn::Ip: return host.ip;
        case HostColumn::Mac: return host.mac;
        case HostColumn::LastPacket: return host.lastSeenText;
        case HostColumn::Name: return ShownName(host);
        case HostColumn::Vendor: return host.vendor;
        case HostColumn::Information: return ShownInformation(host, data, language);
    }
    return {};
}

int HostCellIcon(const HostRecord& host, HostColumn column) {
    if (column == HostColumn::Trust) {
        const TrustForm* form = FormOf(host.trustState.Get());
        return form ? form->icon + (host.greyedOut ? 1 : 0) : kNoIcon;
    }
    if (column != HostColumn::Information) return kNoIcon;
    if (host.wmiOsKnown) return kInspectedIcon;
    const InspectionForm* form = FormOf(host.wmiStatus.Get());
    return form ? form->icon : kNoIcon;
}

RowColor HostRowColor(const HostRecord& host, bool offlineInRed) {
    constexpr RowColor kStale{100, 100, 100}, kOffline{180, 0, 0};
    if (host.greyedOut) return kStale;
    return host.offline && offlineInRed ? kOffline : kDefaultRowColor;
}

int HostGroup(TrustState trust) {
    const TrustForm* form = FormOf(trust);
    return form ? form->group : kUnknownGroup;
}

u32 HostGroupTitleId(int group) { return static_cast<u32>(IDS_GROUP_TRUSTED + group - 1); }

bool IsHostHidden(TrustState trust, i32 filter, bool hideTrusted) {
    if (trust == TrustState::Trusted && hideTrusted) return true;
    const TrustForm* form = FormOf(trust);
    return form && (filter & form->filterBit) == 0;
}

i32 TurnFilter(i32 filter, i32 bit) { return filter == bit ? filter : filter ^ bit; }

bool IsHostStale(i64 lastSeen, i64 now, u32 grayTimeMinutes) {
    constexpr i64 kSecondsOfAMinute = 60;
    return lastSeen > 0 && now - lastSeen > kSecondsOfAMinute * grayTimeMinutes;
}

u64 AddressSortKey(const TcString& ip) {
    constexpr u64 kLargest = 0xffff;
    const TcString own(ip);
    const char* at = own.GetContent();
    u64 key = 0;
    for (int octet = 0; octet < 4; ++octet) {
        u64 number = 0;
        for (; *at >= '0' && *at <= '9'; ++at) number = std::min(number * 10 + static_cast<u64>(*at - '0'), kLargest);
        key = key << 16 | number;
        if (*at == '.') ++at;
    }
    return key;
}

int CompareHosts(const HostRecord& first, const HostRecord& second, HostColumn column) {
    switch (column) {
        case HostColumn::Trust: {
            const u32 left = static_cast<u32>(first.trustState.Get()), right = static_cast<u32>(second.trustState.Get());
            return (left > right) - (left < right);
        }
        case HostColumn::Ip: {
            const u64 left = AddressSortKey(first.ip), right = AddressSortKey(second.ip);
            return (left > right) - (left < right);
        }
        case HostColumn::Mac: return CompareIgnoringCase(first.mac, second.mac);
        case HostColumn::LastPacket: return CompareIgnoringCase(first.lastSeenText, second.lastSeenText);
        // Wanted: the host's own name, also where the cell prefers another.
        case HostColumn::Name: return CompareIgnoringCase(first.hostName, second.hostName);
        case HostColumn::Vendor: return CompareIgnoringCase(first.vendor, second.vendor);
        // Wanted: only whether the remote inspection told it; those without come first.
        case HostColumn::Information:
            return static_cast<int>(first.wmiOsKnown.Get() != 0) - static_cast<int>(second.wmiOsKnown.Get() != 0);
    }
    return 0;
}

}  // namespace vardel

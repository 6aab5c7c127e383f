#include "capture/Fences.h"

namespace vardel {

namespace {

struct FenceRow {
    const char* name;
    bool required;
};

// Indexed by Fence.
constexpr FenceRow kFences[kFenceCount] = {
    {"ReadInARPMap", true},       {"ReadInNewEntryList", true}, {"ReadInMACSpoofList", true},
    {"ReadShareList", true},      {"ReadWMIAccessList", false}, {"ReadNetResList", false},
    {"ReadSysLogList", true},     {"ReadNotifyList", true},     {"ReadVendorMap", true},
};

constexpr Fence kCreationOrder[kFenceCount] = {Fence::ArpMap,    Fence::MacSpoofs, Fence::NewEntries,
                                               Fence::Shares,    Fence::WmiAccess, Fence::NetRes,
                                               Fence::SysLog,    Fence::Notify,    Fence::VendorMap};

constexpr Fence kClosingOrder[kFenceCount] = {Fence::ArpMap,    Fence::MacSpoofs, Fence::NewEntries,
                                              Fence::Shares,    Fence::SysLog,    Fence::WmiAccess,
                                              Fence::NetRes,    Fence::Notify,    Fence::VendorMap};

}  // namespace

const char* Fences::Name(Fence fence) { return kFences[static_cast<std::size_t>(fence)].name; }

bool Fences::CreateAll() {
    bool complete = true;
    for (Fence fence : kCreationOrder) {
        const FenceRow& row = kFences[static_cast<std::size_t>(fence)];
        const EventHandle handle = events_.Create(row.name, true, true);
        handles_[static_cast<std::size_t>(fence)] = handle;
        if (!handle && row.required) complete = false;
    }
    return complete;
}

void Fences::CloseAll() {
    for (Fence fence : kClosingOrder) {
        if (const EventHandle handle = handles_[static_cast<std::size_t>(fence)].exchange(nullptr))
            events_.Close(handle);
    }
}

}  // namespace vardel

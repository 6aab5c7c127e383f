#include "tools/wine_packet/wine_packet.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "platform/WindowsApi.h"

#include <iphlpapi.h>

static_assert(offsetof(PacketOidData, data) == 8,
              "the caller's request block has its data bytes at offset 8");

using MacAddress = std::array<unsigned char, 6>;

struct PacketAdapter {
    MacAddress mac;
};

namespace {

// OID_802_3_CURRENT_ADDRESS of the NDIS documentation.
constexpr unsigned long currentAddressOid = 0x01010102;
constexpr unsigned char failed = 0;
constexpr unsigned char succeeded = 1;

// The adapters of the system; empty on failure. The memory holds the linked list that it starts with.
std::vector<std::byte> ReadAdapters() {
    ULONG sizeBytes = 16384;
    // The list can grow between two calls, so a size that was just told may be too small again.
    for (int attempt = 0; attempt < 4; ++attempt) {
        std::vector<std::byte> memory(sizeBytes);
        auto* first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(memory.data());
        const ULONG result =
            GetAdaptersAddresses(AF_UNSPEC, GAA_FLAG_SKIP_UNICAST, nullptr, first, &sizeBytes);
        if (result == ERROR_SUCCESS) {
            return memory;
        }
        if (result != ERROR_BUFFER_OVERFLOW) {
            break;
        }
    }
    return {};
}

// The MAC address of the adapter that has this identifier, braces included; false if there is none.
bool FindMac(const char* identifier, MacAddress& mac) {
    const std::vector<std::byte> memory = ReadAdapters();
    if (memory.empty()) {
        return false;
    }
    for (auto* each = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(memory.data()); each != nullptr;
         each = each->Next) {
        if (lstrcmpiA(each->AdapterName, identifier) == 0 && each->PhysicalAddressLength == mac.size()) {
            std::copy_n(each->PhysicalAddress, mac.size(), mac.begin());
            return true;
        }
    }
    return false;
}

}  // namespace

char* PacketGetVersion() {
    static char version[] = "1.0 (Wine)";
    return version;
}

PacketAdapter* PacketOpenAdapter(char* deviceName) {
    const char* identifier = deviceName != nullptr ? std::strchr(deviceName, '{') : nullptr;
    if (identifier == nullptr) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    // No exception may leave a C interface; the only ones in here are those of a failed allocation.
    try {
        MacAddress mac{};
        if (FindMac(identifier, mac)) {
            return new PacketAdapter{mac};
        }
        SetLastError(ERROR_BAD_UNIT);
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return nullptr;
}

unsigned char PacketRequest(PacketAdapter* adapter, unsigned char isSet, PacketOidData* request) {
    if (adapter == nullptr || request == nullptr || isSet != 0) {
        return failed;
    }
    if (request->oid != currentAddressOid || request->lengthBytes < adapter->mac.size()) {
        return failed;
    }
    request->lengthBytes = static_cast<unsigned long>(adapter->mac.size());
    std::copy(adapter->mac.begin(), adapter->mac.end(), request->data);
    return succeeded;
}

void PacketCloseAdapter(PacketAdapter* adapter) {
    delete adapter;
}

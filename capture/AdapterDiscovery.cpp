#include "capture/AdapterDiscovery.h"

#include <cstring>
#include <new>
#include <string>

#include "capture/AddressText.h"
#include "capture/ConnectionName.h"
#include "capture/VardelARPImpl.h"

namespace vardel {

namespace {

constexpr char kSource[] = "rpcap://";
constexpr int kSourceLength = 8;
constexpr u32 kCurrentAddress = 0x01010102;
constexpr u16 kFamilyIPv4 = 2;  // the same number on every system
constexpr char kNoAddress[] = "0.0.0.0";

// The four address bytes as they lie in memory, in network order. An address of another family counts as
// "0.0.0.0".
struct LocalAddress {
    u8 bytes[4] = {};
    bool isIPv4 = false;

    explicit LocalAddress(const sockaddr* socketAddress) {
        // sockaddr_in lies alike on Windows and Linux: family (16 bits), port (16 bits), address.
        u16 family;
        std::memcpy(&family, socketAddress, sizeof family);
        isIPv4 = family == kFamilyIPv4;
        if (isIPv4) std::memcpy(bytes, reinterpret_cast<const u8*>(socketAddress) + 4, sizeof bytes);
    }
    TcString Text() const {
        TcString text;
        text.SetWords(FormatIpAddress(bytes));
        return text;
    }
    // Empty where the resolver has none.
    TcString Name(Resolver& resolver) const {
        std::string name;
        u32 value;
        std::memcpy(&value, bytes, sizeof value);
        if (isIPv4) resolver.NameOfAddress(value, 0, NameLookup::ShortName, name);
        return name.c_str();
    }
};

// Empty where the adapter library doesn't tell it.
TcString MacOf(const char* deviceName, const CaptureEntryPoints& capture) {
    TcString mac;
    packet_adapter* adapter = capture.PacketOpenAdapter ? capture.PacketOpenAdapter(deviceName) : nullptr;
    if (!adapter) return mac;
    PacketRequestBlock block{kCurrentAddress, sizeof block.data, {}, {}};
    if (capture.PacketRequest && capture.PacketRequest(adapter, 0, &block))
        mac.SetWords(FormatMacAddress(block.data));
    if (capture.PacketCloseAdapter) capture.PacketCloseAdapter(adapter);
    return mac;
}

// True when an address was met that makes a local host. The net mask is the first entry's, whichever entry
// gives the address, and that is wanted.
bool TakeAddress(AdapterRecord& adapter, const pcap_interface& device, Resolver& resolver) {
    if (!device.addresses) {
        adapter.ipAddress = kNoAddress;
        adapter.netMask = kNoAddress;
        return false;
    }
    for (const pcap_address* entry = device.addresses; entry; entry = entry->next) {
        if (entry->addr) {
            const LocalAddress address(entry->addr);
            adapter.ipAddress = address.Text();
            adapter.hostName = address.Name(resolver);
        }
        if (device.addresses->netmask) adapter.netMask = LocalAddress(device.addresses->netmask).Text();
        if (!(adapter.ipAddress == kNoAddress)) return true;
    }
    return false;
}

// An adapter keeps the device's own name: the source prefix of the list is dropped.
TcString DeviceName(const pcap_interface& device) {
    TcString name(device.name);
    if (name.Find(kSource) >= 0) name.Remove(0, kSourceLength);
    return name;
}

void AddAdapter(VardelData& data, const CaptureEntryPoints& capture, const pcap_interface& device,
                u32 index) {
    auto adapter = std::make_unique<AdapterRecord>();
    adapter->deviceName = DeviceName(device);
    FindConnectionName(data.services.machineConfig, adapter->deviceName, adapter->friendlyName);
    if (device.description) adapter->description = device.description;
    adapter->macAddress = MacOf(adapter->deviceName, capture);
    if (TakeAddress(*adapter, device, data.services.resolver)) {
        AddLocalHost(data, adapter->ipAddress, adapter->macAddress, adapter->hostName);
        // The first adapter with a usable address names this machine.
        if (data.localHostName.IsEmpty()) data.localHostName = adapter->hostName;
    }
    if (adapter->deviceName == data.interfaceName) {
        data.adapterIndex = index;
        data.localMac = adapter->macAddress;
    }
    data.adapters[index] = std::move(adapter);
}

}  // namespace

HostRecord* AddLocalHost(VardelData& data, const TcString& ip, const TcString& mac,
                         const TcString& hostName) {
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->isLocal = 1;
    host->hostName = hostName;
    host->ip = ip;
    host->mac = mac;
    if (!mac.IsEmpty() && !data.vendors.IsEmpty()) FillVendor(*host, mac, data);
    host->trustState = TrustState::Trusted;
    data.arpMap.Insert(ip, host);
    if (data.settings.UseWMI) {
        auto item = std::make_unique<WmiWorkItem>(WmiWorkItem{0, host, 1});
        data.fences.WaitToFeed(Fence::WmiAccess);
        if (data.wmiWork.Prepend(item.get())) item.release();
    }
    if (data.settings.ShareSearch) {
        data.fences.WaitToFeed(Fence::NetRes);
        data.netResWork.Prepend(host);
    }
    return host;
}

u32 FindAdapters(VardelData& data, const CaptureEntryPoints& capture) {
    pcap_interface* devices = nullptr;
    char source[] = "rpcap://";
    char errors[kPcapErrorBufferSize] = "";
    if (!capture.findalldevs_ex || capture.findalldevs_ex(source, nullptr, &devices, errors) != 0) return 0;
    u32 count = 0;
    u32 index = 0;
    for (const pcap_interface* device = devices; device; device = device->next) {
        ++index;  // counts skipped devices as well
        if (!device->name) continue;
        try {
            AddAdapter(data, capture, *device, index);
            ++count;
        } catch (const std::bad_alloc&) {
        }
    }
    if (capture.freealldevs) capture.freealldevs(devices);
    return count;
}

}  // namespace vardel

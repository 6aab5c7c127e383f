#include "capture/VardelARPImpl.h"

#include <new>

#include "capture/AddressText.h"
#include "capture/EventMap.h"
#include "capture/HostNaming.h"
#include "platform/Clock.h"

namespace vardel {

namespace {

constexpr u32 kUnknownVendorText = 91;
constexpr u32 kSenderHardwareAddress = 22;
constexpr u32 kSenderProtocolAddress = 28;
constexpr int kVendorPrefixLength = 8;  // three octets with their colons

template <std::size_t size>
void PutField(char (&field)[size], const TcString& text) {
    text.GetLeft(field, static_cast<int>(size), text.GetLength());
}

// A listed host at its first sight in this run: what the user typed stays, only empty fields are filled.
void FillListedHost(ListedHost& listed, const TcString& name, const TcString& mac, const char* time) {
    if (listed.hostName[0] == 0) PutField(listed.hostName, name);
    if (listed.macAddress[0] == 0) PutField(listed.macAddress, mac);
    std::strcpy(listed.lastPacket, time);
}

// At every later frame the name follows the live host; the MAC never does.
void RefreshListedHost(ListedHost& listed, const TcString& name, const char* time) {
    PutField(listed.hostName, name);
    std::strcpy(listed.lastPacket, time);
}

}  // namespace

void FillVendor(HostRecord& host, const TcString& mac, VardelData& data) {
    // Put together without the guards of a text that others see: this runs for each frame of an unknown vendor.
    TcString::Words words{};
    words.length = static_cast<u32>(
        mac.GetLeft(reinterpret_cast<char*>(words.words), sizeof words.words, kVendorPrefixLength));
    TcString prefix;
    prefix.SetWords(words);
    data.fences.WaitToFeed(Fence::VendorMap);
    {
        ReadPin pin;
        const auto* entry = data.vendors.Find(HashedKey(prefix, HashedKey::Mix(words.WideHash())));
        const TcString* vendor = entry ? entry->Value() : nullptr;
        if (vendor && !vendor->IsEmpty()) {
            host.vendor = *vendor;
            host.vendorUnknown = 0;
        }
    }
    if (!host.vendorUnknown) return;
    char text[100];
    data.LoadText(kUnknownVendorText, text, sizeof text);
    if (host.vendor.Compare(text) != 0) host.vendor = text;
}

VardelARPImpl::Sender VardelARPImpl::SenderOf(const pcap_pkthdr& header, const u8* frame) {
    u8 ip[4];
    FrameView(frame, header.caplen).Copy(kSenderProtocolAddress, ip, sizeof ip);
    const TcString::Words text = FormatIpAddress(ip);
    return {text, HashedKey::Mix(text.WideHash()), (ip[0] | ip[1] | ip[2] | ip[3]) != 0};
}

u32 VardelARPImpl::PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) {
    if (header && frame && data) Receive(*header, frame, SenderOf(*header, frame), *data);
    else ++packetCount;
    return 0;
}

void VardelARPImpl::FrameReceived(const pcap_pkthdr& header, const u8* frame, const Sender& sender,
                                  VardelData& data) {
    Receive(header, frame, sender, data);
}

// In both ways of handing frames over, so that neither carries the sender through memory for the other's sake.
[[gnu::always_inline]] inline void VardelARPImpl::Receive(const pcap_pkthdr& header, const u8* frame,
                                                          const Sender& sender, VardelData& data) {
    ++packetCount;
    if (!sender.isAddress) return;  // a probe

    const i64 seconds = header.ts.tv_sec;
    TakeTime(seconds);
    u8 mac[6];
    FrameView(frame, header.caplen).Copy(kSenderHardwareAddress, mac, sizeof mac);
    macText.SetWords(FormatMacAddress(mac));
    ipText.SetWords(sender.ip);

    const HashedKey key(ipText, sender.mixedHash);
    try {
        if (!RefreshIfKnown(key, seconds, data)) AddNewHost(key, seconds, data);
    } catch (const std::bad_alloc&) {
        // The frame's work is dropped; the next frame tries anew.
    }
}

// One pin serves all look-ups of the frame. False for an address that is no key of the host table.
bool VardelARPImpl::RefreshIfKnown(const HashedKey& key, i64 seconds, VardelData& data) {
    ReadPin pin;
    HostRecord* host;
    if (!data.arpMap.FindRecord(key, host)) return false;
    if (host) RefreshKnownHost(*host, key, seconds, data);
    return true;
}

// Most frames of a second share its text.
void VardelARPImpl::TakeTime(i64 seconds) {
    if (seconds == timeTextSecond_) return;
    char text[kTimeOfDaySize];
    FormatTimeOfDay(seconds, text);
    std::strcpy(timeText, text);
    timeOfDay_ = text;
    timeTextSecond_ = seconds;
}

void VardelARPImpl::RefreshKnownHost(HostRecord& host, const HashedKey& key, i64 seconds, VardelData& data) {
    // The first MAC stays the reference for good: every frame from another one is an offence again.
    const bool sameMac = host.mac == macText;
    if (!sameMac && !host.mac.IsEmpty()) {
        data.fences.WaitToFeed(Fence::MacSpoofs);
        data.macSpoofs.Append(&host);
    } else if (!sameMac || host.vendorUnknown) {
        if (!sameMac) host.mac = macText;
        FillVendor(host, macText, data);
    }

    host.lastSeen = seconds;
    host.lastSeenText = timeOfDay_;
    host.rowDirty = 1;
    host.greyedOut = 0;
    ApplyLists(host, key, false, data);

    if (data.settings.ShareSearch && !host.shareScanBusy) {
        data.fences.WaitToFeed(Fence::NetRes);
        data.netResWork.Prepend(&host);
    }
}

// The distrusted table comes last, so an address in both ends distrusted; one in neither keeps its state.
void VardelARPImpl::ApplyLists(HostRecord& host, const HashedKey& key, bool firstSight, VardelData& data) {
    ReadPin pin;
    const auto apply = [&](const ListedHostTable& table, TrustState state) {
        const auto* entry = table.Find(key);
        GuardedRecord<ListedHost>* listed = entry ? entry->Value() : nullptr;
        if (!listed) return;
        const TcString name(host.hostName);
        if (firstSight) {
            const TcString mac(host.mac);
            listed->Update([&](ListedHost& record) { FillListedHost(record, name, mac, timeText); });
        } else {
            listed->Update([&](ListedHost& record) { RefreshListedHost(record, name, timeText); });
        }
        host.trustState = state;
    };
    apply(data.settings.trustedHosts, TrustState::Trusted);
    apply(data.settings.distrustedHosts, TrustState::Distrusted);
}

void VardelARPImpl::AddNewHost(const HashedKey& key, i64 seconds, VardelData& data) {
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->mac = macText;
    host->ip = ipText;
    host->lastSeenText = timeOfDay_;
    host->lastSeen = seconds;
    // Frames wait while the resolver works: event and table agree from the start.
    ResolveHostName(*host, data);
    FillVendor(*host, macText, data);
    PostEvent(EventKind::NewHost, host->hostName, host->ip);

    data.fences.WaitToFeed(Fence::ArpMap);
    data.arpMap.Insert(ipText, host);
    ApplyLists(*host, key, true, data);

    data.fences.WaitToFeed(Fence::NewEntries);
    data.newEntries.Append(host);
    if (data.settings.UseWMI) QueueInspection(*host, data);
    if (data.settings.ShareSearch) {
        data.fences.WaitToFeed(Fence::NetRes);
        data.netResWork.Prepend(host);
    }
}

void VardelARPImpl::QueueInspection(HostRecord& host, VardelData& data) {
    std::unique_ptr<WmiWorkItem> item(new (std::nothrow) WmiWorkItem);
    if (!item) return;
    item->host = &host;
    data.fences.WaitToFeed(Fence::WmiAccess);
    data.wmiWork.Prepend(item.get());
    item.release();
}

}  // namespace vardel

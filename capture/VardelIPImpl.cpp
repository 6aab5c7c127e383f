#include "capture/VardelIPImpl.h"

#include "capture/AddressText.h"
#include "capture/NetBiosBrowse.h"
#include "capture/SyslogReception.h"

namespace vardel {

namespace {

// Offsets from the start of the Ethernet frame; the IP header is taken to be 20 bytes long.
constexpr u32 kProtocolAt = 23;
constexpr u32 kSourceIpAt = 26;
constexpr u32 kSourcePortAt = 34;
constexpr u32 kDestinationPortAt = 36;
constexpr u32 kUdpLengthAt = 38;

constexpr u8 kUdp = 17;
constexpr u16 kNetBiosPort = 138;
constexpr u16 kSyslogPort = 514;
constexpr u16 kSsdpPort = 1900;
constexpr u16 kDevicePort = 22936;
constexpr u16 kDeviceUdpLength = 8 + 320;  // header and announcement

enum class Route { NotUdp, NetBios, Syslog, Ssdp, Device, Unrelated };

// The first test that fits decides.
Route RouteOf(const FrameView& frame) {
    if (frame.At(kProtocolAt) != kUdp) return Route::NotUdp;
    const u16 source = frame.Big16(kSourcePortAt);
    const u16 destination = frame.Big16(kDestinationPortAt);
    if (destination == kNetBiosPort && source == kNetBiosPort) return Route::NetBios;
    if (destination == kSyslogPort) return Route::Syslog;
    if (source == kSsdpPort || destination == kSsdpPort) return Route::Ssdp;
    if (source == kDevicePort && frame.Big16(kUdpLengthAt) == kDeviceUdpLength) return Route::Device;
    return Route::Unrelated;
}

}  // namespace

u32 VardelIPImpl::PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) {
    if (!frame || !data || !header) return 0;
    ++packetCount;
    const FrameView view(frame, header->caplen);
    const Route route = RouteOf(view);
    if (route == Route::NetBios)
        BrowseReceived(view, *data);
    else if (route == Route::Syslog)
        SyslogReceived(view, *data);
    return 0;
}

void VardelIPImpl::FormSourceIp(const FrameView& frame) {
    u8 address[4];
    frame.Copy(kSourceIpAt, address, sizeof address);
    sourceIp.SetWords(FormatIpAddress(address));
}

void VardelIPImpl::BrowseReceived(const FrameView& frame, VardelData& data) {
    const std::optional<HostAnnouncement> announcement = ParseHostAnnouncement(frame);
    if (!announcement) return;
    FormSourceIp(frame);
    HostRecord* host = data.arpMap.FindValue(sourceIp);
    if (!host) return;
    try {
        ApplyHostAnnouncement(*announcement, *host, data);
    } catch (const std::bad_alloc&) {
        // What was not applied yet waits for the next announcement.
    }
}

void VardelIPImpl::SyslogReceived(const FrameView& frame, VardelData& data) {
    if (!data.settings.Syslog) return;
    const std::optional<SyslogHeader> header = ParseSyslogHeader(frame);
    if (!header) return;
    try {
        static_assert(sizeof syslogText == kSyslogTextSize);
        frame.Copy(header->textAt, syslogText, kSyslogTextSize);
        if (syslogText[0] == 0) return;
        try {
            FormSourceIp(frame);
            StripTrailingLineFeeds(syslogText);
            StoreSyslogMessage(data, sourceIp, header->severity, header->facility, syslogText);
        } catch (...) {
        }
    } catch (...) {
    }
}

}  // namespace vardel

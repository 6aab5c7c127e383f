#include "capture/VardelIPImpl.h"

#include <new>

#include "capture/AddressText.h"
#include "capture/DeviceAnnouncement.h"
#include "capture/NetBiosBrowse.h"
#include "capture/SsdpReception.h"
#include "capture/SyslogReception.h"
#include "foundation/TcTrace.h"

namespace vardel {

namespace {

// Offsets from the start of the Ethernet frame; the IP header is taken to be 20 bytes long.
constexpr u32 kProtocolAt = 23;
constexpr u32 kSourceIpAt = 26;
constexpr u32 kSourcePortAt = 34;
constexpr u32 kDestinationPortAt = 36;
constexpr u32 kUdpLengthAt = 38;
constexpr u32 kPayloadAt = 42;

constexpr u8 kUdp = 17;
constexpr u16 kNetBiosPort = 138;
constexpr u16 kSyslogPort = 514;
constexpr u16 kSsdpPort = 1900;
constexpr u16 kDevicePort = 22936;
constexpr u16 kDeviceUdpLength = 8 + kDeviceAnnouncementSize;  // with the header

constexpr char kComponent[] = "VardelIPImpl";
constexpr char kReceiving[] = "Receiving packet";

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

// The device's branches have no line of their own.
void TraceRoute(Route route) {
    if (route == Route::NotUdp) {
        VARDEL_TRACE(kComponent, kReceiving, "must be an IP packet");
        return;
    }
    VARDEL_TRACE(kComponent, kReceiving, "is an UDP packet");
    if (route == Route::NetBios) VARDEL_TRACE(kComponent, kReceiving, "seems to be NetBIOS");
    if (route == Route::Syslog) VARDEL_TRACE(kComponent, kReceiving, "seems to be SysLog");
    if (route == Route::Unrelated) VARDEL_TRACE(kComponent, kReceiving, "no related UDP packet");
}

}  // namespace

u32 VardelIPImpl::PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) {
    if (!frame || !data || !header) return 0;
    ++packetCount;
    const FrameView view(frame, header->caplen);
    const Route route = RouteOf(view);
    try {
        if (TcTrace::IsOn()) TraceRoute(route);
        if (route == Route::NetBios)
            BrowseReceived(view, *data);
        else if (route == Route::Syslog)
            SyslogReceived(view, *data);
        else if (route == Route::Ssdp)
            SsdpReceived(view, *data);
        else if (route == Route::Device)
            DeviceReceived(view, *data);
    } catch (const std::bad_alloc&) {
        // What was not applied yet is dropped; the capture goes on with the next frame.
    }
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
    VARDEL_TRACE(kComponent, "Receiving packet - SMB from", sourceIp);
    if (HostRecord* host = data.arpMap.FindValue(sourceIp)) ApplyHostAnnouncement(*announcement, *host, data);
}

// A host that is done costs a look-up alone.
void VardelIPImpl::SsdpReceived(const FrameView& frame, VardelData& data) {
    FormSourceIp(frame);
    HostRecord* host = data.arpMap.FindValue(sourceIp);
    if (!host || host->isLocal || host->upnpDone) return;
    if (const auto location = ParseSsdpLocation(frame.Text(kPayloadAt)))
        FetchDeviceDescription(std::string(*location), *host, data);
}

void VardelIPImpl::DeviceReceived(const FrameView& frame, VardelData& data) {
    FormSourceIp(frame);
    HostRecord* host = data.arpMap.FindValue(sourceIp);
    if (!host || host->isLocal) return;
    const DeviceAnnouncement announcement = ParseDeviceAnnouncement(frame);
    static_assert(sizeof scratch == kDeviceLabelSize);
    FormDeviceLabel(announcement, scratch);
    ApplyDeviceAnnouncement(announcement, scratch, *host);
}

// Whatever fails while the text is taken or kept ends in a trace and a dropped datagram.
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
            VARDEL_TRACE(kComponent, "Receiving packet - SysLog from", sourceIp);
            StripTrailingLineFeeds(syslogText);
            StoreSyslogMessage(data, sourceIp, header->severity, header->facility, syslogText);
        } catch (...) {
            VARDEL_TRACE(kComponent, kReceiving, "SysLog - error textlen");
        }
    } catch (...) {
        VARDEL_TRACE(kComponent, kReceiving, "SysLog - error getting text");
    }
}

}  // namespace vardel

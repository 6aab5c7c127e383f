// Handler of every frame that isn't ARP or RARP: picks out the few UDP datagrams that tell something about hosts.
//
// Hosts are never created here. The IP header is taken to be 20 bytes long.
#pragma once

#include "capture/VardelCaptureData.h"
#include "capture/VardelData.h"

namespace vardel {

class VardelIPImpl : public VardelCaptureData {
  public:
    u32 PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) override;

    char scratch[100] = "";
    char syslogText[1024] = "";
    TcString sourceIp;

  private:
    // NetBIOS browse announcements, UDP 138 to 138.
    void BrowseReceived(const FrameView& frame, VardelData& data);
    // Syslog messages, UDP destination port 514.
    void SyslogReceived(const FrameView& frame, VardelData& data);
    // SSDP messages, UDP port 1900 at either end. Fetches the device's description on the spot.
    void SsdpReceived(const FrameView& frame, VardelData& data);
    // Storage announcements, UDP source port 22936.
    void DeviceReceived(const FrameView& frame, VardelData& data);
    void FormSourceIp(const FrameView& frame);
};

}  // namespace vardel

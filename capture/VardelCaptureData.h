// Base of the two packet handlers: what every frame is handed to.
//
// Both handlers run on the capture thread alone; their members are its working storage and keep no meaning between
// frames.
#pragma once

#include "capture/FrameView.h"
#include "foundation/TcString.h"
#include "platform/CaptureLibrary.h"

namespace vardel {

class VardelData;

class VardelCaptureData {
  public:
    virtual ~VardelCaptureData() = default;

    // `frame` runs from its Ethernet header on, header->caplen bytes. Gives 0 always.
    virtual u32 PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) = 0;

    TcString interfaceName;
    u64 packetCount = 0;  // frames handed to this handler
    ModuleHandle resourceInstance = nullptr;
    ModuleHandle programInstance = nullptr;
};

}  // namespace vardel

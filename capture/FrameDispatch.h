// Which of the two packet handlers a captured frame goes to: told by its EtherType alone.
//
// Used by whatever reads frames: the capture thread and the savefile replay. A frame too short to have an EtherType
// reads as type 0 and goes where everything else goes.
#pragma once

#include "capture/FrameView.h"
#include "capture/VardelARPImpl.h"
#include "capture/VardelIPImpl.h"

namespace vardel {

constexpr u32 kEtherTypeOffset = 12;
constexpr u16 kEtherTypeArp = 0x0806;
constexpr u16 kEtherTypeRarp = 0x8035;

inline bool IsArpFrame(const pcap_pkthdr& header, const u8* frame) {
    const u16 etherType = FrameView(frame, header.caplen).Big16(kEtherTypeOffset);
    return etherType == kEtherTypeArp || etherType == kEtherTypeRarp;
}

// Hands one frame to its handler. Neither `header` nor `frame` may be null.
inline void DispatchFrame(const pcap_pkthdr* header, const u8* frame, VardelARPImpl& arp, VardelIPImpl& ip,
                          VardelData* data) {
    if (IsArpFrame(*header, frame)) arp.PacketReceived(header, frame, data);
    else ip.PacketReceived(header, frame, data);
}

}  // namespace vardel

// Handler of ARP and RARP frames: how a host is learned, refreshed and found to be spoofed.
//
// Requests, replies, gratuitous announcements and RARP frames are alike: only the sender's two addresses are read.
#pragma once

#include <limits>

#include "capture/VardelCaptureData.h"
#include "capture/VardelData.h"

namespace vardel {

class VardelARPImpl : public VardelCaptureData {
  public:
    // The address that a frame comes from, as the host table is asked for it.
    struct Sender {
        TcString::Words ip;
        u64 mixedHash;
        bool isAddress;  // and not that of a host which has none yet
    };
    static Sender SenderOf(const pcap_pkthdr& header, const u8* frame);

    u32 PacketReceived(const pcap_pkthdr* header, const u8* frame, VardelData* data) override;
    // The same where the frame's sender is worked out already.
    void FrameReceived(const pcap_pkthdr& header, const u8* frame, const Sender& sender, VardelData& data);

    char timeText[20] = "";
    TcString ipText;
    TcString macText;

  private:
    void Receive(const pcap_pkthdr& header, const u8* frame, const Sender& sender, VardelData& data);
    void TakeTime(i64 seconds);
    bool RefreshIfKnown(const HashedKey& key, i64 seconds, VardelData& data);
    void RefreshKnownHost(HostRecord& host, const HashedKey& key, i64 seconds, VardelData& data);
    void AddNewHost(const HashedKey& key, i64 seconds, VardelData& data);
    void QueueInspection(HostRecord& host, VardelData& data);
    void ApplyLists(HostRecord& host, const HashedKey& key, bool firstSight, VardelData& data);

    TcString timeOfDay_;  // timeText once more: assigning it to a text that tells it already costs nothing
    // The second that timeText tells; at first one that no frame has.
    i64 timeTextSecond_ = std::numeric_limits<i64>::min();
};

// The vendor step on one record: looks `mac` (the whole text) up in the vendor table, waiting for a rebuild to end.
// Leaves string id 91 where the vendor stays unknown. Used by the ARP handler and the adapter discovery.
void FillVendor(HostRecord& host, const TcString& mac, VardelData& data);

}  // namespace vardel

#include "capture/FrameLookAhead.h"

namespace vardel {

// Each group goes one step on; the oldest is handled, and its place is filled next.
void FrameLookAhead::Advance() {
    {
        ReadPin pin;
        FetchPlaces(groups_[newest_]);
        FetchRecords(groups_[(newest_ + kSteps - 1) % kSteps]);
    }
    newest_ = (newest_ + 1) % kSteps;
    Handle(groups_[newest_]);
    groups_[newest_].count = 0;
}

void FrameLookAhead::FetchPlaces(Group& group) const {
    for (std::size_t at = 0; at < group.count; ++at) {
        Coming& coming = group.frames[at];
        coming.isArp = IsArpFrame(*coming.frame.header, coming.frame.bytes);
        if (!coming.isArp) continue;
        coming.sender = VardelARPImpl::SenderOf(*coming.frame.header, coming.frame.bytes);
        data_.arpMap.FetchSlot(coming.sender.mixedHash);
    }
}

void FrameLookAhead::FetchRecords(const Group& group) const {
    for (std::size_t at = 0; at < group.count; ++at)
        if (group.frames[at].isArp) data_.arpMap.FetchRecord(group.frames[at].sender.mixedHash);
}

void FrameLookAhead::Handle(const Group& group) {
    for (std::size_t at = 0; at < group.count; ++at) {
        const Coming& coming = group.frames[at];
        if (coming.isArp)
            arp_.FrameReceived(*coming.frame.header, coming.frame.bytes, coming.sender, data_);
        else
            ip_.PacketReceived(coming.frame.header, coming.frame.bytes, &data_);
    }
}

}  // namespace vardel

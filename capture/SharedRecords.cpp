#include "capture/SharedRecords.h"

#include "platform/Clock.h"

namespace vardel {

SyslogRecord::SyslogRecord() : received(SystemClock().Now()) {}

SyslogSourceList::~SyslogSourceList() {
    for (SyslogRecord* record : records_) delete record;
}

u32 SyslogSourceList::NextSerial() {
    std::lock_guard hold(guard_);
    return ++messages_;
}

u32 SyslogSourceList::MessageCount() const {
    std::lock_guard hold(guard_);
    return messages_;
}

std::size_t SyslogSourceList::RecordCount() const {
    std::lock_guard hold(guard_);
    return records_.size();
}

// Records are marked oldest first and only purged when marked, so the marked ones always stand at the front.
void SyslogSourceList::ExpireOldest(u32 limit) {
    std::lock_guard hold(guard_);
    if (limit == 0 || records_.size() < limit || expired_ == records_.size()) return;
    records_[expired_++]->expired = 1;
}

void SyslogSourceList::Append(std::unique_ptr<SyslogRecord> record) {
    std::lock_guard hold(guard_);
    records_.push_back(record.get());
    record.release();
}

std::size_t SyslogSourceList::PurgeExpired() {
    std::lock_guard hold(guard_);
    const std::size_t purged = expired_;
    for (; expired_ > 0; --expired_) {
        delete records_.front();
        records_.pop_front();
    }
    return purged;
}

}  // namespace vardel

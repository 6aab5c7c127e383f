#include "tools/vardel_replay/ReadAhead.h"

namespace vardel::replay {

ReadAhead::ReadAhead(Savefiles& savefiles) : savefiles_(savefiles) {
    for (FrameBatch& batch : batches_) empty_.push_back(&batch);
    reader_ = std::thread([this] { ReadAll(); });
}

ReadAhead::~ReadAhead() {
    {
        std::lock_guard hold(guard_);
        abandoned_ = true;
    }
    changed_.notify_all();
    reader_.join();
}

FrameBatch* ReadAhead::TakeEmpty() {
    std::unique_lock hold(guard_);
    if (empty_.empty()) changed_.wait(hold, [this] { return abandoned_ || empty_.size() >= kEnough; });
    if (abandoned_) return nullptr;
    FrameBatch* batch = empty_.front();
    empty_.pop_front();
    return batch;
}

void ReadAhead::ReadAll() {
    while (FrameBatch* batch = TakeEmpty()) {
        batch->Clear();
        const bool more = savefiles_.Read(*batch);
        bool enough;
        {
            std::lock_guard hold(guard_);
            if (more)
                filled_.push_back(batch);
            else
                atEnd_ = true;
            enough = atEnd_ || filled_.size() == kEnough;
        }
        if (enough) changed_.notify_all();
        if (!more) return;
    }
}

const FrameBatch* ReadAhead::Next() {
    std::unique_lock hold(guard_);
    if (filled_.empty()) changed_.wait(hold, [this] { return atEnd_ || filled_.size() >= kEnough; });
    if (filled_.empty()) return nullptr;
    const FrameBatch* batch = filled_.front();
    filled_.pop_front();
    return batch;
}

void ReadAhead::GiveBack(const FrameBatch* batch) {
    bool enough;
    {
        std::lock_guard hold(guard_);
        empty_.push_back(const_cast<FrameBatch*>(batch));
        enough = empty_.size() == kEnough;
    }
    if (enough) changed_.notify_all();
}

}  // namespace vardel::replay

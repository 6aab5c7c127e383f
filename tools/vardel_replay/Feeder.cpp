#include "tools/vardel_replay/Feeder.h"

namespace vardel::replay {

void Feeder::Feed(const FrameBatch& batch) {
    const u32 end = batch.ReadCount();
    for (u32 from = 0; from < end;) {
        const u32 to = drain_ ? std::min(end, from + untilDrain_) : end;
        RunHandlers(batch, batch.IndexFrom(from), batch.IndexFrom(to));
        if (drain_ && (untilDrain_ -= to - from) == 0) {
            Drain();
            untilDrain_ = kFramesBetweenDrains;
        }
        from = to;
    }
    read_ += end;
}

// The clock is read around a run of frames: around each frame it would cost as much as the handler.
void Feeder::RunHandlers(const FrameBatch& batch, std::size_t from, std::size_t to) {
    const auto frames = batch.Frames().subspan(from, to - from);
    const auto start = std::chrono::steady_clock::now();
    lookAhead_.Dispatch(frames.size(), [&](std::size_t at) {
        return HeldFrame{&frames[at].header, batch.Bytes(frames[at])};
    });
    handlerTime_ += std::chrono::steady_clock::now() - start;
}

// The tick's taking of its lists: what a mark covers is dropped, the syslog copies with it.
void Feeder::Drain() {
    {
        FenceTaken taken(data_.fences, Fence::NewEntries);
        data_.newEntries.ClearTo(data_.newEntries.TakeMark());
    }
    {
        FenceTaken taken(data_.fences, Fence::MacSpoofs);
        data_.macSpoofs.ClearTo(data_.macSpoofs.TakeMark());
    }
    FenceTaken taken(data_.fences, Fence::SysLog);
    data_.syslogNotifications.ClearTo(data_.syslogNotifications.TakeMark(),
                                      [](SyslogRecord* record) { delete record; });
}

}  // namespace vardel::replay

// ReadAhead: reads savefiles on a thread of its own, some batches ahead of the thread that works on the
// frames, so that reading costs that thread nothing.
//
// Made, used and destroyed by the working thread. The number of batches is fixed, so memory stays flat
// however long the savefiles are.
#pragma once

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "tools/vardel_replay/Savefiles.h"

namespace vardel::replay {

class ReadAhead {
  public:
    explicit ReadAhead(Savefiles& savefiles);
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // The next batch, valid until it is given back; null at the end of the last savefile.
    const FrameBatch* Next();
    void GiveBack(const FrameBatch* batch);

  private:
    static constexpr std::size_t kBatches = 8;
    // A thread that had to wait goes on once it has so many to work on: to wake it for each costs more.
    static constexpr std::size_t kEnough = kBatches / 2;

    void ReadAll();
    FrameBatch* TakeEmpty();

    Savefiles& savefiles_;
    std::array<FrameBatch, kBatches> batches_;
    std::mutex guard_;
    std::condition_variable changed_;
    std::deque<FrameBatch*> empty_;
    std::deque<FrameBatch*> filled_;
    bool atEnd_ = false;      // nothing more will be filled
    bool abandoned_ = false;  // nobody takes batches any more
    std::thread reader_;      // last: it starts when all else stands
};

}  // namespace vardel::replay

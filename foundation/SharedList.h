// SharedList: work list between threads. Any mix of threads may append, prepend, take, walk and clear.
//
// Entries are small values (pointers). A list never frees what its entries point at.
//
// A taker that looks at the list more than once (text, then applications, then clearing) takes one Mark first and
// uses it for all: entries that join meanwhile lie behind the mark and are there for the next round.
//
// Flood rule: from `kFloodLimit` entries on, an entry whose WaitingCounter says that it is waiting here already is
// not taken again. `Waiting(entry)` gives that counter, or null for lists whose entries are all distinct. The
// counter belongs to the list: it is only touched under the list's guard.
#pragma once

#include <deque>
#include <limits>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/Types.h"

namespace vardel {

constexpr std::size_t kFloodLimit = 1'048'576;

template <class T>
struct NeverWaitingTwice {
    static u32* Waiting(const T&) { return nullptr; }
};

template <class T, class Policy = NeverWaitingTwice<T>>
class SharedList {
  public:
    // Position behind the last entry at the moment of taking it. Prepended entries lie before any mark.
    using Mark = i64;

    SharedList() = default;
    SharedList(const SharedList&) = delete;
    SharedList& operator=(const SharedList&) = delete;

    // False when the flood rule kept the entry out.
    bool Append(const T& entry) {
        std::lock_guard hold(guard_);
        if (!Admit(entry)) return false;
        entries_.push_back(entry);
        return true;
    }
    bool Prepend(const T& entry) {
        std::lock_guard hold(guard_);
        if (!Admit(entry)) return false;
        entries_.push_front(entry);
        --front_;
        return true;
    }

    std::optional<T> TakeFront() {
        std::lock_guard hold(guard_);
        if (entries_.empty()) return std::nullopt;
        return PopFront();
    }
    std::optional<T> TakeBack() {
        std::lock_guard hold(guard_);
        if (entries_.empty()) return std::nullopt;
        const T entry = entries_.back();
        entries_.pop_back();
        Leave(entry);
        return entry;
    }

    std::size_t Count() const {
        std::lock_guard hold(guard_);
        return entries_.size();
    }
    bool IsEmpty() const { return Count() == 0; }

    Mark TakeMark() const {
        std::lock_guard hold(guard_);
        return front_ + static_cast<i64>(entries_.size());
    }

    // Front to back up to the mark: `visit(entry)`; a visit that gives false ends the walk. The guard is not held
    // during a visit. Entries that are taken meanwhile may be missed, none is met twice.
    template <class Visit>
    void ForEach(Mark mark, Visit&& visit) const {
        std::vector<T> batch;
        for (i64 position = std::numeric_limits<i64>::min();;) {
            batch.clear();
            {
                std::lock_guard hold(guard_);
                if (position < front_) position = front_;
                const i64 end = front_ + static_cast<i64>(entries_.size());
                for (; position < end && position < mark && batch.size() < kBatch; ++position)
                    batch.push_back(entries_[static_cast<std::size_t>(position - front_)]);
            }
            if (batch.empty()) return;
            for (const T& entry : batch)
                if (!visit(entry)) return;
        }
    }
    template <class Visit>
    void ForEach(Visit&& visit) const {
        ForEach(TakeMark(), visit);
    }

    // Takes out what lies before the mark; `taken(entry)` sees each, outside the guard. Gives how many.
    template <class Taken>
    std::size_t ClearTo(Mark mark, Taken&& taken) {
        std::deque<T> out;
        {
            std::lock_guard hold(guard_);
            if (mark >= front_ + static_cast<i64>(entries_.size())) {
                out.swap(entries_);
                front_ += static_cast<i64>(out.size());
                for (const T& entry : out) Leave(entry);
            } else {
                while (!entries_.empty() && front_ < mark) out.push_back(PopFront());
            }
        }
        for (const T& entry : out) taken(entry);
        return out.size();
    }
    std::size_t ClearTo(Mark mark) {
        return ClearTo(mark, [](const T&) {});
    }
    std::size_t Clear() { return ClearTo(std::numeric_limits<i64>::max()); }

    // Takes out every entry that `unwanted(entry)` names. Gives how many.
    template <class Unwanted>
    std::size_t RemoveIf(Unwanted&& unwanted) {
        std::lock_guard hold(guard_);
        std::deque<T> kept;
        for (const T& entry : entries_) {
            if (unwanted(entry)) Leave(entry);
            else kept.push_back(entry);
        }
        const std::size_t removed = entries_.size() - kept.size();
        // Marks taken before stay valid: what is kept moves towards the back.
        front_ += static_cast<i64>(removed);
        entries_.swap(kept);
        return removed;
    }

  private:
    static constexpr std::size_t kBatch = 256;

    bool Admit(const T& entry) {
        u32* waiting = Policy::Waiting(entry);
        if (!waiting) return true;
        if (entries_.size() >= kFloodLimit && *waiting != 0) return false;
        ++*waiting;
        return true;
    }
    void Leave(const T& entry) {
        if (u32* waiting = Policy::Waiting(entry)) --*waiting;
    }
    T PopFront() {
        const T entry = entries_.front();
        entries_.pop_front();
        ++front_;
        Leave(entry);
        return entry;
    }

    mutable std::mutex guard_;
    std::deque<T> entries_;
    i64 front_ = 0;  // position of the first entry
};

}  // namespace vardel

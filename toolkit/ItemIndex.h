// ItemIndex: from a record's address to a number, without a search. For the rows of a list. Main thread.
#pragma once

#include <vector>

#include "platform/Types.h"

namespace vardel {

class ItemIndex {
  public:
    // False, and the old number stays, when the address is there already or null.
    bool Insert(const void* item, int number);
    // Gives the address, which is there, another number.
    void Renumber(const void* item, int number);
    // -1: not there.
    int Find(const void* item) const {
        if (!item || slots_.empty()) return -1;
        const Slot& slot = slots_[SlotOf(item)];
        return slot.item == item ? slot.number : -1;
    }
    void Clear();
    int Count() const { return count_; }

  private:
    struct Slot {
        const void* item = nullptr;
        int number = 0;
    };
    // Where the address is, or else the free slot where it would go.
    std::size_t SlotOf(const void* item) const;
    void Grow();

    std::vector<Slot> slots_;  // a power of two of them, at most half of them taken
    int count_ = 0;
};

}  // namespace vardel

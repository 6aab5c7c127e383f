#include "toolkit/ItemIndex.h"

namespace vardel {

namespace {

constexpr std::size_t kFirstSlots = 64;
constexpr u64 kMixer = 0x9e3779b97f4a7c15ull;

}  // namespace

std::size_t ItemIndex::SlotOf(const void* item) const {
    if (slots_.empty()) return 0;
    const std::size_t mask = slots_.size() - 1;
    const u64 mixed = static_cast<u64>(reinterpret_cast<std::uintptr_t>(item)) * kMixer;
    std::size_t slot = static_cast<std::size_t>(mixed >> 32) & mask;
    while (slots_[slot].item && slots_[slot].item != item) slot = (slot + 1) & mask;
    return slot;
}

bool ItemIndex::Insert(const void* item, int number) {
    if (!item) return false;
    if (static_cast<std::size_t>(count_) * 2 >= slots_.size()) Grow();
    Slot& slot = slots_[SlotOf(item)];
    if (slot.item) return false;
    slot = {item, number};
    ++count_;
    return true;
}

void ItemIndex::Renumber(const void* item, int number) {
    if (!slots_.empty()) slots_[SlotOf(item)].number = number;
}

void ItemIndex::Clear() {
    slots_.clear();
    count_ = 0;
}

void ItemIndex::Grow() {
    std::vector<Slot> old(slots_.empty() ? kFirstSlots : slots_.size() * 2);
    old.swap(slots_);
    for (const Slot& slot : old)
        if (slot.item) slots_[SlotOf(slot.item)] = slot;
}

}  // namespace vardel

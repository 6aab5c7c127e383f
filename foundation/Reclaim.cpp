#include "foundation/Reclaim.h"

#include <mutex>
#include <vector>

#include "platform/ThreadBarrier.h"
#include "platform/ThreadEnd.h"

namespace vardel {

using detail::ReaderSlot;

namespace {

struct RetiredObject {
    void* object;
    FreeFunction release;
    u64 epoch;
};

struct Registry {
    std::atomic<ReaderSlot*> slots{nullptr};
    std::mutex guard;
    std::vector<RetiredObject> retired;
};

// Never destroyed: threads may still read while the process ends.
Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}

ReaderSlot* TakeSlot() {
    Registry& registry = TheRegistry();
    for (ReaderSlot* slot = registry.slots.load(); slot; slot = slot->next) {
        bool free = false;
        if (slot->taken.compare_exchange_strong(free, true)) return slot;
    }
    ReaderSlot* slot = new ReaderSlot;
    slot->fenced = !PrepareThreadBarrier();
    slot->next = registry.slots.load();
    while (!registry.slots.compare_exchange_weak(slot->next, slot)) {
    }
    return slot;
}

// When its thread ends. A pin taken later than that, by what else the thread's end destroys, takes a slot anew.
void GiveSlotBack(void* slotOfThread) {
    ReaderSlot* const slot = static_cast<ReaderSlot*>(slotOfThread);
    detail::slotOfThread = nullptr;
    if (slot->depth == 0) slot->taken.store(false);
}

u64 OldestPinnedEpoch() {
    if (PrepareThreadBarrier()) PutThreadBarrier();
    u64 oldest = ~u64{0};
    for (ReaderSlot* slot = TheRegistry().slots.load(); slot; slot = slot->next) {
        const u64 epoch = slot->pinnedEpoch.load();
        if (epoch != 0 && epoch < oldest) oldest = epoch;
    }
    return oldest;
}

// Takes what no pin can reach out of the list; the caller frees it without holding the guard.
std::vector<RetiredObject> TakeFreeable(Registry& registry) {
    std::vector<RetiredObject> freeable;
    const u64 oldest = OldestPinnedEpoch();
    auto keep = registry.retired.begin();
    for (RetiredObject& entry : registry.retired) {
        if (entry.epoch < oldest) freeable.push_back(entry);
        else *keep++ = entry;
    }
    registry.retired.erase(keep, registry.retired.end());
    return freeable;
}

void FreeAll(const std::vector<RetiredObject>& entries) {
    for (const RetiredObject& entry : entries) entry.release(entry.object);
}

}  // namespace

constinit std::atomic<u64> detail::reclaimEpoch{1};
constinit thread_local ReaderSlot* detail::slotOfThread = nullptr;

ReaderSlot* detail::TakeSlotForThread() {
    ReaderSlot* const slot = TakeSlot();
    AtThreadEnd(&GiveSlotBack, slot);
    return slotOfThread = slot;
}

void Retire(void* object, FreeFunction release) {
    Registry& registry = TheRegistry();
    std::vector<RetiredObject> freeable;
    {
        std::lock_guard hold(registry.guard);
        // Pins taken from now on carry a greater number and can't have met the object.
        registry.retired.push_back({object, release, detail::reclaimEpoch.fetch_add(1)});
        if (registry.retired.size() % 64 == 0 || registry.retired.size() < 8) freeable = TakeFreeable(registry);
    }
    FreeAll(freeable);
}

void FreeRetired() {
    Registry& registry = TheRegistry();
    std::vector<RetiredObject> freeable;
    {
        std::lock_guard hold(registry.guard);
        freeable = TakeFreeable(registry);
    }
    FreeAll(freeable);
}

std::size_t RetiredCount() {
    std::lock_guard hold(TheRegistry().guard);
    return TheRegistry().retired.size();
}

}  // namespace vardel

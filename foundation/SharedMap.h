// SharedMap: hash map from text to record pointer, safe for any mix of threads.
//
// - Find takes no lock: one hash probe. An entry stays readable while the caller holds a ReadPin; the record that
//   it points at lives as its owner says.
// - Insert is unique: a key that is present keeps its value. A stored value may be null.
// - ForEach meets every element that is present throughout exactly once, also while the table grows, and never a
//   freed node; elements that come or go meanwhile may or may not be met. Order: insertion, but that is no promise.
// - ReplaceWith puts a finished other content in place at once: no reader sees a half-filled table.
//
// Ownership: OwnsValues frees a value when its entry is erased or replaced (once no pinned reader can hold it) and
// when the map ends. BorrowsValues never does.
//
// Records that carry their key themselves, as a field that never changes, can say so with RecordKey (a type with
// `static const TcString& Of(const V&)`). FindRecord then looks at the record alone and leaves the entry aside, which
// with many records is one wait for memory less.
//
// The hash is that of TcString::GetHashNum before it is folded to 32 bits, multiplied by a secret of the process, so
// that nobody can aim keys at one place of the table. Writers are serialised by a mutex.
#pragma once

#include <atomic>
#include <bit>
#include <memory>
#include <mutex>
#include <utility>

#include "foundation/LargeBlock.h"
#include "foundation/ProcessSecret.h"
#include "foundation/Reclaim.h"
#include "foundation/TcString.h"

namespace vardel {

enum class Ownership { OwnsValues, BorrowsValues };

// A key with its place already worked out, for several look-ups of one text.
struct HashedKey {
    explicit HashedKey(const TcString& text) : HashedKey(text, Mix(text.GetWideHash())) {}
    // Where the text's hash is known and mixed already.
    HashedKey(const TcString& text, u64 mixedHash) : key(text), mixed(mixedHash) {}
    static u64 Mix(u64 wideHash) { return (wideHash + 1) * ProcessSecret(); }
    const TcString& key;
    u64 mixed;
};

template <class V, Ownership ownership = Ownership::BorrowsValues, class RecordKey = void>
class SharedMap {
  public:
    class alignas(64) Entry {  // one cache line
      public:
        Entry(const TcString& text, u64 mixed, V* record) : key(text), mixed_(mixed), value_(record) {}
        V* Value() const { return value_.load(std::memory_order_acquire); }
        const TcString key;

      private:
        friend class SharedMap;
        const u64 mixed_;
        std::atomic<V*> value_;
        std::atomic<Entry*> next_{nullptr};
        Entry* previous_ = nullptr;  // of the writers alone
    };

    SharedMap() : body_(new Body) {}
    ~SharedMap() { delete body_.load(); }
    SharedMap(const SharedMap&) = delete;
    SharedMap& operator=(const SharedMap&) = delete;

    u32 Count() const {
        ReadPin pin;
        return body_.load()->count.load(std::memory_order_acquire);
    }
    bool IsEmpty() const { return Count() == 0; }

    // Null when absent. The caller holds a ReadPin for as long as it uses the entry.
    const Entry* Find(const HashedKey& key) const { return body_.load()->Find(key); }
    const Entry* Find(const TcString& key) const { return Find(HashedKey(key)); }

    // False when absent; a present key may have null as its record. The caller holds a ReadPin.
    bool FindRecord(const HashedKey& key, V*& record) const
        requires(!std::is_void_v<RecordKey>)
    {
        return body_.load()->FindRecord(key, record);
    }

    // Two steps that bring the memory of a FindRecord to come: its slot, and once that is there, the record's first
    // two cache lines. They find nothing and change nothing. The caller holds a ReadPin.
    void FetchSlot(u64 mixed) const
        requires(!std::is_void_v<RecordKey>)
    {
        const Table* probe = body_.load()->table.load();
        __builtin_prefetch(&probe->recordSlots[(mixed >> probe->shift) & probe->mask]);
    }
    void FetchRecord(u64 mixed) const
        requires(!std::is_void_v<RecordKey>)
    {
        body_.load()->FetchRecord(mixed);
    }

    // The record under the key, or null when absent or stored as null.
    V* FindValue(const TcString& key) const {
        ReadPin pin;
        const Entry* entry = Find(key);
        return entry ? entry->Value() : nullptr;
    }

    // False when the key is present; the value then stays with the caller.
    bool Insert(const TcString& key, V* value) {
        std::lock_guard hold(writers_);
        return body_.load()->Insert(HashedKey(key), value);
    }
    bool Insert(const TcString& key, std::unique_ptr<V> value)
        requires(ownership == Ownership::OwnsValues)
    {
        if (!Insert(key, value.get())) return false;
        value.release();
        return true;
    }

    // Takes the entry out. False when absent. A borrowed value comes back in `value`.
    bool Erase(const TcString& key, V** value = nullptr) {
        std::lock_guard hold(writers_);
        Entry* entry = body_.load()->Erase(HashedKey(key));
        if (!entry) return false;
        if constexpr (ownership == Ownership::OwnsValues) RetireObject(entry->Value());
        else if (value) *value = entry->Value();
        RetireObject(entry);
        return true;
    }

    // `visit(key, value)`; a visit that gives bool ends the walk with false.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        ReadPin pin;
        for (const Entry* entry = body_.load()->first.load(); entry; entry = entry->next_.load()) {
            if constexpr (std::is_same_v<decltype(visit(entry->key, entry->Value())), bool>) {
                if (!visit(entry->key, entry->Value())) return;
            } else {
                visit(entry->key, entry->Value());
            }
        }
    }

    // Takes over the content of `fresh`, which no other thread knows, and leaves that empty.
    void ReplaceWith(SharedMap& fresh) {
        Body* content = fresh.body_.exchange(new Body);
        std::lock_guard hold(writers_);
        RetireObject(body_.exchange(content));
    }
    void Clear() {
        SharedMap empty;
        ReplaceWith(empty);
    }

  private:
    using Slot = std::atomic<u64>;

    static constexpr bool kRecordsCarryKeys = !std::is_void_v<RecordKey>;

    // Slots hold an entry's address with 16 bits of its hash in the upper part (x86-64 user addresses have 47 bits),
    // so that a probe rarely touches the wrong entry. Where the records carry their keys a second row of slots, with
    // the same places, leads straight to the records; it is all that FindRecord reads.
    struct Table {
        explicit Table(u32 capacityLog2)
            : shift(64 - capacityLog2),
              mask((1u << capacityLog2) - 1),
              memory((sizeof(Slot) << capacityLog2) * (kRecordsCarryKeys ? 2 : 1)),
              slots(static_cast<Slot*>(memory.Data())),
              recordSlots(kRecordsCarryKeys ? slots + mask + 1 : nullptr) {
            std::uninitialized_value_construct_n(slots, (std::size_t{mask} + 1) * (kRecordsCarryKeys ? 2 : 1));
        }
        const u32 shift;
        const u32 mask;
        const LargeBlock memory;
        Slot* const slots;
        Slot* const recordSlots;
    };

    static constexpr u64 kErased = 1;
    static constexpr u64 kNoRecord = 2;  // stands for null in a record slot, beside its tag
    static constexpr u32 kStartLog2 = 4;
    static constexpr u64 kAddressMask = 0x0000ffffffffffffull;
    static u64 Tag(u64 mixed) { return (mixed << 17) & ~kAddressMask; }
    static u64 Pack(Entry* entry) { return Tag(entry->mixed_) | reinterpret_cast<std::uintptr_t>(entry); }
    static u64 PackRecord(Entry* entry) {
        const V* record = entry->Value();
        return Tag(entry->mixed_) | (record ? reinterpret_cast<std::uintptr_t>(record) : kNoRecord);
    }
    static Entry* Unpack(u64 slot) { return reinterpret_cast<Entry*>(static_cast<std::uintptr_t>(slot & kAddressMask)); }
    static V* UnpackRecord(u64 slot) { return reinterpret_cast<V*>(static_cast<std::uintptr_t>(slot & kAddressMask)); }
    static bool MayBe(u64 slot, u64 tag) { return slot != kErased && (slot & ~kAddressMask) == tag; }

    struct Body {
        Body() : table(new Table(kStartLog2)) {}
        ~Body() {
            for (Entry* entry = first.load(); entry;) {
                Entry* next = entry->next_.load();
                if constexpr (ownership == Ownership::OwnsValues) delete entry->Value();
                delete entry;
                entry = next;
            }
            delete table.load();
        }

        const Entry* Find(const HashedKey& wanted) const {
            const Table* probe = table.load();
            const u64 tag = Tag(wanted.mixed);
            for (u32 at = static_cast<u32>(wanted.mixed >> probe->shift);; ++at) {
                const u64 slot = probe->slots[at & probe->mask].load();
                if (slot == 0) return nullptr;
                if (!MayBe(slot, tag)) continue;
                const Entry* entry = Unpack(slot);
                if (entry->mixed_ == wanted.mixed && entry->key == wanted.key) return entry;
            }
        }

        bool FindRecord(const HashedKey& wanted, V*& record) const {
            const Table* probe = table.load();
            const u64 tag = Tag(wanted.mixed);
            for (u32 at = static_cast<u32>(wanted.mixed >> probe->shift);; ++at) {
                const u64 slot = probe->recordSlots[at & probe->mask].load();
                if (slot == 0) return false;
                if (!MayBe(slot, tag)) continue;
                if ((slot & kAddressMask) == kNoRecord) {
                    const u64 entry = probe->slots[at & probe->mask].load();
                    if (!MayBe(entry, tag) || !(Unpack(entry)->key == wanted.key)) continue;
                    record = nullptr;
                    return true;
                }
                record = UnpackRecord(slot);
                // What is read next lies behind the key's cache line.
                __builtin_prefetch(reinterpret_cast<const char*>(record) + 64);
                if (RecordKey::Of(*record) == wanted.key) return true;
            }
        }

        void FetchRecord(u64 mixed) const {
            const Table* probe = table.load();
            const u64 tag = Tag(mixed);
            for (u32 at = static_cast<u32>(mixed >> probe->shift);; ++at) {
                const u64 slot = probe->recordSlots[at & probe->mask].load();
                if (slot == 0) return;
                if (!MayBe(slot, tag)) continue;
                // Perhaps another one's, or none at all: it is only asked for and never followed.
                const char* record = reinterpret_cast<const char*>(UnpackRecord(slot));
                __builtin_prefetch(record, 1);
                __builtin_prefetch(record + 64, 1);
                return;
            }
        }

        bool Insert(const HashedKey& wanted, V* value) {
            if (Find(wanted)) return false;
            Table* current = table.load();
            // Half full, erased places included: make a fresh table, sized by what is really there.
            if ((used + 1) * 2 > current->mask + 1) current = Rebuild();
            Entry* entry = new Entry(wanted.key, wanted.mixed, value);
            entry->previous_ = last;
            Place(*current, entry);
            ++used;
            (last ? last->next_ : first).store(entry);
            last = entry;
            count.store(count.load() + 1);
            return true;
        }

        Entry* Erase(const HashedKey& wanted) {
            Entry* entry = const_cast<Entry*>(Find(wanted));
            if (!entry) return nullptr;
            Table* current = table.load();
            u32 at = static_cast<u32>(wanted.mixed >> current->shift);
            while (current->slots[at & current->mask].load() != Pack(entry)) ++at;
            if constexpr (kRecordsCarryKeys) current->recordSlots[at & current->mask].store(kErased);
            current->slots[at & current->mask].store(kErased);
            Entry* next = entry->next_.load();
            (entry->previous_ ? entry->previous_->next_ : first).store(next);
            if (next) next->previous_ = entry->previous_;
            else last = entry->previous_;
            count.store(count.load() - 1);
            return entry;  // its own next stays, for a walker that stands on it
        }

        static void Place(Table& target, Entry* entry) {
            u32 at = static_cast<u32>(entry->mixed_ >> target.shift);
            while (target.slots[at & target.mask].load(std::memory_order_relaxed) != 0) ++at;
            target.slots[at & target.mask].store(Pack(entry));
            if constexpr (kRecordsCarryKeys) target.recordSlots[at & target.mask].store(PackRecord(entry));
        }

        Table* Rebuild() {
            // At most a third full, so that the next time is far.
            const u32 log2 = static_cast<u32>(std::bit_width(count.load() * 3 + 2));
            Table* fresh = new Table(log2 < kStartLog2 ? kStartLog2 : log2);
            used = 0;
            for (Entry* entry = first.load(); entry; entry = entry->next_.load()) {
                Place(*fresh, entry);
                ++used;
            }
            RetireObject(table.exchange(fresh));
            return fresh;
        }

        std::atomic<Table*> table;
        std::atomic<Entry*> first{nullptr};
        Entry* last = nullptr;
        std::atomic<u32> count{0};
        u32 used = 0;  // slots that are not empty, erased ones included
    };

    std::atomic<Body*> body_;
    std::mutex writers_;
};

}  // namespace vardel

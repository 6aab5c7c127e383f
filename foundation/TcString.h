// TcString: the owning 8-bit text of the whole program (system code page, NUL-terminated, length known).
//
// Texts of up to 23 characters (any IP or MAC address) live inside the object; longer ones in a heap buffer that
// is kept while it fits. The object is 32 bytes in every build.
//
// Threads: copying, assigning (`operator=`, `Set`, `Clear`), comparing, `GetLength`, `IsEmpty` and `GetHashNum`
// are indivisible: a thread that does one of them while another assigns sees the whole old or the whole new text.
// Everything else, above all an inner pointer and editing in place, is only for a text that the calling thread
// owns. A text that another thread can reach is therefore replaced whole from a finished local.
//
// Positions count from 0 (but see GetAt) and -1 is "not found".
#pragma once

#include <atomic>
#include <bit>
#include <cstring>

#include "platform/Types.h"

namespace vardel {

class TcString {
  public:
    static constexpr int kInlineCapacity = 23;

    TcString() noexcept { ResetInline(); }
    TcString(const TcString& other);
    TcString(const char* text);  // NOLINT: texts convert
    ~TcString() {
        if (IsHeap()) FreeHeap();
    }

    TcString& operator=(const TcString& other) {
        if (!SameInline(other)) AssignText(other);
        return *this;
    }
    TcString& operator=(const char* text);
    TcString& operator=(const unsigned char* text);
    TcString& operator+=(const char* text);
    TcString& operator+=(int number);

    bool operator==(const TcString& other) const { return SameInline(other) || EqualsText(other); }
    bool operator==(const char* text) const;
    bool operator!=(const TcString& other) const { return !(*this == other); }

    // The inner buffer, valid until the next change. Never null.
    operator char*() const { return Data(); }  // NOLINT: part of the class's look
    char* GetContent() const { return Data(); }

    int GetContentAsInt() const;
    int GetLength() const { return static_cast<int>(LoadSize() & kSizeMask); }
    bool IsEmpty() const { return GetLength() == 0; }
    bool Clear();

    // 0 when equal, -1 or 1 otherwise.
    int Compare(const char* text) const;
    int Compare(const TcString& other) const;

    int Find(const char* text) const;
    int FindRev(const char* text) const;
    int Count(const char* text) const;

    // Counted from 1, unlike every other position: GetAt(GetLength()) is the last character. 0 outside the text.
    char GetAt(int position) const;

    // Copy `count` characters (fewer at the text's end or where `size` is too small), always terminated, to a
    // buffer of `size` bytes. Give the number of characters copied.
    int GetLeft(char* target, int size, int count) const;
    int GetMiddle(char* target, int size, int start, int count) const;

    bool Set(const char* data, int length);
    bool SetSize(int length);
    void Remove(int position, int count);
    void Insert(int position, const char* text);
    int Replace(const char* oldText, const char* newText);
    int ReplaceAll(const char* oldText, const char* newText);
    void Trim();
    bool ToLower();

    // As strtok over a copy of the text: `next` false starts at the beginning. After the last token gives an empty
    // text, not null. The result is valid until the next call of Token or the end of the calling thread.
    char* Token(const char* delimiters, bool next);

    // The same number for the same characters in every build and on every run; consecutive addresses spread.
    int GetHashNum() const;
    // The 64 bits that GetHashNum is folded from.
    u64 GetWideHash() const;

    // A short text that was put together in registers: its characters lowest first, zero behind the end.
    struct Words {
        u64 words[3];
        u32 length;  // at most kInlineCapacity
        int HashNum() const;
        u64 WideHash() const;
    };
    // Replaces a text that the calling thread owns.
    void SetWords(const Words& text) {
        if (IsHeap()) FreeHeap();
        std::memcpy(inline_, text.words, sizeof inline_);
        size_ = text.length;
    }

    // Makes the buffer at least size + 1 bytes long; the length stays. Gives the size asked for.
    int ExpandBuffer(int size);
    // Makes room for `size` characters, drops the old content and hands the buffer out for direct writing;
    // SetStrLen afterwards takes the length from the NUL in it.
    char* SetNewPointer(int size);
    int SetStrLen();

  private:
    using Word = std::size_t;
    static constexpr u32 kHeapFlag = 0x80000000u;
    static constexpr u32 kSizeMask = 0x7fffffffu;
    static constexpr int kWords = 24 / static_cast<int>(sizeof(Word));

    struct HeapText {
        char* data;
        u32 capacity;  // characters without the terminator
    };
    struct InlineCopy {
        Word words[kWords] = {};
        u32 size = 0;
    };
    class WriteHold;

    bool IsHeap() const { return (size_ & kHeapFlag) != 0; }
    HeapText Heap() const {
        HeapText heap;
        std::memcpy(&heap, inline_, sizeof heap);
        return heap;
    }
    char* Data() const { return IsHeap() ? Heap().data : const_cast<char*>(inline_); }
    void ResetInline() noexcept {
        std::memset(inline_, 0, sizeof inline_);
        size_ = 0;
    }
    void FreeHeap() noexcept;

    static u32 Load(const u32& value) {
        return std::atomic_ref<u32>(const_cast<u32&>(value)).load(std::memory_order_acquire);
    }
    Word LoadWord(int index) const {
        Word* words = reinterpret_cast<Word*>(const_cast<char*>(inline_));
        return std::atomic_ref<Word>(words[index]).load(std::memory_order_acquire);
    }
    u32 LoadSize() const { return Load(size_); }
    bool SameInline(const TcString& other) const;
    bool TryCopyInline(InlineCopy& copy) const;
    bool EqualsText(const TcString& other) const;
    bool EqualsBytes(const char* text, std::size_t length) const;
    void Assign(const char* text, std::size_t length);
    void AssignText(const TcString& other);
    void AssignFromHeap(const TcString& other);
    void PutInline(const InlineCopy& copy);
    void PutHeap(const char* text, u32 length);
    bool Reserve(std::size_t capacity, bool keep);
    void OwnLength(std::size_t length);

    // The text, zero from its end on, so that whole words can be compared and hashed; or a HeapText.
    alignas(8) char inline_[24];
    u32 size_;                             // length, and kHeapFlag where the text lies on the heap
    mutable std::atomic<u32> version_{0};  // odd while a writer or a heap reader is inside
};

static_assert(sizeof(TcString) == 32);
static_assert(std::endian::native == std::endian::little, "words of text are compared and hashed as they lie");

namespace detail {

constexpr u64 kHashStart = 0x51ed270b9f2a6c35ull;

inline u64 HashStep(u64 state, u64 word) {
    state = (state ^ word) * 0x9fb21c651e98df25ull;
    return state ^ (state >> 29);
}

inline int FinishHash(u64 state) {
    state ^= state >> 33;
    state *= 0xff51afd7ed558ccdull;
    state ^= state >> 33;
    return static_cast<int>(static_cast<u32>(state ^ (state >> 32)));
}

}  // namespace detail

inline u64 TcString::Words::WideHash() const {
    u64 state = detail::kHashStart ^ length;
    for (u32 at = 0; at * 8 < length; ++at) state = detail::HashStep(state, words[at]);
    return state;
}

inline int TcString::Words::HashNum() const { return detail::FinishHash(WideHash()); }

// True when both texts lie inside their objects and are equal. Takes no lock: a look that a writer disturbed gives
// false, and the caller then goes the long way. The loads are acquiring so that none can slip behind the second
// look at the versions; a writer's stores are releasing, so that none is seen before the odd version.
inline bool TcString::SameInline(const TcString& other) const {
    const u32 mine = version_.load(std::memory_order_acquire);
    const u32 others = other.version_.load(std::memory_order_acquire);
    const u32 size = LoadSize();
    Word difference = size ^ other.LoadSize();
    for (int i = 0; i < kWords; ++i) difference |= LoadWord(i) ^ other.LoadWord(i);
    const u32 moved = (version_.load(std::memory_order_relaxed) ^ mine) |
                      (other.version_.load(std::memory_order_relaxed) ^ others);
    return difference == 0 && (size & kHeapFlag) == 0 && ((mine | others) & 1) == 0 && moved == 0;
}

// A consistent copy of a text that lies inside the object; false when it lies on the heap.
inline bool TcString::TryCopyInline(InlineCopy& copy) const {
    for (;;) {
        const u32 before = version_.load(std::memory_order_acquire);
        copy.size = LoadSize();
        for (int i = 0; i < kWords; ++i) copy.words[i] = LoadWord(i);
        if (version_.load(std::memory_order_relaxed) == before && (before & 1) == 0)
            return (copy.size & kHeapFlag) == 0;
    }
}

}  // namespace vardel

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

    TcString& operator=(const TcString& other);
    TcString& operator=(const char* text);
    TcString& operator=(const unsigned char* text);
    TcString& operator+=(const char* text);
    TcString& operator+=(int number);

    bool operator==(const TcString& other) const;
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
        Word words[kWords];
        u32 size;
        bool Equals(const InlineCopy& other) const;
        void MaskTail();
    };
    class WriteHold;

    bool IsHeap() const { return (size_ & kHeapFlag) != 0; }
    u32 LoadSize() const;
    HeapText Heap() const {
        HeapText heap;
        std::memcpy(&heap, inline_, sizeof heap);
        return heap;
    }
    char* Data() const { return IsHeap() ? Heap().data : const_cast<char*>(inline_); }
    void ResetInline() noexcept {
        inline_[0] = 0;
        size_ = 0;
    }
    void FreeHeap() noexcept;
    bool TryCopyInline(InlineCopy& copy) const;
    bool EqualsBytes(const char* text, std::size_t length) const;
    void Assign(const char* text, std::size_t length);
    void AssignFromHeap(const TcString& other);
    void PutInline(const InlineCopy& copy);
    void PutHeap(const char* text, u32 length);
    bool Reserve(std::size_t capacity, bool keep);
    void OwnLength(std::size_t length) { size_ = (size_ & kHeapFlag) | static_cast<u32>(length); }

    alignas(8) char inline_[24];           // the text, or a HeapText; only ever read as one of them by a byte copy
    u32 size_;                             // length, and kHeapFlag where the text lies on the heap
    mutable std::atomic<u32> version_{0};  // odd while a writer or a heap reader is inside
};

static_assert(sizeof(TcString) == 32);

}  // namespace vardel

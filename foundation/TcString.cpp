// The text as other threads may meet it: assignments and copies that cannot be divided, comparison, hash. What a thread
// does with a text of its own stands in TcStringText.cpp.
#include "foundation/TcString.h"

#include <memory>
#include <thread>

namespace vardel {

namespace {

template <class T>
std::atomic_ref<T> Atomic(const T& value) {
    return std::atomic_ref<T>(const_cast<T&>(value));
}

void Pause(int tries) {
    if (tries > 32) std::this_thread::yield();
}

u64 LoadLittleEndian(const char* bytes, std::size_t count) {
    u64 value = 0;
    for (std::size_t i = 0; i < count; ++i) value |= static_cast<u64>(static_cast<u8>(bytes[i])) << (8 * i);
    return value;
}

u64 HashBytes(const char* bytes, std::size_t length) {
    u64 state = detail::kHashStart ^ length;
    std::size_t at = 0;
    for (; length - at >= 8; at += 8) state = detail::HashStep(state, LoadLittleEndian(bytes + at, 8));
    if (at < length) state = detail::HashStep(state, LoadLittleEndian(bytes + at, length - at));
    return state;
}

}  // namespace

// Holds the text against other writers and heap readers for a few instructions.
class TcString::WriteHold {
  public:
    explicit WriteHold(const TcString& text) : version_(text.version_) {
        for (int tries = 0;; ++tries) {
            u32 seen = version_.load(std::memory_order_relaxed);
            if ((seen & 1) == 0 && version_.compare_exchange_weak(seen, seen + 1, std::memory_order_acquire)) {
                next_ = seen + 2;
                return;
            }
            Pause(tries);
        }
    }
    ~WriteHold() { version_.store(next_, std::memory_order_release); }
    WriteHold(const WriteHold&) = delete;
    WriteHold& operator=(const WriteHold&) = delete;

  private:
    std::atomic<u32>& version_;
    u32 next_ = 0;
};

void TcString::PutInline(const InlineCopy& copy) {
    char* old = nullptr;
    {
        WriteHold hold(*this);
        if (IsHeap()) old = Heap().data;
        Word* words = reinterpret_cast<Word*>(inline_);
        for (int i = 0; i < kWords; ++i) Atomic(words[i]).store(copy.words[i], std::memory_order_release);
        Atomic(size_).store(copy.size, std::memory_order_release);
    }
    delete[] old;
}

// `text` may be part of this object's buffer.
void TcString::PutHeap(const char* text, u32 length) {
    {
        WriteHold hold(*this);
        if (IsHeap() && Heap().capacity >= length) {
            char* data = Heap().data;
            std::memmove(data, text, length);
            data[length] = 0;
            Atomic(size_).store(length | kHeapFlag, std::memory_order_release);
            return;
        }
    }
    std::unique_ptr<char[]> fresh(new char[length + 1]);
    std::memcpy(fresh.get(), text, length);
    fresh[length] = 0;
    {
        WriteHold hold(*this);
        char* old = IsHeap() ? Heap().data : nullptr;
        HeapText heap{fresh.release(), length};
        fresh.reset(old);
        Word words[kWords] = {};
        std::memcpy(words, &heap, sizeof heap);
        Word* target = reinterpret_cast<Word*>(inline_);
        for (int i = 0; i < kWords; ++i) Atomic(target[i]).store(words[i], std::memory_order_release);
        Atomic(size_).store(length | kHeapFlag, std::memory_order_release);
    }
}

void TcString::Assign(const char* text, std::size_t length) {
    if (length > kInlineCapacity) {
        PutHeap(text, static_cast<u32>(length));
        return;
    }
    InlineCopy copy;
    std::memcpy(copy.words, text, length);
    copy.size = static_cast<u32>(length);
    PutInline(copy);
}

TcString::TcString(const TcString& other) {
    ResetInline();
    *this = other;
}

TcString::TcString(const char* text) {
    ResetInline();
    Assign(text, std::strlen(text));
}

void TcString::FreeHeap() noexcept { delete[] Heap().data; }

void TcString::AssignText(const TcString& other) {
    if (this == &other) return;
    InlineCopy copy;
    if (other.TryCopyInline(copy)) PutInline(copy);
    else AssignFromHeap(other);
}

// The buffer for the copy is made before the other text is held; when that grew meanwhile, once more.
void TcString::AssignFromHeap(const TcString& other) {
    for (;;) {
        const std::size_t room = other.LoadSize() & kSizeMask;
        std::unique_ptr<char[]> copy(new char[room + 1]);
        std::size_t length;
        {
            WriteHold hold(other);
            length = other.size_ & kSizeMask;
            if (length <= room) std::memcpy(copy.get(), other.Data(), length);
        }
        if (length > room) continue;
        Assign(copy.get(), length);
        return;
    }
}

TcString& TcString::operator=(const char* text) {
    Assign(text, std::strlen(text));
    return *this;
}

TcString& TcString::operator=(const unsigned char* text) { return *this = reinterpret_cast<const char*>(text); }

bool TcString::Set(const char* data, int length) {
    if (length < 0) return false;
    Assign(data, static_cast<std::size_t>(length));
    return true;
}

bool TcString::Clear() {
    if (!IsEmpty()) Assign("", 0);
    return true;
}

bool TcString::EqualsText(const TcString& other) const {
    InlineCopy copy;
    if (TryCopyInline(copy)) return other.EqualsBytes(reinterpret_cast<const char*>(copy.words), copy.size);
    const TcString own(*this);
    return other.EqualsBytes(own.Data(), static_cast<std::size_t>(own.GetLength()));
}

bool TcString::operator==(const char* text) const { return EqualsBytes(text, std::strlen(text)); }

bool TcString::EqualsBytes(const char* text, std::size_t length) const {
    InlineCopy copy;
    if (TryCopyInline(copy)) return copy.size == length && std::memcmp(copy.words, text, length) == 0;
    WriteHold hold(*this);
    return (size_ & kSizeMask) == length && std::memcmp(Data(), text, length) == 0;
}

int TcString::Compare(const char* text) const { return *this == text ? 0 : 1; }

int TcString::Compare(const TcString& other) const { return *this == other ? 0 : 1; }

int TcString::GetHashNum() const { return detail::FinishHash(GetWideHash()); }

u64 TcString::GetWideHash() const {
    InlineCopy copy;
    if (!TryCopyInline(copy)) {
        const TcString own(*this);
        return HashBytes(own.Data(), static_cast<std::size_t>(own.GetLength()));
    }
    Words words;
    std::memcpy(words.words, copy.words, sizeof words.words);
    words.length = copy.size;
    return words.WideHash();
}

}  // namespace vardel

#include "foundation/TcString.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <thread>

#include "platform/CodePage.h"
#include "platform/ThreadEnd.h"

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

// ---- operations on a text that the calling thread owns ----

// Keeps what lies behind the end of an inline text zero.
void TcString::OwnLength(std::size_t length) {
    if (!IsHeap()) std::memset(inline_ + length, 0, sizeof inline_ - length);
    size_ = (size_ & kHeapFlag) | static_cast<u32>(length);
}

bool TcString::Reserve(std::size_t capacity, bool keep) {
    const std::size_t room = IsHeap() ? Heap().capacity : kInlineCapacity;
    if (capacity <= room) return true;
    const std::size_t length = static_cast<std::size_t>(GetLength());
    const std::size_t roomy = keep ? capacity + capacity / 2 : capacity;
    char* data = new char[roomy + 1];
    if (keep) std::memcpy(data, Data(), length + 1);
    else data[0] = 0;
    if (IsHeap()) FreeHeap();
    const HeapText heap{data, static_cast<u32>(roomy)};
    std::memcpy(inline_, &heap, sizeof heap);
    size_ = kHeapFlag | (keep ? static_cast<u32>(length) : 0);
    return true;
}

TcString& TcString::operator+=(const char* text) {
    const std::size_t length = static_cast<std::size_t>(GetLength());
    const std::string added(text);
    Reserve(length + added.size(), true);
    std::memcpy(Data() + length, added.c_str(), added.size() + 1);
    OwnLength(length + added.size());
    return *this;
}

TcString& TcString::operator+=(int number) { return *this += std::to_string(number).c_str(); }

int TcString::GetContentAsInt() const {
    // A `long` is wider on one system only; the ends of an int hold everywhere.
    const long long number = std::strtoll(Data(), nullptr, 10);
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

int TcString::Find(const char* text) const {
    const char* hit = std::strstr(Data(), text);
    return hit ? static_cast<int>(hit - Data()) : -1;
}

int TcString::FindRev(const char* text) const {
    const std::size_t wanted = std::strlen(text);
    const std::size_t length = static_cast<std::size_t>(GetLength());
    if (wanted > length) return -1;
    for (std::size_t at = length - wanted + 1; at-- > 0;)
        if (std::memcmp(Data() + at, text, wanted) == 0) return static_cast<int>(at);
    return -1;
}

int TcString::Count(const char* text) const {
    const std::size_t wanted = std::strlen(text);
    if (wanted == 0) return 0;
    int count = 0;
    for (const char* hit = std::strstr(Data(), text); hit; hit = std::strstr(hit + wanted, text)) ++count;
    return count;
}

char TcString::GetAt(int position) const {
    return position < 1 || position > GetLength() ? '\0' : Data()[position - 1];
}

int TcString::GetLeft(char* target, int size, int count) const { return GetMiddle(target, size, 0, count); }

int TcString::GetMiddle(char* target, int size, int start, int count) const {
    if (size < 1) return 0;
    int length = 0;
    if (start >= 0 && start < GetLength() && count > 0) {
        length = GetLength() - start;
        if (length > count) length = count;
        if (length > size - 1) length = size - 1;
        std::memcpy(target, Data() + start, static_cast<std::size_t>(length));
    }
    target[length] = 0;
    return length;
}

bool TcString::SetSize(int length) {
    if (length < 0) return false;
    if (length < GetLength()) {
        Data()[length] = 0;
        OwnLength(static_cast<std::size_t>(length));
    }
    return true;
}

void TcString::Remove(int position, int count) {
    const int length = GetLength();
    if (position < 0 || position >= length || count <= 0) return;
    if (count > length - position) count = length - position;
    char* data = Data();
    std::memmove(data + position, data + position + count, static_cast<std::size_t>(length - position - count + 1));
    OwnLength(static_cast<std::size_t>(length - count));
}

void TcString::Insert(int position, const char* text) {
    const std::size_t length = static_cast<std::size_t>(GetLength());
    if (position < 0) position = 0;
    std::size_t at = static_cast<std::size_t>(position);
    if (at > length) at = length;
    const std::string added(text);
    Reserve(length + added.size(), true);
    char* data = Data();
    std::memmove(data + at + added.size(), data + at, length - at + 1);
    std::memcpy(data + at, added.data(), added.size());
    OwnLength(length + added.size());
}

int TcString::Replace(const char* oldText, const char* newText) {
    const int at = Find(oldText);
    if (at < 0 || *oldText == 0) return 0;
    const std::string replacement(newText);
    Remove(at, static_cast<int>(std::strlen(oldText)));
    Insert(at, replacement.c_str());
    return 1;
}

int TcString::ReplaceAll(const char* oldText, const char* newText) {
    const std::size_t oldLength = std::strlen(oldText);
    if (oldLength == 0) return 0;
    int count = 0;
    std::string result;
    const char* rest = Data();
    for (const char* hit = std::strstr(rest, oldText); hit; hit = std::strstr(rest, oldText)) {
        result.append(rest, hit);
        result += newText;
        rest = hit + oldLength;
        ++count;
    }
    if (count == 0) return 0;
    result += rest;
    Assign(result.data(), result.size());
    return count;
}

void TcString::Trim() {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    const char* data = Data();
    int end = GetLength();
    while (end > 0 && blank(data[end - 1])) --end;
    int start = 0;
    while (start < end && blank(data[start])) ++start;
    SetSize(end);
    Remove(0, start);
}

bool TcString::ToLower() {
    LowerInCodePage(Data(), static_cast<std::size_t>(GetLength()));
    return true;
}

namespace {

// Each thread has one walk at a time, as with strtok; the text itself stays readable for the caller.
struct TokenWalk {
    std::string copy;
    std::size_t position = 0;
};

TokenWalk& WalkOfThread() {
    thread_local TokenWalk* walk = nullptr;
    if (!walk) {
        auto fresh = std::make_unique<TokenWalk>();
        AtThreadEnd(
            [](void* object) {
                delete static_cast<TokenWalk*>(object);
                walk = nullptr;
            },
            fresh.get());
        walk = fresh.release();
    }
    return *walk;
}

}  // namespace

char* TcString::Token(const char* delimiters, bool next) {
    auto& [copy, position] = WalkOfThread();
    if (!next) {
        copy.assign(Data(), static_cast<std::size_t>(GetLength()));
        position = 0;
    }
    const std::size_t start = copy.find_first_not_of(delimiters, position);
    if (start == std::string::npos) {
        position = copy.size();
        static thread_local char empty[1];
        empty[0] = 0;
        return empty;
    }
    std::size_t end = copy.find_first_of(delimiters, start);
    if (end == std::string::npos) end = copy.size();
    position = end < copy.size() ? end + 1 : end;
    copy[end < copy.size() ? end : copy.size()] = 0;
    return copy.data() + start;
}

int TcString::ExpandBuffer(int size) {
    if (size > 0) Reserve(static_cast<std::size_t>(size), true);
    return size;
}

char* TcString::SetNewPointer(int size) {
    Reserve(size > 0 ? static_cast<std::size_t>(size) : 0, false);
    Data()[0] = 0;
    OwnLength(0);
    return Data();
}

int TcString::SetStrLen() {
    if (IsHeap()) {
        OwnLength(std::strlen(Data()));
        return GetLength();
    }
    // By words: the first zero byte is found and all behind it zeroed without going through single bytes.
    u64 words[3];
    std::memcpy(words, inline_, sizeof words);
    u32 length = 0;
    bool ended = false;
    for (u64& word : words) {
        if (ended) {
            word = 0;
            continue;
        }
        const u64 zeros = (word - 0x0101010101010101ull) & ~word & 0x8080808080808080ull;
        if (zeros == 0) {
            length += 8;
            continue;
        }
        const u32 bytes = static_cast<u32>(std::countr_zero(zeros)) / 8;
        length += bytes;
        word &= bytes == 0 ? 0 : ~u64{0} >> (64 - 8 * bytes);
        ended = true;
    }
    if (!ended) words[2] &= ~u64{0} >> 8, length = kInlineCapacity;
    std::memcpy(inline_, words, sizeof words);
    size_ = length;
    return static_cast<int>(length);
}

}  // namespace vardel

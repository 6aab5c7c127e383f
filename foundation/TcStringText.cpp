// What a thread does with a text of its own: its buffer, searching, cutting and replacing, tokens. How texts are shared
// stands in TcString.cpp.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

#include "foundation/TcString.h"
#include "platform/CodePage.h"
#include "platform/ThreadEnd.h"

namespace vardel {

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

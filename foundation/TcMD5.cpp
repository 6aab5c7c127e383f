#include "foundation/TcMD5.h"

#include <bit>
#include <cstring>
#include <initializer_list>

#include "platform/Types.h"

namespace vardel {

namespace {

constexpr int kBlockSize = 64;

// floor(2^32 * abs(sin(i + 1))): RFC 1321, section 3.4.
constexpr u32 kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

struct State {
    u32 a = 0x67452301, b = 0xefcdab89, c = 0x98badcfe, d = 0x10325476;
};

u32 LoadLittleEndian(const u8* bytes) {
    return bytes[0] | static_cast<u32>(bytes[1]) << 8 | static_cast<u32>(bytes[2]) << 16 |
           static_cast<u32>(bytes[3]) << 24;
}

// The mix of round `step` / 16 and the word of the block that it takes.
u32 Mix(int step, const State& s, int& word) {
    switch (step / 16) {
        case 0:
            return word = step, (s.b & s.c) | (~s.b & s.d);
        case 1:
            return word = (5 * step + 1) % 16, (s.d & s.b) | (~s.d & s.c);
        case 2:
            return word = (3 * step + 5) % 16, s.b ^ s.c ^ s.d;
        default:
            return word = 7 * step % 16, s.c ^ (s.b | ~s.d);
    }
}

void AddBlock(State& state, const u8* block) {
    State s = state;
    for (int step = 0; step < 64; ++step) {
        int word;
        const u32 mixed = Mix(step, s, word);
        const u32 sum = s.a + mixed + kSines[step] + LoadLittleEndian(block + 4 * word);
        s = {s.d, s.b + std::rotl(sum, kShifts[step / 16][step % 4]), s.b, s.c};
    }
    state.a += s.a;
    state.b += s.b;
    state.c += s.c;
    state.d += s.d;
}

// The rest of the text, a one bit, zeros, and the text's length in bits: one block or two.
void AddTail(State& state, const u8* rest, std::size_t restLength, u64 textLength) {
    u8 tail[2 * kBlockSize] = {};
    std::memcpy(tail, rest, restLength);
    tail[restLength] = 0x80;
    const std::size_t size = restLength + 1 + 8 <= kBlockSize ? kBlockSize : 2 * kBlockSize;
    for (int i = 0; i < 8; ++i) tail[size - 8 + i] = static_cast<u8>(textLength * 8 >> (8 * i));
    for (std::size_t at = 0; at < size; at += kBlockSize) AddBlock(state, tail + at);
}

}  // namespace

void TcMD5::setPlainText(const char* text) {
    const u8* bytes = reinterpret_cast<const u8*>(text);
    const std::size_t length = std::strlen(text);
    State state;
    std::size_t at = 0;
    for (; length - at >= kBlockSize; at += kBlockSize) AddBlock(state, bytes + at);
    AddTail(state, bytes + at, length - at, length);

    char* digit = digest_;
    for (u32 word : {state.a, state.b, state.c, state.d})
        for (int i = 0; i < 4; ++i, word >>= 8)
            for (int shift : {4, 0}) *digit++ = "0123456789abcdef"[word >> shift & 15];
    *digit = 0;
}

}  // namespace vardel

#include "foundation/TcBlowfish.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "foundation/BlowfishCipher.h"

namespace vardel {

namespace {

constexpr int kBlock = BlowfishCipher::kBlockSize;
constexpr int kLargestSealed = kBlock + TcBlowfish::kLongestText;

// Stored passwords can't be read without these: they never change.
constexpr u8 kTextKey[] = {
    0x55, 0x90, 0x47, 0xfe, 0x62, 0x38, 0xf3, 0x79, 0x22, 0x17, 0xab, 0x05, 0x90, 0x20, 0xfe, 0x9f,
    0x4e, 0xcf, 0xb9, 0x51, 0x45, 0xbb, 0x91, 0x33, 0x1d, 0x19, 0x94, 0xb4, 0xc0, 0xe3, 0x67, 0xba,
};
constexpr u8 kCheckKey[] = {
    0xd3, 0x8e, 0x78, 0x55, 0xc6, 0xc6, 0x8f, 0x81, 0x71, 0x8a, 0x85, 0xad, 0x47, 0xcf, 0x18, 0x42,
    0xd3, 0x07, 0x35, 0x99, 0xc0, 0x0b, 0xc8, 0x9d, 0xdd, 0x39, 0x00, 0xb4, 0xc0, 0x5e, 0x25, 0x25,
};

const BlowfishCipher& TextCipher() {
    static const BlowfishCipher cipher(kTextKey);
    return cipher;
}

const BlowfishCipher& CheckCipher() {
    static const BlowfishCipher cipher(kCheckKey);
    return cipher;
}

using Block = std::array<u8, kBlock>;

void XorInto(u8* target, const u8* other) {
    for (int i = 0; i < kBlock; ++i) target[i] ^= other[i];
}

// A text and its check block: [check block][padded text].
struct Sealed {
    u8 bytes[kLargestSealed] = {};
    int paddedLength = 0;

    u8* Text() { return bytes + kBlock; }
    int Size() const { return kBlock + paddedLength; }
};

Block CheckBlock(const u8* padded, int paddedLength, int length) {
    Block check{static_cast<u8>(length)};
    CheckCipher().EncryptBlock(check.data());
    for (int at = 0; at < paddedLength; at += kBlock) {
        XorInto(check.data(), padded + at);
        CheckCipher().EncryptBlock(check.data());
    }
    return check;
}

Sealed Seal(const u8* text, int length) {
    Sealed sealed;
    sealed.paddedLength = (length + kBlock - 1) / kBlock * kBlock;
    std::memcpy(sealed.Text(), text, static_cast<std::size_t>(length));
    const Block check = CheckBlock(sealed.Text(), sealed.paddedLength, length);
    std::memcpy(sealed.bytes, check.data(), kBlock);
    for (int at = kBlock; at < sealed.Size(); at += kBlock) {
        XorInto(sealed.bytes + at, sealed.bytes + at - kBlock);
        TextCipher().EncryptBlock(sealed.bytes + at);
    }
    return sealed;
}

// Leaves the padded text in the clear and gives its length without the zeros; 0 when the check block doesn't
// fit.
int Open(Sealed& sealed) {
    for (int at = sealed.Size() - kBlock; at >= kBlock; at -= kBlock) {
        TextCipher().DecryptBlock(sealed.bytes + at);
        XorInto(sealed.bytes + at, sealed.bytes + at - kBlock);
    }
    const u8* end = sealed.Text() + sealed.paddedLength;
    const int length =
        static_cast<int>(std::find(static_cast<const u8*>(sealed.Text()), end, 0) - sealed.Text());
    const Block check = CheckBlock(sealed.Text(), sealed.paddedLength, length);
    return std::memcmp(check.data(), sealed.bytes, kBlock) == 0 ? length : 0;
}

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int WriteBase64(const u8* bytes, int size, unsigned char* text) {
    int length = 0;
    u32 bits = 0;
    int count = 0;
    for (int i = 0; i < size; ++i) {
        bits = bits << 8 | bytes[i];
        for (count += 8; count >= 6; count -= 6) text[length++] = kAlphabet[bits >> (count - 6) & 63];
    }
    if (count > 0) text[length++] = kAlphabet[bits << (6 - count) & 63];
    return length;
}

// -1 when it is no base64 of at most `room` bytes.
int ReadBase64(const unsigned char* text, int length, u8* bytes, int room) {
    static_assert(sizeof kAlphabet == 65);
    int size = 0;
    u32 bits = 0;
    int count = 0;
    for (int i = 0; i < length; ++i) {
        const void* digit = text[i] ? std::memchr(kAlphabet, text[i], 64) : nullptr;
        if (!digit) return -1;
        bits = bits << 6 | static_cast<u32>(static_cast<const char*>(digit) - kAlphabet);
        count += 6;
        if (count < 8) continue;
        if (size == room) return -1;
        count -= 8;
        bytes[size++] = static_cast<u8>(bits >> count);
    }
    // What is left of the last digit is zero and no whole digit.
    const bool tidy = count < 6 && (bits & ((1u << count) - 1)) == 0;
    return tidy ? size : -1;
}

// The text of a stored form in `sealed`; 0 when it isn't one.
int Unseal(const unsigned char* stored, int length, Sealed& sealed) {
    const int size = ReadBase64(stored, length, sealed.bytes, kLargestSealed);
    if (size < 2 * kBlock || size % kBlock != 0) return 0;
    sealed.paddedLength = size - kBlock;
    return Open(sealed);
}

}  // namespace

bool TcBlowfish::Encode(unsigned char* buffer, int length) {
    if (length < 0) return false;
    length = static_cast<int>(std::find(buffer, buffer + length, 0) - buffer);
    const bool fits = length <= kLongestText;
    if (length == 0 || !fits) {
        buffer[0] = 0;
        return fits;
    }
    const Sealed sealed = Seal(buffer, length);
    buffer[WriteBase64(sealed.bytes, sealed.Size(), buffer)] = 0;
    return true;
}

bool TcBlowfish::Decode(unsigned char* buffer, int length) {
    if (length < 0) return false;
    Sealed sealed;
    const int textLength = Unseal(buffer, length, sealed);
    // Nothing of the stored form stays behind the text.
    std::memset(buffer, 0, static_cast<std::size_t>(length) + 1);
    std::memcpy(buffer, sealed.Text(), static_cast<std::size_t>(textLength));
    return textLength > 0 || length == 0;
}

}  // namespace vardel

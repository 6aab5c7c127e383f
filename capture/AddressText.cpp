#include "capture/AddressText.h"

#include <array>

namespace vardel {

namespace {

// An octet in decimal with a dot behind it, first character lowest.
struct DecimalOctet {
    u32 characters;
    u32 length;
};

constexpr std::array<DecimalOctet, 256> MakeDecimalOctets() {
    std::array<DecimalOctet, 256> octets{};
    for (u32 value = 0; value < 256; ++value) {
        u32 digits[3];
        u32 count = 0;
        if (value >= 100) digits[count++] = value / 100;
        if (value >= 10) digits[count++] = value / 10 % 10;
        digits[count++] = value % 10;
        u32 characters = 0;
        for (u32 i = 0; i < count; ++i) characters |= ('0' + digits[i]) << (8 * i);
        octets[value] = {characters | u32{'.'} << (8 * count), count + 1};
    }
    return octets;
}

constexpr std::array<u16, 256> MakeHexOctets() {
    constexpr char digits[] = "0123456789abcdef";
    std::array<u16, 256> octets{};
    for (u32 value = 0; value < 256; ++value)
        octets[value] = static_cast<u16>(digits[value >> 4] | digits[value & 15] << 8);
    return octets;
}

constexpr auto kDecimal = MakeDecimalOctets();
constexpr auto kHex = MakeHexOctets();

// Two hexadecimal digits and, but for the last octet, the colon behind them.
u64 HexWithColon(u8 octet) { return kHex[octet] | u64{':'} << 16; }

}  // namespace

TcString::Words FormatIpAddress(const u8 (&octets)[4]) {
    u64 words[2] = {0, 0};
    u32 length = 0;
    for (u8 octet : octets) {
        const DecimalOctet& decimal = kDecimal[octet];
        const u32 bit = 8 * length;
        if (bit < 64) {
            words[0] |= static_cast<u64>(decimal.characters) << bit;
            if (bit > 32) words[1] |= static_cast<u64>(decimal.characters) >> (64 - bit);
        } else {
            words[1] |= static_cast<u64>(decimal.characters) << (bit - 64);
        }
        length += decimal.length;
    }
    // The last dot goes.
    const u32 dot = 8 * (length - 1);
    words[dot / 64] &= ~(u64{0xff} << (dot % 64));
    return {{words[0], words[1], 0}, length - 1};
}

TcString::Words FormatMacAddress(const u8 (&octets)[6]) {
    const u64 third = HexWithColon(octets[2]);
    const u64 fourth = HexWithColon(octets[3]);
    const u64 fifth = HexWithColon(octets[4]);
    const u64 last = kHex[octets[5]];
    return {{HexWithColon(octets[0]) | HexWithColon(octets[1]) << 24 | third << 48,
             third >> 16 | fourth << 8 | fifth << 32 | last << 56, last >> 8},
            17};
}

}  // namespace vardel

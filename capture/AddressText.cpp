#include "capture/AddressText.h"

#include <array>

namespace vardel {

namespace {

// An octet in decimal with a dot behind it, first character lowest.
struct DecimalOctet {
    u32 characters;
    u32 length;  // 2 to 4

    u32 Bits() const { return 8 * length; }
};

consteval std::array<DecimalOctet, 256> MakeDecimalOctets() {
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

consteval std::array<u16, 256> MakeHexOctets() {
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

// Without a branch: the lengths of addresses follow no pattern that a processor could foretell.
TcString::Words FormatIpAddress(const u8 (&octets)[4]) {
    const DecimalOctet a = kDecimal[octets[0]], b = kDecimal[octets[1]];
    const DecimalOctet c = kDecimal[octets[2]], d = kDecimal[octets[3]];
    // Two octets with their dots are 4 to 8 characters, so each half fits a word.
    const u64 front = a.characters | static_cast<u64>(b.characters) << a.Bits();
    const u64 lastDigits = d.characters & ~(u32{0xff} << (d.Bits() - 8));
    const u64 back = c.characters | lastDigits << c.Bits();
    const u32 frontBits = a.Bits() + b.Bits();
    // Shifted in two steps, as a word can't be shifted by all its 64 bits at once.
    return {{front | back << frontBits / 2 << frontBits / 2, back >> (64 - frontBits), 0},
            a.length + b.length + c.length + d.length - 1};
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

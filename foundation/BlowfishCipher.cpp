#include "foundation/BlowfishCipher.h"

#include <utility>

namespace vardel {

namespace {

u32 LoadBigEndian(const u8* bytes) {
    return static_cast<u32>(bytes[0]) << 24 | static_cast<u32>(bytes[1]) << 16 |
           static_cast<u32>(bytes[2]) << 8 | bytes[3];
}

void StoreBigEndian(u8* bytes, u32 value) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<u8>(value >> (24 - 8 * i));
}

}  // namespace

BlowfishCipher::BlowfishCipher(std::span<const u8> key) : schedule_(kInitialSchedule) {
    std::size_t at = 0;
    for (u32& subkey : schedule_.subkeys) {
        u32 word = 0;
        for (int i = 0; i < 4 && !key.empty(); ++i, at = (at + 1) % key.size()) word = word << 8 | key[at];
        subkey ^= word;
    }
    Halves block{0, 0};
    const auto fill = [&](u32& first, u32& second) {
        block = Encrypt(block);
        first = block.left;
        second = block.right;
    };
    for (int i = 0; i < kRounds + 2; i += 2) fill(schedule_.subkeys[i], schedule_.subkeys[i + 1]);
    for (auto& box : schedule_.boxes)
        for (int i = 0; i < 256; i += 2) fill(box[i], box[i + 1]);
}

u32 BlowfishCipher::Round(u32 half) const {
    const auto& boxes = schedule_.boxes;
    return ((boxes[0][half >> 24] + boxes[1][half >> 16 & 0xff]) ^ boxes[2][half >> 8 & 0xff]) +
           boxes[3][half & 0xff];
}

BlowfishCipher::Halves BlowfishCipher::Encrypt(Halves block) const {
    for (int i = 0; i < kRounds; ++i) {
        block.left ^= schedule_.subkeys[i];
        block.right ^= Round(block.left);
        std::swap(block.left, block.right);
    }
    return {block.right ^ schedule_.subkeys[kRounds + 1], block.left ^ schedule_.subkeys[kRounds]};
}

BlowfishCipher::Halves BlowfishCipher::Decrypt(Halves block) const {
    for (int i = kRounds + 1; i > 1; --i) {
        block.left ^= schedule_.subkeys[i];
        block.right ^= Round(block.left);
        std::swap(block.left, block.right);
    }
    return {block.right ^ schedule_.subkeys[0], block.left ^ schedule_.subkeys[1]};
}

void BlowfishCipher::EncryptBlock(u8* block) const {
    const Halves result = Encrypt({LoadBigEndian(block), LoadBigEndian(block + 4)});
    StoreBigEndian(block, result.left);
    StoreBigEndian(block + 4, result.right);
}

void BlowfishCipher::DecryptBlock(u8* block) const {
    const Halves result = Decrypt({LoadBigEndian(block), LoadBigEndian(block + 4)});
    StoreBigEndian(block, result.left);
    StoreBigEndian(block + 4, result.right);
}

}  // namespace vardel

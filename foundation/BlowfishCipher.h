// The Blowfish block cipher (B. Schneier, "Description of a New Variable-Length Key, 64-Bit Block Cipher",
// 1994): blocks of 8 bytes, 16 rounds, keys of 1 to 56 bytes.
//
// Building one takes 521 block operations; an object is not changed afterwards and may be used by all
// threads.
#pragma once

#include <span>

#include "platform/Types.h"

namespace vardel {

class BlowfishCipher {
  public:
    static constexpr int kBlockSize = 8;

    // An empty key counts as one zero byte; bytes behind the 72nd have no effect.
    explicit BlowfishCipher(std::span<const u8> key);

    // One block, its two halves big-endian.
    void EncryptBlock(u8* block) const;
    void DecryptBlock(u8* block) const;

  private:
    static constexpr int kRounds = 16;

    struct Schedule {
        u32 subkeys[kRounds + 2];
        u32 boxes[4][256];
    };
    static const Schedule kInitialSchedule;

    struct Halves {
        u32 left, right;
    };
    Halves Encrypt(Halves block) const;
    Halves Decrypt(Halves block) const;
    u32 Round(u32 half) const;

    Schedule schedule_;
};

}  // namespace vardel

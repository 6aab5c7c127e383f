// A fuzzer's bytes, taken one field after the other. Behind their end every field is 0 and every block empty.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/Types.h"
#include "tests/unit/support/Frames.h"

namespace vardel::test {

class FuzzInput {
  public:
    FuzzInput(const u8* bytes, std::size_t size) : bytes_(bytes), left_(size) {}

    bool IsEmpty() const { return left_ == 0; }
    u8 Byte() {
        if (left_ == 0) return 0;
        --left_;
        return *bytes_++;
    }
    bool Flag() { return (Byte() & 1) != 0; }
    // 0 to count - 1.
    u32 Below(u32 count) { return Byte() % count; }
    // Four bytes, high byte first, with their sign.
    i64 Signed32() {
        u32 value = 0;
        for (int i = 0; i < 4; ++i) value = value << 8 | Byte();
        return static_cast<i32>(value);
    }
    // A length of one byte, or of two more (high byte first) where that is 255, and as many bytes as are
    // there of it.
    Frame Block() {
        std::size_t size = Byte();
        if (size == 255) {
            size = Byte() * 256u;
            size += Byte();
        }
        if (size > left_) size = left_;
        Frame block(bytes_, bytes_ + size);
        bytes_ += size;
        left_ -= size;
        return block;
    }

  private:
    const u8* bytes_;
    std::size_t left_;
};

// Ends the run with a finding where a handler and its twin differ.
inline void MustBeEmpty(const std::string& difference) {
    if (difference.empty()) return;
    std::fprintf(stderr, "the handler and its literal twin differ: %s\n", difference.c_str());
    std::abort();
}

}  // namespace vardel::test

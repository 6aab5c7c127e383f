// FrameView: the one way in which a captured frame's bytes are read.
//
// It borrows the capture library's buffer and knows the captured length: a byte behind the end reads as 0, and a
// text ends there at the latest, so no field of a hostile frame can lead a reader outside.
#pragma once

#include <cstring>
#include <string_view>

#include "platform/Types.h"

namespace vardel {

class FrameView {
  public:
    FrameView(const u8* bytes, u32 captured) : bytes_(bytes), size_(bytes ? captured : 0) {}

    u32 Size() const { return size_; }

    u8 At(u32 offset) const { return offset < size_ ? bytes_[offset] : u8{0}; }
    u16 Big16(u32 offset) const { return static_cast<u16>(At(offset) << 8 | At(After(offset, 1))); }
    u32 Little32(u32 offset) const {
        return static_cast<u32>(At(offset)) | static_cast<u32>(At(After(offset, 1))) << 8 |
               static_cast<u32>(At(After(offset, 2))) << 16 | static_cast<u32>(At(After(offset, 3))) << 24;
    }

    // Fills `target` with `count` bytes from `offset` on; what lies behind the end is 0.
    void Copy(u32 offset, void* target, u32 count) const {
        if (offset <= size_ && count <= size_ - offset) {
            std::memcpy(target, bytes_ + offset, count);
            return;
        }
        const u32 there = offset < size_ ? (count < size_ - offset ? count : size_ - offset) : 0;
        if (there > 0) std::memcpy(target, bytes_ + offset, there);
        std::memset(static_cast<u8*>(target) + there, 0, count - there);
    }

    // Length of the NUL-terminated text at `offset`, at most `limit` characters, ending at the frame's end at the
    // latest.
    u32 TextLength(u32 offset, u32 limit) const {
        u32 length = 0;
        while (length < limit && At(After(offset, length)) != 0) ++length;
        return length;
    }

    // The same text, of any length; it borrows the frame.
    std::string_view Text(u32 offset) const {
        if (offset >= size_) return {};
        const std::string_view rest(reinterpret_cast<const char*>(bytes_) + offset, size_ - offset);
        return rest.substr(0, rest.find('\0'));
    }

    // The frame from `offset` on, at most `count` bytes.
    FrameView Part(u32 offset, u32 count) const {
        if (offset >= size_) return FrameView(nullptr, 0);
        return FrameView(bytes_ + offset, count < size_ - offset ? count : size_ - offset);
    }

  private:
    // Saturates: an offset that would wrap reads as behind the end.
    static u32 After(u32 offset, u32 more) { return offset > ~u32{0} - more ? ~u32{0} : offset + more; }

    const u8* bytes_;
    u32 size_;
};

}  // namespace vardel

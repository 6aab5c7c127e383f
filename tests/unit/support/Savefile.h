// Savefiles as a test speaks of them: frames with the moment at which each was captured.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "tests/unit/support/Frames.h"

namespace vardel::test {

struct SavedFrame {
    i64 millisecond = 0;  // since the start of the capture
    Frame frame = {};
};

constexpr u32 kLinkTypeEthernet = 1;

// A savefile in the classic format with microseconds, little-endian. `torn` bytes are missing at its end.
inline std::string SavefileBytes(const std::vector<SavedFrame>& frames, u32 linkType = kLinkTypeEthernet,
                                 std::size_t torn = 0) {
    constexpr i64 kStart = 1'700'000'000;
    FrameWriter out;
    out.Little32(0xa1b2c3d4)
        .Little16(2)
        .Little16(4)
        .Little32(0)
        .Little32(0)
        .Little32(65536)
        .Little32(linkType);
    for (const SavedFrame& saved : frames) {
        const u32 size = static_cast<u32>(saved.frame.size());
        out.Little32(static_cast<u32>(kStart + saved.millisecond / 1000));
        out.Little32(static_cast<u32>(saved.millisecond % 1000 * 1000)).Little32(size).Little32(size);
        out.Text({reinterpret_cast<const char*>(saved.frame.data()), saved.frame.size()});
    }
    const Frame bytes = out.Done(false);
    return std::string(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(torn));
}

struct ReadFrame {
    i64 second = 0;  // since 1970; the file's 32 bits with their sign, as the capture library takes them
    Frame frame = {};
};

// The frames of such a file, up to where it ends or is torn.
inline std::vector<ReadFrame> FramesOf(const std::string& bytes) {
    constexpr std::size_t kFileHeader = 24, kFrameHeader = 16;
    const auto little32 = [&](std::size_t at) {
        u32 value = 0;
        for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<u8>(bytes[at + i]);
        return value;
    };
    std::vector<ReadFrame> frames;
    for (std::size_t at = kFileHeader; bytes.size() >= at + kFrameHeader;) {
        const std::size_t size = little32(at + 8);
        const i64 second = static_cast<i32>(little32(at));
        at += kFrameHeader;
        if (size > bytes.size() - at) break;
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        frames.push_back({second, Frame(first, first + static_cast<std::ptrdiff_t>(size))});
        at += size;
    }
    return frames;
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace vardel::test

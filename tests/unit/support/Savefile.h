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

inline void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace vardel::test

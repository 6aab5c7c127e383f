#include "capture/NetBiosBrowse.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace vardel {

namespace {

// Offsets from the start of the frame.
constexpr u32 kDatagramLengthAt = 52;
constexpr u32 kSourceNameAt = 56;
constexpr u32 kNameLimit = 255;

// Offsets from the start of the SMB block. What follows the setup words stands two bytes later for each of
// them.
constexpr u32 kBlockLimit = 512;
constexpr u32 kCommandAt = 4;
constexpr u32 kWordCountAt = 32;
constexpr u32 kSetupCountAt = 59;
constexpr u32 kByteCountAt = 61;
constexpr u32 kTransactionNameAt = 63;

constexpr u8 kTransactionCommand = 0x25;
constexpr u8 kRejectedWordCount = 8;
constexpr std::string_view kTransactionPrefix = "\\MAILSLOT\\BROWSE";

// Offsets from the browser operation.
constexpr u32 kServerNameAt = 6;
constexpr u32 kOsMajorAt = 22;
constexpr u32 kOsMinorAt = 23;
constexpr u32 kServerTypeAt = 24;

constexpr u8 kHostAnnouncement = 1;
constexpr u8 kLocalMasterAnnouncement = 15;

// Server type bits.
constexpr u32 kNovell = 0x80;
constexpr u32 kMacOs = 0x40;
constexpr u32 kUnix = 0x800;
constexpr u32 kNtWorkstation = 0x1000;
constexpr u32 kServer = 0x8000;

constexpr u32 kUnknownOsTextId = 116;

// The label of a version that the table does not know: stands in for what the bits or the string table say.
constexpr char kOneBlank[] = " ";

constexpr int kAny = -1;
constexpr OsClass kKeepClass = static_cast<OsClass>(~0u);

struct OsRow {
    int major;
    int minor;
    u32 bit;            // must be set; 0: no condition
    const char* label;  // null: left as it is
    OsClass osClass;
};

// The first row that fits decides. The last one fits every version.
constexpr OsRow kOsRows[] = {
    {4, kAny, kUnix, "Unix/Linux", kKeepClass},
    {4, kAny, kServer, "Microsoft Windows NT 4.0 Server", OsClass::Server},
    {4, kAny, kNtWorkstation, "Microsoft Windows NT 4.0 Workstation", OsClass::Workstation},
    {4, kAny, 0, "Microsoft Windows 9x/ME", OsClass::Workstation},
    {5, 0, kServer, "Microsoft Windows Server 2000", OsClass::Server},
    {5, 0, 0, "Microsoft Windows 2000 Workstation", OsClass::Workstation},
    {5, 1, 0, "Microsoft Windows XP", OsClass::Workstation},
    {5, 2, 0, "Microsoft Windows Server 2003", OsClass::Server},
    {5, kAny, 0, kOneBlank, kKeepClass},
    {6, 0, kServer, "Microsoft Windows Server 2008", OsClass::Server},
    {6, 0, 0, "Microsoft Windows Vista", OsClass::Workstation},
    {6, 1, kServer, "Microsoft Windows Server 2008 R2", OsClass::Server},
    {6, 1, 0, "Microsoft Windows 7", OsClass::Workstation},
    {6, 2, kServer, "Microsoft Windows Server 2012", OsClass::Server},
    {6, 2, 0, "Microsoft Windows 8", OsClass::Workstation},
    {6, kAny, 0, nullptr, kKeepClass},
    {kAny, kAny, 0, kOneBlank, kKeepClass},
};

bool Fits(const OsRow& row, const HostAnnouncement& announcement) {
    return (row.major == kAny || row.major == announcement.osMajor) &&
           (row.minor == kAny || row.minor == announcement.osMinor) &&
           (row.bit == 0 || (announcement.serverType & row.bit) != 0);
}

const OsRow& OsRowOf(const HostAnnouncement& announcement) {
    return *std::find_if(std::begin(kOsRows), std::end(kOsRows) - 1,
                         [&](const OsRow& row) { return Fits(row, announcement); });
}

void ApplyOs(const HostAnnouncement& announcement, HostRecord& host, const VardelData& data) {
    const OsRow& row = OsRowOf(announcement);
    const char* label = row.label;
    OsClass osClass = row.osClass;
    char unknown[100];
    // The test is on the text that the host has after the table, so a blank from elsewhere is replaced as
    // well.
    if (label ? label == kOneBlank : host.os == kOneBlank) {
        if (announcement.serverType & kNovell) {
            label = "Novell";
            osClass = OsClass::Server;
        } else if (announcement.serverType & kMacOs) {
            label = "Mac OS";
            osClass = OsClass::Workstation;
        } else {
            data.LoadText(kUnknownOsTextId, unknown, sizeof unknown);
            label = unknown;
        }
    }
    if (label) host.os = label;
    if (osClass != kKeepClass) host.osClass = osClass;
    // Set also where the label was left as it is; rowDirty is left alone, the view meets the text by itself.
    host.osFromBrowse = 1;
}

// The SMB block behind both names, at most 512 bytes of it; empty where the datagram's length leaves nothing.
FrameView BlockOf(const FrameView& frame) {
    const u32 sourceLength = frame.TextLength(kSourceNameAt, kNameLimit);
    const u32 targetAt = kSourceNameAt + sourceLength + 1;
    const u32 targetLength = frame.TextLength(targetAt, kNameLimit);
    const i32 rest = static_cast<i32>(frame.Big16(kDatagramLengthAt)) - static_cast<i32>(targetLength + 1) -
                     static_cast<i32>(sourceLength + 1);
    if (rest < 1) return FrameView(nullptr, 0);
    return frame.Part(targetAt + targetLength + 1, std::min(static_cast<u32>(rest), kBlockLimit));
}

bool StartsWith(const FrameView& block, u32 offset, std::string_view text) {
    for (u32 i = 0; i < text.size(); ++i)
        if (block.At(offset + i) != static_cast<u8>(text[i])) return false;
    return true;
}

}  // namespace

std::optional<HostAnnouncement> ParseHostAnnouncement(const FrameView& frame) {
    const FrameView block = BlockOf(frame);
    if (block.At(kCommandAt) != kTransactionCommand) return std::nullopt;
    const u32 setupBytes = 2u * block.At(kSetupCountAt);
    // Only the low byte of the byte count is looked at: a count of 256 is rejected too.
    if (block.At(kByteCountAt + setupBytes) == 0) return std::nullopt;
    if (block.At(kWordCountAt) == kRejectedWordCount) return std::nullopt;
    const u32 nameAt = kTransactionNameAt + setupBytes;
    if (!StartsWith(block, nameAt, kTransactionPrefix)) return std::nullopt;
    const u32 operationAt = nameAt + block.TextLength(nameAt, kBlockLimit) + 1;
    const u8 operation = block.At(operationAt);
    if (operation != kHostAnnouncement && operation != kLocalMasterAnnouncement) return std::nullopt;

    HostAnnouncement found{};
    block.Copy(operationAt + kServerNameAt, found.serverName, kServerNameSize);
    found.osMajor = block.At(operationAt + kOsMajorAt);
    found.osMinor = block.At(operationAt + kOsMinorAt);
    found.serverType = block.Little32(operationAt + kServerTypeAt);
    return found;
}

void ApplyHostAnnouncement(const HostAnnouncement& announcement, HostRecord& host, const VardelData& data) {
    if (!host.isLocal) ApplyOs(announcement, host, data);
    if (!host.nameUnresolved) return;
    TcString name(announcement.serverName);
    name.ToLower();
    host.hostName = name;
    host.nameUnresolved = 0;
}

}  // namespace vardel

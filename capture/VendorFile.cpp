#include "capture/VendorFile.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>

#include "foundation/TextTrim.h"

namespace vardel {

namespace {

constexpr const char* kFileName = "ethercodes.dat";
constexpr const char* kFolderName = "Vardelwatch";
constexpr long kLargestFile = 1L << 30;  // bytes; the memory for more counts as not to be had

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

void StoreVendor(VendorMap& vendors, const TcString& key, std::string_view field) {
    // Cut first, trimmed then. Trimming also takes the CR of a CR LF, where the system's text mode left it.
    const std::string_view name = TrimmedText(field.substr(0, kLongestVendorText));
    auto vendor = std::make_unique<TcString>();
    vendor->Set(name.data(), static_cast<int>(name.size()));
    vendors.Insert(key, std::move(vendor));
}

// Text mode: the Windows runtime turns CR LF into LF. Some systems open a folder as a file and fail at the
// first read; that counts as not opened.
OpenFile OpenText(const std::string& path) {
    OpenFile file(std::fopen(path.c_str(), "r"));
    if (!file) return nullptr;
    errno = 0;
    if (std::getc(file.get()) == EOF && std::ferror(file.get()) && errno == EISDIR) return nullptr;
    std::rewind(file.get());
    return file;
}

std::string ReadWhole(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0) return {};
    const long size = std::ftell(file);
    if (size <= 0 || size > kLargestFile) return {};
    std::rewind(file);
    try {
        std::string bytes(static_cast<std::size_t>(size), '\0');
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
        return bytes;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

void NormaliseVendorKey(TcString& key) {
    if (key.GetAt(2) == ':') key.Insert(0, "0");
    // Wanted: this pads behind the digit. The second octet of 0:a:95 comes out as a0, and the table is built
    // so.
    if (key.GetAt(5) == ':') key.Insert(4, "0");
    if (key.GetLength() == 7) key.Insert(6, "0");
}

void ParseVendorFile(std::string_view bytes, VendorMap& vendors, const std::function<bool()>& goes) {
    bytes = bytes.substr(0, bytes.find('\0'));
    // Wanted: the key lives across lines, so a line without a tab goes under the key of the line before,
    // where it usually finds an entry and changes nothing.
    TcString key;
    while (goes()) {
        const std::size_t lineEnd = bytes.find('\n');
        if (lineEnd == std::string_view::npos) return;
        std::string_view field = bytes.substr(0, lineEnd);
        bytes.remove_prefix(lineEnd + 1);
        const std::size_t tab = field.find('\t');
        if (tab != std::string_view::npos) {
            key.Set(field.data(), static_cast<int>(tab));
            NormaliseVendorKey(key);
            field.remove_prefix(tab + 1);
            field = field.substr(0, field.find('\t'));
        }
        StoreVendor(vendors, key, field);
    }
}

std::vector<std::string> VendorFilePaths(Folders& folders) {
    const char separator = folders.Separator();
    std::vector<std::string> paths;
    const std::string userFolder = folders.LocalApplicationData();
    if (!userFolder.empty()) paths.push_back(userFolder + separator + kFolderName + separator + kFileName);
    const std::string program = folders.ProgramPath();
    const std::size_t last = program.rfind(separator);
    if (last != std::string::npos) paths.push_back(program.substr(0, last + 1) + kFileName);
    return paths;
}

std::string ReadVendorFile(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        if (const OpenFile file = OpenText(path)) return ReadWhole(file.get());
    return {};
}

}  // namespace vardel

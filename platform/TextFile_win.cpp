#include "platform/TextFile.h"

#include <io.h>

#include <cstdio>
#include <memory>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

constexpr char kFreshName[] = "vardelwatch.part";

struct CloseStream {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

enum class Outcome { Done, Impossible, Failed };

// In text mode. Impossible: the file couldn't be opened and nothing was changed.
Outcome Write(const std::string& path, std::string_view text) {
    Stream file(std::fopen(path.c_str(), "w"));
    if (!file) return Outcome::Impossible;
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                         std::fflush(file.get()) == 0 && _commit(_fileno(file.get())) == 0;
    return std::fclose(file.release()) == 0 && written ? Outcome::Done : Outcome::Failed;
}

std::string FolderOf(const std::string& path) { return path.substr(0, path.find_last_of("\\/:") + 1); }

// False for a folder, a link and a file that is closed to writing.
bool IsPlain(DWORD attributes) {
    constexpr DWORD kOther =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DEVICE;
    return (attributes & kOther) == 0;
}

// ReplaceFileA keeps the old file's rights and other attributes.
bool PutInPlace(const std::string& fresh, const std::string& path, bool exists) {
    if (!exists) return MoveFileExA(fresh.c_str(), path.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
    return ReplaceFileA(path.c_str(), fresh.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0;
}

}  // namespace

bool ReadTextFile(const std::string& path, std::string& text) {
    text.clear();
    const Stream file(std::fopen(path.c_str(), "r"));
    if (!file || _fseeki64(file.get(), 0, SEEK_END) != 0) return false;
    const long long size = _ftelli64(file.get());
    if (size < 0 || _fseeki64(file.get(), 0, SEEK_SET) != 0) return false;
    text.resize(static_cast<std::size_t>(size));
    // Fewer characters than bytes where there are line ends.
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return true;
}

bool WriteTextFile(const std::string& path, std::string_view text) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && !IsPlain(attributes)) return Write(path, text) == Outcome::Done;
    const std::string fresh = FolderOf(path) + kFreshName;
    Outcome outcome = Write(fresh, text);
    if (outcome == Outcome::Done && PutInPlace(fresh, path, exists)) return true;
    DeleteFileA(fresh.c_str());
    // A file that another program holds open can't be replaced, but perhaps overwritten.
    return outcome != Outcome::Failed && Write(path, text) == Outcome::Done;
}

}  // namespace vardel

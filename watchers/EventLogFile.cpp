#include "watchers/EventLogFile.h"

#include <filesystem>

#include "platform/Clock.h"

namespace vardel {

namespace {

constexpr const char* kFileName = "vdl-events.log";
constexpr const char* kColumnSeparator = " | ";
constexpr int kKindTextSize = 200;

std::string OwnCopy(const TcString& text) {
    const TcString copy(text);
    return {copy.GetContent(), static_cast<std::size_t>(copy.GetLength())};
}

// Windows makes the folder with the user's profile; elsewhere the first program that needs it does. Failure
// shows when the file is opened.
void CreateFolderOf(const std::string& path) {
    const std::size_t last = path.rfind('/');
    if (last == std::string::npos || last == 0) return;
    std::error_code ignored;
    std::filesystem::create_directories(path.substr(0, last), ignored);
}

}  // namespace

std::string FormEventLine(const EventLogColumns& columns) {
    std::string line = columns.timeOfDay;
    // Wanted: the info column stands before the host column, unlike in the record.
    for (const std::string* column : {&columns.kind, &columns.info, &columns.host, &columns.text}) {
        line += kColumnSeparator;
        line += *column;
    }
    line += '\n';
    return line;
}

std::string FormEventLine(const EventRecord& event, const VardelData& data) {
    char time[kTimeOfDaySize];
    FormatTimeOfDay(event.time, time);
    char kind[kKindTextSize];
    data.LoadText(static_cast<u32>(event.kind) + kEventTextBase, kind, sizeof kind);
    return FormEventLine({.timeOfDay = time,
                          .kind = kind,
                          .info = OwnCopy(event.info),
                          .host = OwnCopy(event.host),
                          .text = OwnCopy(event.text)});
}

bool FitsInEventLog(i64 length, i64 size, i32 limitKb) {
    return limitKb <= 0 || length + size <= static_cast<i64>(limitKb) * 1024;
}

std::string EventLogPath(Folders& folders) {
    const std::string folder = folders.LocalApplicationData();
    return folder.empty() ? folder : folder + folders.Separator() + kFileName;
}

void EventLogFile::CreateIfMissing() {
    if (path_.empty()) return;
    CreateFolderOf(path_);
    Open();
    Close();
}

void EventLogFile::Open() {
    if (stream_ || path_.empty()) return;
    stream_.reset(std::fopen(path_.c_str(), "a"));
    if (!stream_) return;
    std::fseek(stream_.get(), 0, SEEK_END);
    size_ = std::ftell(stream_.get());
}

void EventLogFile::Close() {
    if (stream_) std::fflush(stream_.get());
    stream_.reset();
}

void EventLogFile::Write(const std::string& line, i32 limitKb) {
    const i64 length = static_cast<i64>(line.size());
    if (limitKb > 0) {
        if (!stream_) return;
        if (!FitsInEventLog(length, size_, limitKb)) {
            // Wanted: nothing is emptied to make room. The stream stays closed, so the rest of the batch is
            // dropped; the next batch sees the true size again, and a shorter line may still fit then.
            Close();
            size_ = 0;
        }
        size_ += length;
    }
    if (stream_) std::fwrite(line.data(), 1, line.size(), stream_.get());
}

}  // namespace vardel

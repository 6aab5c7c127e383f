// The event log file "vdl-events.log": how a line is formed, when it still fits, and the file itself.
//
// The file is open only for the length of a batch, in text mode for appending. It is never emptied: a line
// that would take it past the limit is dropped, and the rest of its batch with it. Used by the log writer's
// thread alone.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "capture/EventMap.h"
#include "capture/VardelData.h"
#include "platform/Folders.h"

namespace vardel {

// The columns of one line. `text` is user text or came from the network: data, never a format.
struct EventLogColumns {
    std::string timeOfDay{};  // "%H:%M:%S", local
    std::string kind{};       // the text of the event's kind
    std::string info{};
    std::string host{};
    std::string text{};
};

// The columns joined by " | ", and "\n". Empty columns leave their separators standing.
std::string FormEventLine(const EventLogColumns& columns);

// The line of a posted event, with the kind's text in the current language.
std::string FormEventLine(const EventRecord& event, const VardelData& data);

// Whether a file of `size` bytes may take `length` more characters. `limitKb` of 0 or less: no limit.
bool FitsInEventLog(i64 length, i64 size, i32 limitKb);

// The file's full path; empty where the system has no folder to offer.
std::string EventLogPath(Folders& folders);

class EventLogFile {
  public:
    // An empty path opens nothing, ever.
    explicit EventLogFile(std::string path) : path_(std::move(path)) {}

    // The file, and its folder on a system that leaves that to programs.
    void CreateIfMissing();

    // Around each batch. A failed open is no error here: the lines of the batch are dropped.
    void Open();
    void Close();

    void Write(const std::string& line, i32 limitKb);

  private:
    struct CloseStream {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string path_;
    std::unique_ptr<std::FILE, CloseStream> stream_;
    i64 size_ = 0;  // bytes at the opening, and the characters written under a limit since
};

}  // namespace vardel

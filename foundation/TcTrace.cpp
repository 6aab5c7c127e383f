#include "foundation/TcTrace.h"

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string>

#include "platform/Clock.h"
#include "platform/Folders.h"
#include "platform/Process.h"

namespace vardel {

std::atomic<bool> TcTrace::on_{false};

namespace {

// Never destroyed: threads may trace until the process is gone.
struct TraceSink {
    std::mutex guard;
    bool enabled = false;
    std::FILE* file = nullptr;  // null: lines go to the debugger

    static TraceSink& Get() {
        static TraceSink* const sink = new TraceSink;
        return *sink;
    }
    void CloseFile() {
        if (file) std::fclose(file);
        file = nullptr;
    }
    bool OpenFile() {
        const std::string folder = SystemFolders().LocalApplicationData();
        if (folder.empty()) return false;
        std::error_code ignored;  // opening tells
        std::filesystem::create_directories(folder, ignored);
        file = std::fopen((folder + SystemFolders().Separator() + kTraceFileName).c_str(), "w");
        return file != nullptr;
    }
    // Flushed line by line: the last lines before a crash are the ones that matter.
    bool Write(std::string& line) {
        const std::lock_guard hold(guard);
        if (!enabled) return false;  // turned off while the line was formed
        if (!file) {
            SystemProcess().DebugText(line.c_str());
            return true;
        }
        line += '\n';
        return std::fwrite(line.data(), 1, line.size(), file) == line.size() && std::fflush(file) == 0;
    }
};

int ThreadNumber() {
    static std::atomic<int> last{0};
    thread_local const int number = ++last;
    return number;
}

void AppendText(std::string& line, const char* text) {
    if (!text) return;
    for (; *text; ++text) line += static_cast<unsigned char>(*text) < ' ' ? ' ' : *text;
}

struct TracedStep {
    const char* component;
    const char* function;
    const char* message;
    const int* number;  // null: none
    const char* sourceFile;
    int line;
    const char* buildDate;
    int value;
};

std::string FormatLine(const TracedStep& step) {
    char time[kTimeOfDaySize];
    FormatTimeOfDay(SystemClock().Now(), time);
    std::string line = time;
    line += ' ' + std::to_string(ThreadNumber()) + ' ';
    AppendText(line, step.component);
    line += "::";
    AppendText(line, step.function);
    line += ": ";
    AppendText(line, step.message);
    if (step.number) line += std::to_string(*step.number);
    line += " [";
    AppendText(line, step.sourceFile);
    line += ':' + std::to_string(step.line) + ", ";
    AppendText(line, step.buildDate);
    line += ", " + std::to_string(step.value) + ']';
    return line;
}

bool WriteStep(const TracedStep& step) {
    std::string line = FormatLine(step);
    return TraceSink::Get().Write(line);
}

}  // namespace

bool TcTrace::SetupTracing(int toFile, int enabled) {
    on_.store(false, std::memory_order_relaxed);
    TraceSink& sink = TraceSink::Get();
    const std::lock_guard hold(sink.guard);
    sink.CloseFile();
    sink.enabled = false;
    if (!enabled) return true;
    if (toFile && !sink.OpenFile()) return false;
    sink.enabled = true;
    on_.store(true, std::memory_order_relaxed);
    return true;
}

bool TcTrace::Trace(const char* component, const char* function, const char* message, const char* sourceFile,
                    int line, const char* buildDate, int value) {
    if (!IsOn()) return false;
    return WriteStep({component, function, message, nullptr, sourceFile, line, buildDate, value});
}

bool TcTrace::TraceInt(const char* component, const char* function, const char* message, int number,
                       const char* sourceFile, int line, const char* buildDate, int value) {
    if (!IsOn()) return false;
    return WriteStep({component, function, message, &number, sourceFile, line, buildDate, value});
}

}  // namespace vardel

// TcTrace: one line a notable step, for whoever looks for a fault. Off unless the program was started with
// "-debug".
//
// Calling it is legal at any time and from any thread, also before SetupTracing and while the program ends;
// lines of several threads never mix. While it is off, a call site costs one relaxed load: write
// VARDEL_TRACE, which looks before it gathers its arguments.
//
// A line: time of day, number of the thread, component::function: message and number, then in brackets source
// file, line, day of the build, value. Control characters of a text are written as blanks, so that a text
// from outside can't forge a line.
//
// Lines go to an attached debugger (Windows) or standard error (Linux), or, with "-file", to kTraceFileName
// in the user's local application data folder, which begins anew with each run.
#pragma once

#include <atomic>

namespace vardel {

constexpr char kTraceFileName[] = "vardel-trace.log";

class TcTrace {
  public:
    // Called at most once, at start. False when the file can't be written; tracing is off then.
    static bool SetupTracing(int toFile, int enabled);

    static bool IsOn() { return on_.load(std::memory_order_relaxed); }

    // True if the line was written. A null text counts as an empty one.
    static bool Trace(const char* component, const char* function, const char* message,
                      const char* sourceFile, int line, const char* buildDate, int value);
    // The same with a number right behind the message.
    static bool TraceInt(const char* component, const char* function, const char* message, int number,
                         const char* sourceFile, int line, const char* buildDate, int value);

  private:
    static std::atomic<bool> on_;
};

}  // namespace vardel

// A trace line of the place where it stands. The arguments are not evaluated while tracing is off.
#define VARDEL_TRACE(component, function, message) \
    (::vardel::TcTrace::IsOn() &&                  \
     ::vardel::TcTrace::Trace(component, function, message, __FILE__, __LINE__, __DATE__, 0))
#define VARDEL_TRACE_INT(component, function, message, number)                                               \
    (::vardel::TcTrace::IsOn() &&                                                                            \
     ::vardel::TcTrace::TraceInt(component, function, message, static_cast<int>(number), __FILE__, __LINE__, \
                                 __DATE__, 0))

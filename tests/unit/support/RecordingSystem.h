// The system's real events and threads, with a record of what was asked of them in which order.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "platform/Threads.h"
#include "tests/unit/support/ForwardingEvents.h"

namespace vardel::test {

// Lines of several threads, in the order in which they came.
class Record {
  public:
    void Add(const std::string& line) {
        std::lock_guard hold(guard_);
        lines_.push_back(line);
    }
    std::vector<std::string> Lines() const {
        std::lock_guard hold(guard_);
        return lines_;
    }
    // The lines that begin with `prefix`, in their order.
    std::vector<std::string> Starting(const std::string& prefix) const {
        std::vector<std::string> found = Lines();
        std::erase_if(found, [&](const std::string& line) { return !line.starts_with(prefix); });
        return found;
    }
    bool Has(const std::string& line) const { return Position(line) >= 0; }
    // Index of the first such line, -1 when there is none.
    int Position(const std::string& line) const {
        const std::vector<std::string> lines = Lines();
        const auto found = std::find(lines.begin(), lines.end(), line);
        return found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
    }
    void Clear() {
        std::lock_guard hold(guard_);
        lines_.clear();
    }

  private:
    mutable std::mutex guard_;
    std::vector<std::string> lines_;
};

// "create NAME", "close NAME", "set NAME"; unnamed events are "#0", "#1", ... in the order of their making. What is
// left open is closed with this object, as at the end of a process.
class RecordingEvents : public ForwardingEvents {
  public:
    explicit RecordingEvents(Record& log) : log_(log) {}
    ~RecordingEvents() override {
        for (const auto& [event, name] : names_) SystemEvents().Close(event);
    }

    EventHandle Create(const char* name, bool manualReset, bool signalled) override {
        if (name && refused.contains(name)) return nullptr;
        // On Windows a named event is shared by all processes: tests make theirs without a name.
        const EventHandle event = SystemEvents().Create(nullptr, manualReset, signalled);
        std::lock_guard hold(guard_);
        names_[event] = name ? name : "#" + std::to_string(unnamed_++);
        log_.Add("create " + names_[event] + (manualReset ? " manual" : " auto") + (signalled ? " signalled" : ""));
        return event;
    }
    void Close(EventHandle event) override {
        if (!event) return;
        {
            std::lock_guard hold(guard_);
            log_.Add("close " + names_[event]);
            names_.erase(event);
        }
        SystemEvents().Close(event);
    }
    bool Set(EventHandle event) override {
        if (event) log_.Add("set " + Name(event));
        return SystemEvents().Set(event);
    }
    WaitResult Wait(EventHandle event, u32 timeoutMs) override {
        if (!waits.empty()) {
            const auto found = waits.find(Name(event));
            if (found != waits.end()) return found->second(timeoutMs);
        }
        return SystemEvents().Wait(event, timeoutMs);
    }

    std::set<std::string> refused;  // names whose creation fails
    std::map<std::string, std::function<WaitResult(u32 timeoutMs)>> waits;  // answers by name; set before the threads

  private:
    std::string Name(EventHandle event) {
        std::lock_guard hold(guard_);
        return names_[event];
    }
    Record& log_;
    std::mutex guard_;
    std::map<EventHandle, std::string> names_;
    int unnamed_ = 0;
};

// "start NAME", "wait", "close NAME", with the names of `functions`.
class RecordingThreads : public Threads {
  public:
    explicit RecordingThreads(Record& log) : log_(log) {}

    bool Start(ThreadFunction function, void* parameter, ThreadHandle& handle, u32& id) override {
        const std::string name = functions.contains(function) ? functions.at(function) : "thread";
        log_.Add("start " + name);
        const auto other = instead.find(function);
        const bool started =
            SystemThreads().Start(other == instead.end() ? function : other->second, parameter, handle, id);
        std::lock_guard hold(guard_);
        names_[handle] = name;
        running_.push_back(handle);
        return started;
    }
    bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) override {
        if (timeoutMs > 0) log_.Add("wait " + std::to_string(timeoutMs));
        if (neverEnd && timeoutMs > 0) return false;
        return SystemThreads().WaitAll(handles, timeoutMs);
    }
    void Close(ThreadHandle handle) override {
        if (!handle) return;
        {
            std::lock_guard hold(guard_);
            log_.Add("close " + names_[handle]);
            std::erase(running_, handle);
        }
        SystemThreads().Close(handle);
    }
    // Waits for the threads whose handles nobody closed, and closes them.
    void CollectLeft() {
        std::lock_guard hold(guard_);
        SystemThreads().WaitAll(running_, 20000);
        for (ThreadHandle handle : running_) SystemThreads().Close(handle);
        running_.clear();
    }

    std::map<ThreadFunction, std::string> functions;
    std::map<ThreadFunction, ThreadFunction> instead;  // runs in the other's place
    bool neverEnd = false;  // every wait ends in its time-out

  private:
    Record& log_;
    std::mutex guard_;
    std::map<ThreadHandle, std::string> names_;
    std::vector<ThreadHandle> running_;
};

}  // namespace vardel::test

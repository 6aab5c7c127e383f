// A fixed-size record that several threads use: it goes in and out whole, under a guard of its own.
//
// `Record` is a plain structure. Nobody gets a pointer inside; a reader works on its copy.
#pragma once

#include <mutex>
#include <type_traits>

#include "foundation/SpinGuard.h"

namespace vardel {

template <class Record>
class GuardedRecord {
    static_assert(std::is_trivially_copyable_v<Record>);

  public:
    GuardedRecord() : record_{} {}
    explicit GuardedRecord(const Record& record) : record_(record) {}
    GuardedRecord(const GuardedRecord&) = delete;
    GuardedRecord& operator=(const GuardedRecord&) = delete;

    Record Read() const {
        std::lock_guard hold(guard_);
        return record_;
    }
    void Write(const Record& record) {
        std::lock_guard hold(guard_);
        record_ = record;
    }
    // Runs `change(record)` under the guard. It must neither wait nor call out.
    template <class Change>
    void Update(Change&& change) {
        std::lock_guard hold(guard_);
        change(record_);
    }

  private:
    mutable SpinGuard guard_;
    Record record_;
};

}  // namespace vardel

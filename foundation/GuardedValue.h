// A value of any copyable type (a list, a small map) that several threads use: it goes in and out whole, under a
// mutex of its own.
#pragma once

#include <mutex>
#include <utility>

namespace vardel {

template <class T>
class GuardedValue {
  public:
    GuardedValue() = default;
    GuardedValue(const GuardedValue&) = delete;
    GuardedValue& operator=(const GuardedValue&) = delete;

    T Read() const {
        std::lock_guard hold(guard_);
        return value_;
    }
    void Write(T value) {
        std::lock_guard hold(guard_);
        value_.swap(value);
    }
    // Runs `change(value)` under the guard and gives its result. It must neither wait nor call out.
    template <class Change>
    decltype(auto) Update(Change&& change) {
        std::lock_guard hold(guard_);
        return change(value_);
    }

  private:
    mutable std::mutex guard_;
    T value_{};
};

}  // namespace vardel

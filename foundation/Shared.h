// Shared<T>: a flag or counter that several threads read and write with no guard, with the look of a plain value.
//
// One machine word; each access is a single atomic operation with acquire/release order, so a reader that sees a
// flag also sees what was written before it. Not meant for read-modify-write from two threads, but for Increment.
#pragma once

#include <atomic>
#include <type_traits>

namespace vardel {

template <class T>
class Shared {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= 8);

  public:
    constexpr Shared() noexcept : value_(T{}) {}
    constexpr Shared(T value) noexcept : value_(value) {}  // NOLINT: the look of a plain value is the point
    Shared(const Shared& other) noexcept : value_(other.Get()) {}
    Shared& operator=(const Shared& other) noexcept {
        Put(other.Get());
        return *this;
    }
    T operator=(T value) noexcept {
        Put(value);
        return value;
    }
    operator T() const noexcept { return Get(); }

    T Get() const noexcept { return value_.load(std::memory_order_acquire); }
    void Put(T value) noexcept { value_.store(value, std::memory_order_release); }

    // Adds and gives the new value, indivisibly.
    T Increment(T by = T{1}) noexcept { return static_cast<T>(value_.fetch_add(by, std::memory_order_acq_rel) + by); }

  private:
    std::atomic<T> value_;
};

}  // namespace vardel

// Running a literal twin beside the handler: seeded chance, how many rounds a build makes, and what differs.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/unit/support/Frames.h"
#include "tests/unit/support/LiteralRecords.h"
#include "tests/unit/support/WatchedLan.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VARDEL_FEWER_ROUNDS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VARDEL_FEWER_ROUNDS 1
#endif
#endif

namespace vardel::test {

// Rounds for this build: a hundredth where a sanitizer or Wine slows every step. VARDEL_TWIN_FACTOR multiplies them.
inline u64 TwinRounds(u64 rounds) {
#ifdef VARDEL_FEWER_ROUNDS
    rounds /= 100;
#endif
    const char* factor = std::getenv("VARDEL_TWIN_FACTOR");
    return factor ? rounds * std::strtoul(factor, nullptr, 10) : rounds;
}

// The same sequence from the same seed on every system (splitmix64).
class Chance {
  public:
    explicit Chance(u64 seed) : state_(seed) {}
    u64 Next() {
        u64 z = state_ += 0x9e3779b97f4a7c15ull;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }
    // 0 to count - 1.
    u32 Below(u64 count) { return static_cast<u32>((Next() >> 32) * count >> 32); }
    bool OneIn(u32 count) { return Below(count) == 0; }
    u8 Byte() { return static_cast<u8>(Next() >> 56); }
    template <class T>
    const T& Of(const std::vector<T>& values) {
        return values[Below(values.size())];
    }
    template <class T>
    T Of(std::initializer_list<T> values) {
        return values.begin()[Below(values.size())];
    }

  private:
    u64 state_;
};

// Changes a few bytes, and sometimes where the frame ends. FrameBytes in front of `from` are left alone.
void Mutate(Frame& frame, std::size_t from, Chance& chance);

// The texts that both sides load by string id.
std::map<u32, std::string> TwinTexts();

// Empty where both are the same, else what differs.
std::string Difference(const HostRecord& host, const LiteralHost& twin);
std::string Difference(const SyslogRecord& message, const LiteralMessage& twin);
// Every host, list, event and listed host of both sides.
std::string Difference(WatchedLan& lan, const LiteralState& twin);

}  // namespace vardel::test

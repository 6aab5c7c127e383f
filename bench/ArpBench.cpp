// VardelARPImpl::PacketReceived over frames in memory. One item is one frame.
#include <benchmark/benchmark.h>

#include "bench/BenchLan.h"

namespace vardel::bench {
namespace {

// Feeds the whole block each iteration, after one round that makes the hosts known.
template <class AfterRound>
void FeedRounds(benchmark::State& state, BenchLan& lan, FrameBlock& block, AfterRound&& afterRound) {
    VardelARPImpl handler;
    for (u32 i = 0; i < block.Count(); ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &lan.data);
    for (auto _ : state) {
        for (u32 i = 0; i < block.Count(); ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &lan.data);
        afterRound();
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}

void KnownHosts(benchmark::State& state, const std::vector<Address>& addresses) {
    BenchLan lan;
    FrameBlock block = ArpFramesOf(addresses, 100'000 + static_cast<u32>(addresses.size()));
    FeedRounds(state, lan, block, [] {});
}
BENCHMARK_CAPTURE(KnownHosts, 1000, ConsecutiveAddresses(1000));
BENCHMARK_CAPTURE(KnownHosts, 65536_consecutive, ConsecutiveAddresses(65536));
BENCHMARK_CAPTURE(KnownHosts, 65536_spread, SpreadAddresses(65536));

void VendorUnknown(benchmark::State& state) {
    BenchLan lan(false);
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), 100'000);
    FeedRounds(state, lan, block, [] {});
}
BENCHMARK(VendorUnknown);

void AllTrusted(benchmark::State& state) {
    BenchLan lan;
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), 100'000);
    for (Address address : ConsecutiveAddresses(1000)) {
        char ip[16];
        std::snprintf(ip, sizeof ip, "%u.%u.%u.%u", address >> 24, address >> 16 & 255, address >> 8 & 255,
                      address & 255);
        lan.data.settings.trustedHosts.Insert(ip, std::make_unique<GuardedRecord<ListedHost>>());
    }
    FeedRounds(state, lan, block, [] {});
}
BENCHMARK(AllTrusted);

// The queue is left to grow to where the flood rule holds it.
void ShareSearch(benchmark::State& state) {
    BenchLan lan;
    lan.data.settings.ShareSearch = 1;
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), 100'000);
    FeedRounds(state, lan, block, [] {});
}
BENCHMARK(ShareSearch);

}  // namespace
}  // namespace vardel::bench

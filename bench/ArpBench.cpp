// VardelARPImpl::PacketReceived over frames in memory. One item is one frame.
#include <benchmark/benchmark.h>

#include "bench/BenchLan.h"
#include "capture/EventMap.h"

namespace vardel::bench {
namespace {

constexpr u32 kRoundFrames = 100'000;

template <class Handler>
void FeedAll(Handler& handler, FrameBlock& block, VardelData& data) {
    for (u32 i = 0; i < block.Count(); ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &data);
}

// Feeds the whole block in each iteration, after one round that makes the hosts known.
void FeedKnownHosts(benchmark::State& state, BenchLan& lan, FrameBlock& block) {
    VardelARPImpl handler;
    FeedAll(handler, block, lan.data);
    for (auto _ : state) FeedAll(handler, block, lan.data);
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}

void KnownHosts(benchmark::State& state, const std::vector<Address>& addresses) {
    BenchLan lan;
    FrameBlock block = ArpFramesOf(addresses, kRoundFrames + static_cast<u32>(addresses.size()));
    FeedKnownHosts(state, lan, block);
}
BENCHMARK_CAPTURE(KnownHosts, 1000, ConsecutiveAddresses(1000));
BENCHMARK_CAPTURE(KnownHosts, 65536_consecutive, ConsecutiveAddresses(65536));
BENCHMARK_CAPTURE(KnownHosts, 65536_spread, SpreadAddresses(65536));

void VendorUnknown(benchmark::State& state) {
    BenchLan lan(false);
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), kRoundFrames);
    FeedKnownHosts(state, lan, block);
}
BENCHMARK(VendorUnknown);

void AllTrusted(benchmark::State& state) {
    BenchLan lan;
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), kRoundFrames);
    for (Address address : ConsecutiveAddresses(1000))
        lan.data.settings.trustedHosts.Insert(AddressText(address).c_str(),
                                              std::make_unique<GuardedRecord<ListedHost>>());
    FeedKnownHosts(state, lan, block);
}
BENCHMARK(AllTrusted);

// The queue grows to where the flood rule holds it.
void ShareSearch(benchmark::State& state) {
    BenchLan lan;
    lan.data.settings.ShareSearch = 1;
    FrameBlock block = ArpFramesOf(ConsecutiveAddresses(1000), kRoundFrames);
    FeedKnownHosts(state, lan, block);
}
BENCHMARK(ShareSearch);

// Every frame claims its address from a MAC that isn't the host's; the list is emptied every 1,000 frames.
void MacChanges(benchmark::State& state) {
    BenchLan lan;
    const auto hosts = ConsecutiveAddresses(1000);
    FrameBlock block = ArpFramesOf(hosts, kRoundFrames);
    VardelARPImpl handler;
    FeedAll(handler, block, lan.data);
    for (u32 i = 0; i < block.Count(); ++i)
        WriteArpFrame(block.Frame(i), hosts[i % hosts.size()], 0x10000 + i);
    for (auto _ : state)
        for (u32 i = 0; i < block.Count(); ++i) {
            handler.PacketReceived(block.Header(i), block.Frame(i), &lan.data);
            if (i % 1000 == 999) {
                FenceTaken taken(lan.data.fences, Fence::MacSpoofs);
                lan.data.macSpoofs.ClearTo(lan.data.macSpoofs.TakeMark());
            }
        }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}
BENCHMARK(MacChanges);

// Each frame is the first of its host: record, names (none), vendor, event, lists. The resolver fails at
// once.
void NewHosts(benchmark::State& state) {
    FrameBlock block = ArpFramesOf(SpreadAddresses(10'000), 10'000);
    for (auto _ : state) {
        state.PauseTiming();
        TheEventMap().Clear();
        auto lan = std::make_unique<BenchLan>();
        VardelARPImpl handler;
        state.ResumeTiming();
        FeedAll(handler, block, lan->data);
        state.PauseTiming();
        lan.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}
BENCHMARK(NewHosts);

}  // namespace
}  // namespace vardel::bench

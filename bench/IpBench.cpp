// VardelIPImpl::PacketReceived over frames in memory. One item is one frame.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <atomic>
#include <thread>

#include "bench/BenchLan.h"
#include "capture/VardelIPImpl.h"

namespace vardel::bench {
namespace {

void FeedAll(VardelIPImpl& handler, FrameBlock& block, VardelData& data) {
    for (u32 i = 0; i < block.Count(); ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &data);
}

// TCP, and UDP to ports that nobody listens to: looked at and dropped.
void NowhereFrames(benchmark::State& state) {
    BenchLan lan;
    FrameBlock block(20'000, kFrameSize);
    for (u32 i = 0; i < block.Count(); ++i)
        WriteIpFrame(block.Frame(i), kFrameSize, i % 2 ? kTcp : kUdp, 0x0a000001u + i % 1000, 40000,
                     i % 2 ? 443 : 53);
    VardelIPImpl handler;
    for (auto _ : state) FeedAll(handler, block, lan.data);
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}
BENCHMARK(NowhereFrames);

// Purges like an open syslog view, only much more often.
class PurgingView {
  public:
    explicit PurgingView(VardelData& data)
        : thread_([this, &data] {
              while (!stop_) {
                  data.syslogs.ForEach(
                      [this](const TcString&, SyslogSourceList* list) { purged_ += list->PurgeExpired(); });
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
          }) {}
    ~PurgingView() { Stop(); }
    std::size_t Stop() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
        return purged_;
    }

  private:
    std::atomic<bool> stop_{false};
    std::size_t purged_ = 0;
    std::thread thread_;
};

// 10 million messages of 100 sources with a limit of 100 messages each, while a view purges. `KB_in_use` is
// what the heap holds at the end beyond what it held after the first round.
void SyslogWithPurge(benchmark::State& state) {
    constexpr u32 kSources = 100, kSize = 110;
    BenchLan lan;
    lan.data.settings.Syslog = 1;
    lan.data.settings.SyslogMaxEntries = 100;
    FrameBlock block(100'000, kSize);
    for (u32 i = 0; i < block.Count(); ++i) {
        char text[64];
        std::snprintf(text, sizeof text, "<%u>Nov 14 22:13:20 gateway kernel: message %u", i % 192, i);
        WriteIpFrame(block.Frame(i), kSize, kUdp, 0x0a000001u + i % kSources, 514, 514, text);
    }
    VardelIPImpl handler;
    std::size_t inUseAtFirst = 0, purged = 0, records = 0;
    PurgingView view(lan.data);
    for (auto _ : state) {
        FeedAll(handler, block, lan.data);
        if (inUseAtFirst == 0) inUseAtFirst = mallinfo2().uordblks;
    }
    purged = view.Stop();
    lan.data.syslogs.ForEach(
        [&](const TcString&, SyslogSourceList* list) { records += list->RecordCount(); });
    state.counters["messages"] = static_cast<double>(handler.packetCount);
    state.counters["purged"] = static_cast<double>(purged);
    state.counters["kept"] = static_cast<double>(records);
    state.counters["KB_grown"] =
        (static_cast<double>(mallinfo2().uordblks) - static_cast<double>(inUseAtFirst)) / 1024.0;
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * block.Count());
}
BENCHMARK(SyslogWithPurge)->Iterations(100)->UseRealTime();

}  // namespace
}  // namespace vardel::bench

// The periodic ticks over lists in memory, with a surface that shows nothing and deeds that only look at the entries.
#include <benchmark/benchmark.h>

#include "bench/BenchLan.h"
#include "frame/LooklessPopup.h"
#include "frame/ShareTick.h"
#include "frame/SyslogTick.h"
#include "frame/TrayTick.h"
#include "resources/ResourceIds.h"

namespace vardel::bench {
namespace {

class SilentPopup : public LooklessPopup {
  public:
    bool IsShowing() const override { return showing; }
    bool Show(const char* text) override {
        benchmark::DoNotOptimize(text);
        return true;
    }
    bool showing = false;
};

class SilentSurface : public AlertSurface {
  public:
    void ShowTrayNotify(u32, const char* text, const char*) override { benchmark::DoNotOptimize(text); }
    NotifyPopup* HostPopup() override { return &popup; }
    NotifyPopup* WatchPopup() override { return &popup; }
    NotifyPopup* SyslogPopup() override { return &popup; }
    Color MenuHighlight() override { return {}; }
    SilentPopup popup;
};

class NoDeeds : public TickDeeds {
  public:
    void QueuePluginNotify(u32 kind, i64 mark) override { benchmark::DoNotOptimize(kind + static_cast<u64>(mark)); }
    void StartApplication(const TcString&, const TcString&, const HostRecord&) override {}
    void CheckWatchedHosts(NotifyPopup*, ModuleHandle) override {}
    void WriteReport() override {}
};

struct TickBench {
    TickBench() {
        lan.system.strings.texts[IDS_TRAY_TOOLTIP] = "%s - %d host(s) found";
        lan.system.strings.texts[IDS_ALERT_NEW_HOSTS] = "New host(s) found :";
        lan.system.strings.texts[IDS_ALERT_MAC_SPOOFING] = "MAC spoofing alert on following addresses :";
        lan.data.settings.UseToolTips = 1;
        lan.data.settings.Visualization = 0;
        lan.data.settings.MACSpoofingVisualization = 1;
        lan.data.settings.MACSpoofingVisualizationStyle = 0;
    }
    void Know(u32 count) {
        for (u32 i = 0; i < count; ++i) {
            HostRecord* host = lan.data.Adopt(std::make_unique<HostRecord>());
            host->ip = ("10.1." + std::to_string(i >> 8) + "." + std::to_string(i & 255)).c_str();
            host->hostName = ("host-" + std::to_string(i) + ".example.net").c_str();
            lan.data.arpMap.Insert(host->ip, host);
            hosts.push_back(host);
        }
    }
    BenchLan lan;
    SilentSurface surface;
    NoDeeds deeds;
    const TickContext tick{lan.data, surface, deeds, nullptr};
    std::vector<HostRecord*> hosts;
};

// One tick of each kind with nothing to tell.
void IdleTick(benchmark::State& state, void (*run)(const TickContext&)) {
    TickBench bench;
    bench.Know(1000);
    for (auto _ : state) run(bench.tick);
}
BENCHMARK_CAPTURE(IdleTick, tray, &RunTrayTick);
BENCHMARK_CAPTURE(IdleTick, share, &RunShareTick);
BENCHMARK_CAPTURE(IdleTick, syslog, &RunSyslogTick);

// One item is one host. `trusted`: half of them stand in the table of those that are left out.
void NewHostsTick(benchmark::State& state, bool trusted) {
    constexpr u32 kHosts = 10'000;
    TickBench bench;
    bench.Know(kHosts);
    bench.lan.data.settings.NotifyTrusted = trusted;
    for (u32 i = 0; trusted && i < kHosts; i += 2)
        bench.lan.data.settings.trustedHosts.Insert(bench.hosts[i]->ip,
                                                    std::make_unique<GuardedRecord<ListedHost>>());
    for (auto _ : state) {
        state.PauseTiming();
        for (HostRecord* host : bench.hosts) bench.lan.data.newEntries.Append(host);
        state.ResumeTiming();
        RunTrayTick(bench.tick);
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * kHosts);
}
BENCHMARK_CAPTURE(NewHostsTick, 10000, false);
BENCHMARK_CAPTURE(NewHostsTick, 10000_half_trusted, true);

// A million spoofed frames wait while a popup stands open.
void HeldBackTick(benchmark::State& state) {
    TickBench bench;
    bench.Know(1000);
    for (u32 i = 0; i < 1'000'000; ++i) bench.lan.data.macSpoofs.Append(bench.hosts[i % 1000]);
    bench.surface.popup.showing = true;
    for (auto _ : state) RunTrayTick(bench.tick);
}
BENCHMARK(HeldBackTick);

}  // namespace
}  // namespace vardel::bench

// The plugin queue at 1,000 items a second: one iteration is one second of it, from the tick's packing over the queue
// to a plugin that looks at every record, by the notifier's own pass.
#include <benchmark/benchmark.h>

#include "bench/BenchLan.h"
#include "capture/ThreadParams.h"
#include "frame/PluginNotify.h"
#include "frame/TickDeeds.h"
#include "tests/unit/support/ForwardingEvents.h"

namespace vardel::bench {
namespace {

constexpr int kItemsEachSecond = 1'000;
constexpr char kFolder[] = "/bench/Plugins/";
constexpr char kModule[] = "listener.so";

u64 recordsSeen = 0;

u32 PLUGIN_CALL Listen(PluginInfo* info) {
    const auto* item = static_cast<const PluginNotifyItem*>(info->data);
    const auto* hosts = static_cast<const PluginNotifyHost*>(item->records);
    for (u32 at = 0; hosts && at < item->count; ++at) recordsSeen += hosts[at].ip[0] != 0;
    return 1;
}

PluginInfo* ListenerBlock() {
    static PluginInfo block = [] {
        PluginInfo made{};
        made.size = sizeof made;
        made.name = "listener";
        made.description = "";
        made.type = PLUGIN_TYPE_NOTIFY;
        made.Run = Listen;
        return made;
    }();
    return &block;
}

// Ends the notifier's loop at its sleep, so that it makes one pass; its wait for the fence is the system's.
class OnePass : public test::ForwardingEvents {
  public:
    WaitResult WaitEither(EventHandle first, EventHandle second, u32 timeoutMs) override {
        if (timeoutMs == kFenceTimeoutMs) return SystemEvents().WaitEither(first, second, timeoutMs);
        params.stop = 1;
        return WaitResult::TimedOut;
    }
    ThreadParams params;
};

// Each item tells of `hosts` new hosts.
void PluginQueueSecond(benchmark::State& state) {
    test::TestServices system;
    system.modules.folders[kFolder].push_back({kModule, false});
    system.modules.modules.insert(std::string(kFolder) + kModule);
    system.modules.entryPoints[std::string(kFolder) + kModule + "!GetPluginInfo"] =
        reinterpret_cast<void*>(&ListenerBlock);
    OnePass events;
    Services services = system.services.With(events);
    VardelData data(services);
    data.fences.CreateAll();
    data.plugins.LoadPluginFolder(kFolder);
    data.plugins.FirstPlugin(0)->active = 1;
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.1";
    events.params.data = &data;
    for (i64 n = 0; n < state.range(0); ++n) data.newEntries.Append(host);
    const auto mark = data.newEntries.TakeMark();

    recordsSeen = 0;
    for (auto _ : state) {
        for (int n = 0; n < kItemsEachSecond; ++n) QueuePluginNotify(&data, kNotifyNewHosts, mark);
        events.params.stop = 0;
        NotifyPluginThread(&events.params);
    }
    if (recordsSeen != static_cast<u64>(state.iterations()) * kItemsEachSecond * static_cast<u64>(state.range(0)))
        state.SkipWithError("records are missing");
    data.plugins.UnloadPlugins();
}
BENCHMARK(PluginQueueSecond)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vardel::bench

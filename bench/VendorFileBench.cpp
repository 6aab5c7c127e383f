// The vendor list of 40,000 lines: parsed, and from the start of the worker's function to the moment at which
// the table is in force and every host has been looked at. One item is one line.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "capture/ReadVendorThread.h"
#include "capture/VardelData.h"
#include "capture/VendorFile.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::bench {
namespace {

constexpr u32 kLines = 40'000;

// Spread prefixes in ascending order, names of 4 to 40 characters as the registration authority's list has
// them.
std::string ListOf40000Lines() {
    static const char* words[] = {"Systems", "Networks", "Electronics", "Technology", "Communications",
                                  "Co.,Ltd", "Inc.",     "GmbH",        "Shenzhen",   "Digital"};
    std::mt19937 random(1);
    std::vector<u32> prefixes(kLines);
    for (u32 i = 0; i < kLines; ++i) prefixes[i] = (i * 419u + random() % 419u) & 0xffffff;
    std::string list;
    for (u32 prefix : prefixes) {
        char key[12];
        std::snprintf(key, sizeof key, "%02x:%02x:%02x\t", prefix >> 16, prefix >> 8 & 255, prefix & 255);
        list += key;
        for (u32 count = 1 + random() % 4; count > 0; --count) {
            list += words[random() % std::size(words)];
            list += count > 1 ? " " : "\n";
        }
    }
    return list;
}

class ListOnDisk {
  public:
    ListOnDisk() {
        folder =
            (std::filesystem::temp_directory_path() / ("vardel-bench-" + std::to_string(getpid()))).string();
        std::filesystem::create_directories(folder);
        std::ofstream(folder + "/ethercodes.dat", std::ios::binary) << ListOf40000Lines();
    }
    ~ListOnDisk() { std::filesystem::remove_all(folder); }
    std::string folder;
};

void ParseVendorList(benchmark::State& state) {
    const std::string list = ListOf40000Lines();
    for (auto _ : state) {
        VendorMap vendors;
        ParseVendorFile(list, vendors, [] { return true; });
        if (vendors.Count() != kLines) state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * kLines);
    state.SetBytesProcessed(static_cast<i64>(state.iterations()) * static_cast<i64>(list.size()));
}
BENCHMARK(ParseVendorList)->Unit(benchmark::kMillisecond);

// The whole worker on an empty table, as at the start of the program. `hosts` of unknown vendor are filled
// in.
void VendorWorker(benchmark::State& state) {
    const ListOnDisk disk;
    test::TestServices system;
    system.folders.programPath = disk.folder + "/vardelwatch";
    VardelData data(system.services);
    data.fences.CreateAll();
    ThreadParams params;
    params.data = &data;
    std::vector<HostRecord*> hosts;
    for (i64 i = 0; i < state.range(0); ++i) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        const u32 prefix = static_cast<u32>(i) * 419u & 0xffffff;
        char mac[20], ip[20];
        std::snprintf(mac, sizeof mac, "%02x:%02x:%02x:00:00:01", prefix >> 16, prefix >> 8 & 255,
                      prefix & 255);
        std::snprintf(ip, sizeof ip, "10.%u.%u.%u", static_cast<u8>(i >> 16), static_cast<u8>(i >> 8),
                      static_cast<u8>(i));
        host->mac = mac;
        data.arpMap.Insert(ip, host);
        hosts.push_back(host);
    }
    for (auto _ : state) {
        VendorRun run(&params);
        ReadVendorThread(&run);
        state.PauseTiming();
        if (data.vendors.Count() != kLines) state.SkipWithError("lines were lost");
        data.vendors.Clear();
        for (HostRecord* host : hosts) host->vendorUnknown = 1;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * kLines);
}
BENCHMARK(VendorWorker)->ArgName("hosts")->Arg(0)->Arg(1000)->Unit(benchmark::kMillisecond);

// A reload: the table that was in force is freed on the way.
void VendorReload(benchmark::State& state) {
    const ListOnDisk disk;
    test::TestServices system;
    system.folders.programPath = disk.folder + "/vardelwatch";
    VardelData data(system.services);
    data.fences.CreateAll();
    ThreadParams params;
    params.data = &data;
    for (auto _ : state) {
        VendorRun run(&params);
        ReadVendorThread(&run);
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * kLines);
}
BENCHMARK(VendorReload)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vardel::bench

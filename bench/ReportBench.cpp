// Reports of a full table by each shipped template: forming them, and with the file.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "frame/ReportGenerator.h"
#include "tests/unit/support/ReportLan.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel::bench {

namespace {

constexpr u32 kHosts = 65536;
constexpr const char* kTemplates[] = {"dashboard.html", "hosts.csv", "status.txt"};

std::string TemplatePath(const char* name) {
    return std::string(VARDEL_TEMPLATES) + "/" + name + ".vdlt";
}

test::ReportLan& FullLan() {
    static test::ReportLan& lan = *[] {
        auto* full = new test::ReportLan;
        for (u32 i = 0; i < kHosts; ++i) {
            char ip[16], mac[18];
            std::snprintf(ip, sizeof ip, "10.1.%u.%u", i >> 8, i & 255);
            std::snprintf(mac, sizeof mac, "02:00:00:00:%02x:%02x", i >> 8, i & 255);
            full->Add({.name = "host-" + std::to_string(i) + ".office.example",
                       .ip = ip,
                       .mac = mac,
                       .os = i % 3 ? "" : "Windows Server 2019",
                       .vendor = "Example Networks Inc.",
                       .trust = i % 3});
        }
        for (u32 i = 0; i < 100; ++i) full->Watch("watched", "10.1.0." + std::to_string(i), i % 2);
        for (i32 i = 0; i < 1000; ++i) full->Access(i, "10.1.0.1", "share" + std::to_string(i), "user");
        return full;
    }();
    return lan;
}

void FormReportOf65536Hosts(benchmark::State& state) {
    const char* name = kTemplates[state.range(0)];
    std::ifstream file(TemplatePath(name), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    test::ReportLan& lan = FullLan();
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = FormReport(text, lan.data).size();
        if (bytes < kHosts * 40) state.SkipWithError("hosts are missing");
    }
    state.SetLabel(name);
    state.SetBytesProcessed(static_cast<i64>(state.iterations()) * static_cast<i64>(bytes));
}
BENCHMARK(FormReportOf65536Hosts)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void WriteReportOf65536Hosts(benchmark::State& state) {
    const char* name = kTemplates[state.range(0)];
    const test::TestFolder folder;
    test::ReportLan& lan = FullLan();
    lan.data.settings.ReportTemplate = TemplatePath(name).c_str();
    lan.data.settings.ReportPath = (folder.Path() + "/").c_str();
    for (auto _ : state) ReportGenerator(lan.data);
    if (std::filesystem::file_size(folder.Path(name)) < kHosts * 40) state.SkipWithError("no report");
    state.SetLabel(name);
}
BENCHMARK(WriteReportOf65536Hosts)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

}  // namespace vardel::bench

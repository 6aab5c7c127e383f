// memory_bench: what 65,536 hosts cost in memory, with MAC, vendor and name filled, table and lists included,
// and what one of their events costs.
//
// Told by the resident pages of the process, which nothing that was allocated can escape.
#include <unistd.h>

#include <cstdio>

#include "bench/BenchLan.h"
#include "capture/EventMap.h"

namespace vardel::bench {
namespace {

constexpr u32 kHosts = 65'536;

// Names of an ordinary length; each look-up gives one.
class NamingResolver : public Resolver {
  public:
    std::vector<std::string> CanonicalNames(const char*) override { return {}; }
    bool NameOfAddress(u32 address, u16, NameLookup, std::string& name) override {
        name = "host-" + std::to_string(address & 0xffff) + ".example.net";
        return true;
    }
    bool HostByAddress(u32, std::string&) override { return false; }
    bool HostByName(const char*, u32&) override { return false; }
};

double ResidentBytes() {
    long pages = 0, resident = 0;
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
    if (file) std::fclose(file);
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

int Run() {
    test::TestServices system;
    NamingResolver resolver;
    Services services = system.services.With(resolver);
    VardelData data(services);
    data.fences.CreateAll();
    for (u32 octet = 0; octet < 256; ++octet) {
        char prefix[9];
        std::snprintf(prefix, sizeof prefix, "02:00:%02x", octet);
        data.vendors.Insert(prefix, std::make_unique<TcString>("Example Networks Inc."));
    }
    FrameBlock block = ArpFramesOf(SpreadAddresses(kHosts), kHosts);
    // What the process needs once and for all is there before the count begins.
    for (u32 i = 0; i < 100; ++i) PostEvent(EventKind::NewHost, "name", "10.0.0.1");

    const double start = ResidentBytes();
    VardelARPImpl handler;
    for (u32 i = 0; i < kHosts; ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &data);
    const double withHosts = ResidentBytes();
    for (u32 i = 0; i < kHosts; ++i)
        PostEvent(EventKind::NewHost, "host-12345.example.net", AddressText(0xc0a80000u + i).c_str());
    const double withEvents = ResidentBytes();

    u32 complete = 0;
    data.arpMap.ForEach([&](const TcString&, HostRecord* host) {
        complete += !host->mac.IsEmpty() && !host->vendorUnknown && !host->nameUnresolved;
    });
    const double event = (withEvents - withHosts) / kHosts;
    std::printf(
        "%u hosts with MAC, vendor and name: %.0f bytes a host, table and lists included; its event %.0f "
        "bytes\n",
        complete, (withHosts - start) / kHosts - event, event);
    return complete == kHosts ? 0 : 1;
}

}  // namespace
}  // namespace vardel::bench

int main() {
    return vardel::bench::Run();
}

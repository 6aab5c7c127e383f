// memory_bench: what 65,536 hosts cost in memory, with MAC, vendor and name filled, table and lists included, and
// what one of their events costs.
//
// Told twice: by the resident pages of the process, and by what the heap says is in use (which leaves out the pool of
// the host records, told by its size).
#include <malloc.h>
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
};

struct InUse {
    double resident;  // bytes
    double heap;
};

InUse Measure() {
    long pages = 0, resident = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(file);
    }
    const auto heap = mallinfo2();
    return {static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)),
            static_cast<double>(heap.uordblks + heap.hblkhd)};
}

void Tell(const char* what, const InUse& before, const InUse& after) {
    std::printf("%-28s %7.0f bytes resident, %7.0f bytes by the heap's own account\n", what,
                (after.resident - before.resident) / kHosts, (after.heap - before.heap) / kHosts);
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

    const InUse start = Measure();
    VardelARPImpl handler;
    for (u32 i = 0; i < kHosts; ++i) handler.PacketReceived(block.Header(i), block.Frame(i), &data);
    const InUse withHosts = Measure();
    for (u32 i = 0; i < kHosts; ++i)
        PostEvent(EventKind::NewHost, "host-12345.example.net", AddressText(0xc0a80000u + i).c_str());
    const InUse withEvents = Measure();

    u32 complete = 0;
    data.arpMap.ForEach([&](const TcString&, HostRecord* host) {
        complete += !host->mac.IsEmpty() && !host->vendorUnknown && !host->nameUnresolved;
    });
    std::printf("%u hosts with MAC, vendor and name; a host record has %zu bytes\n", complete, sizeof(HostRecord));
    Tell("a host with its event:", start, withHosts);
    Tell("an event:", withHosts, withEvents);
    std::printf("%-28s %7.0f bytes resident\n", "a host without its event:",
                (2 * withHosts.resident - start.resident - withEvents.resident) / kHosts);
    return complete == kHosts ? 0 : 1;
}

}  // namespace
}  // namespace vardel::bench

int main() { return vardel::bench::Run(); }

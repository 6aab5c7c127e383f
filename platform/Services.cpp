#include "platform/Services.h"

namespace vardel {

namespace {

// The one place that lists them all for a copy.
Services Combine(const Services& from, Events& events, Threads& threads, Resolver& resolver,
                 Http& http) {
    return {events,       threads,       from.clock,   from.folders,       resolver,
            from.strings, from.arpCache, from.process, from.machineConfig, from.captureModules,
            from.shell,   http,          from.modules, from.rawIcmp,       from.shareEnumeration,
            from.wmi,     from.serverConnections, from.arpRequests};
}

}  // namespace

Services Services::With(Events& other) const { return Combine(*this, other, threads, resolver, http); }
Services Services::With(Threads& other) const { return Combine(*this, events, other, resolver, http); }
Services Services::With(Resolver& other) const { return Combine(*this, events, threads, other, http); }
Services Services::With(Http& other) const { return Combine(*this, events, threads, resolver, other); }

Services& SystemServices() {
    static Services services{SystemEvents(),        SystemThreads(),  SystemClock(),
                             SystemFolders(),       SystemResolver(), SystemStringResources(),
                             SystemArpCache(),      SystemProcess(),  SystemMachineConfig(),
                             SystemCaptureModules()};
    return services;
}

}  // namespace vardel

#include "platform/Services.h"

namespace vardel {

Services& SystemServices() {
    static Services services{SystemEvents(),        SystemThreads(),  SystemClock(),
                             SystemFolders(),       SystemResolver(), SystemStringResources(),
                             SystemArpCache(),      SystemProcess(),  SystemMachineConfig(),
                             SystemCaptureModules()};
    return services;
}

}  // namespace vardel

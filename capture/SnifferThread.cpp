#include "capture/CaptureLoop.h"
#include "capture/Vardel.h"
#include "foundation/TcTrace.h"

namespace vardel {

void SnifferThread(void* raw) {
    const auto* params = static_cast<const ThreadParams*>(raw);
    if (!params) {
        VARDEL_TRACE("Vardel", "SnifferThread", "No params - Exit...");
        return;
    }
    // Without the application there are no entry points to capture with.
    if (params->arp && params->ip && params->data && params->app)
        CaptureLoop(*params, params->app->capture).Run();
    VARDEL_TRACE("Vardel", "SnifferThread", "Exit...");
}

}  // namespace vardel

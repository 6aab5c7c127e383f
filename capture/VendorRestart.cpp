#include "capture/ReadVendorThread.h"
#include "capture/Vardel.h"

namespace vardel {

bool Vardel::ReadMACVendorFile() {
    return RestartVendorRun(readVendorThread, vendorRun, workerParams, abandonedThreads, services.threads);
}

}  // namespace vardel

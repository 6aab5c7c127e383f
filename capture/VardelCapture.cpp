// The application object's operations on capture: each hands its own state to the function that does the
// work.
#include "capture/AdapterDiscovery.h"
#include "capture/CaptureLibraryLoader.h"
#include "capture/ConnectionName.h"
#include "capture/Vardel.h"

namespace vardel {

bool Vardel::InitializeWinPCAP() {
    return LoadCaptureLibrary(services.captureModules, captureModule, packetModule, capture);
}

u32 Vardel::FindAdapters() {
    return vardel::FindAdapters(data, capture);
}

void Vardel::FindConnectionName(const char* deviceName, TcString& friendlyName) {
    vardel::FindConnectionName(services.machineConfig, deviceName, friendlyName);
}

}  // namespace vardel

// Loads the capture library and the adapter library and resolves what the program uses of them.
#pragma once

#include "platform/CaptureLibrary.h"

namespace vardel {

// True only when all twelve entry points are there. What was found stays in place also on failure, and so do
// the two modules, which the caller frees (null where one didn't load).
bool LoadCaptureLibrary(CaptureModules& modules, ModuleHandle& captureModule, ModuleHandle& packetModule,
                        CaptureEntryPoints& entries);

}  // namespace vardel

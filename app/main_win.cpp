// vardelwatch.exe: the desktop program. Its exit code is 1 on all paths; how a run went is told by its last lines on
// the standard output it was given, and by the event log.
#include <cstdio>
#include <cstdlib>
#include <new>

#include "capture/Vardel.h"
#include "frame/VardelGui.h"
#include "platform/WindowsApi.h"

using namespace vardel;

namespace {

constexpr int kExitCode = 1;

// The stream to a file, pipe or console that whoever started the program handed over; null where there is none.
std::FILE* GivenOutput() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!output || output == INVALID_HANDLE_VALUE || GetFileType(output) == FILE_TYPE_UNKNOWN) return nullptr;
    return stdout;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR commandLine, int showState) {
    VardelGui frame(GivenOutput());
    auto* app = new (std::nothrow) Vardel(SystemServices(), frame);
    if (!app) return kExitCode;
    app->MainInit(reinterpret_cast<ModuleHandle>(instance), reinterpret_cast<ModuleHandle>(previous), commandLine,
                  showState);
    app->MainRun();

    if (frame.WasBuilt()) frame.Report().PrintEnd(app->data);
    // What a thread that still runs may touch stays as it is; no module is told to unload.
    if (!app->ThreadsHaveEnded()) TerminateProcess(GetCurrentProcess(), kExitCode);
    delete app;
    TheEventMap().Clear();
    return kExitCode;
}

// vardelwatch: the program without windows. It watches until it is asked to leave (SIGINT, SIGTERM) and then prints
// the host table. The exit code is 0 after an ordinary run and 1 where the start failed.
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "capture/Vardel.h"
#include "frame/HeadlessFrame.h"
#include "platform/LeaveSignals.h"

using namespace vardel;

namespace {

// The arguments as one line, as the program entry of a desktop gets them.
std::string CommandLine(int count, char** words) {
    std::string line;
    for (int i = 1; i < count; ++i) line += (i > 1 ? " " : "") + std::string(words[i]);
    return line;
}

int Run(Services& services, EventHandle leave, const std::string& commandLine) {
    HeadlessFrame frame(services, leave, stdout, stderr);
    auto* app = new (std::nothrow) Vardel(services, frame);
    if (!app) return EXIT_FAILURE;
    app->MainInit(nullptr, nullptr, commandLine.c_str(), 0);
    app->MainRun();

    const int code = frame.WasBuilt() ? EXIT_SUCCESS : EXIT_FAILURE;
    if (frame.WasBuilt()) frame.Report().PrintEnd(app->data);
    // What a thread that still runs may touch stays as it is.
    if (!app->ThreadsHaveEnded()) std::_Exit(code);
    delete app;
    TheEventMap().Clear();
    return code;
}

}  // namespace

int main(int count, char** words) {
    Services& services = SystemServices();
    const EventHandle leave = services.events.Create(nullptr, true, false);
    int code;
    {
        const LeaveSignals signals(services.events, leave);
        code = Run(services, leave, CommandLine(count, words));
    }
    services.events.Close(leave);
    return code;
}

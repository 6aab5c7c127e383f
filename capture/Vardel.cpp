#include "capture/Vardel.h"

#include <cstdlib>

#include "foundation/TcSystemInfo.h"
#include "foundation/TcTrace.h"
#include "resources/ResourceIds.h"

namespace vardel {

namespace {

constexpr int kErrorTextSize = 255;
constexpr u32 kThreadEndTimeoutMs = 15000;

}  // namespace

Vardel::Vardel(Services& systemServices, VardelFrame& userFrame)
    : TcWinMain(systemServices.process), services(systemServices), frame(userFrame), data(systemServices) {
    services.process.StartNetwork();
}

Vardel::~Vardel() {
    data.adapters.clear();
    StopLeftThreads();
    // Behind the threads, which may be loading a text.
    FreeLanguages();
    if (systemInfo) TcSystemInfo::DestroyObject(systemInfo);
    services.captureModules.Free(captureModule);
    services.captureModules.Free(packetModule);
    updatePopup.reset();
    services.process.StopNetwork();
}

// After an ordinary run nothing is recorded. A thread that doesn't end keeps everything that it may still touch: then
// the process ends here.
void Vardel::StopLeftThreads() {
    struct LeftThread {
        RunningThread& thread;
        const char* trace;
    };
    const LeftThread rows[] = {{snifferThread, "exit sniffer thread"},
                               {fileSharingThread, "exit filesharing thread"},
                               {wmiThread, "exit wmi thread"},
                               {checkNetResThread, "exit netresource thread"},
                               {readVendorThread, "exit vendor thread"},
                               {notifyPluginThread, "exit plugin thread"},
                               {writeEventsThread, "exit event writer thread"}};
    std::vector<ThreadHandle> left = std::move(abandonedThreads);
    for (const LeftThread& row : rows) {
        if (!row.thread.handle || row.thread.id == 0) continue;
        VARDEL_TRACE("Vardel", "~Vardel", row.trace);
        left.push_back(row.thread.handle);
        row.thread = {};
    }
    if (left.empty()) return;
    RequestStops();
    if (!services.threads.WaitAll(left, kThreadEndTimeoutMs)) std::_Exit(EXIT_FAILURE);
    for (const ThreadHandle handle : left) services.threads.Close(handle);
}

// The built-in language has no file and is the program itself.
void Vardel::FreeLanguages() {
    data.languages.ForEach([this](const TcString&, const LanguageEntry* language) {
        if (language && !language->file.IsEmpty()) services.modules.Free(language->module);
    });
    data.languages.Clear();
}

void Vardel::ErrorBox(u32 stringId) {
    char text[kErrorTextSize];
    char title[kErrorTextSize];
    data.LoadText(stringId, text, sizeof text);
    data.LoadText(IDS_ERROR_TITLE, title, sizeof title);
    frame.ShowError(title, text);
}

}  // namespace vardel

// The run of the application from start to exit. The order of the steps is part of the design: what a step needs
// was made before it, and no thread exists before everything that it reads stands.
#include <cstring>
#include <vector>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "foundation/TcSystemInfo.h"
#include "foundation/TcTrace.h"
#include "plugins/PluginStates.h"
#include "resources/ResourceIds.h"

namespace vardel {

namespace {

constexpr char kInstanceName[] = "Vardelwatch";
constexpr char kEventGuardName[] = "WriteEventMapHandle";
constexpr i64 kUpdateCheckSeconds = 604800;  // seven days
constexpr int kUpdateTextSize = 512;
constexpr u32 kThreadEndTimeoutMs = 15000;
constexpr u32 kEventLogTimeoutMs = 3000;

}  // namespace

u32 Vardel::MainRun() {
    if (AnotherInstanceRuns()) return 0;
    apartmentEntered_ = services.process.EnterApartment();
    PostEvent(EventKind::ProgramStarted);
    SetUpTracing();
    systemInfo = TcSystemInfo::CreateObject();
    TakeSettings();
    TakeInstances();
    CheckForUpdates();
    CreateEventGuard();
    captureLibraryReady = InitializeWinPCAP();
    if (!captureLibraryReady) {
        EndEarly(IDS_NO_CAPTURE_LIBRARY);
        return 0;
    }
    if (FindAdapters() == 0) {
        EndEarly(IDS_NO_ADAPTER);
        return 0;
    }
    if (!data.fences.CreateAll()) {
        // Unlike the other two this end leaves the guard open: it stands until the process is gone.
        ErrorBox(IDS_NO_APPLICATION_DATA);
        LeaveApartment();
        return 0;
    }
    if (capture.PacketGetVersion) data.packetLibraryVersion = capture.PacketGetVersion();
    FillThreadParams();
    StartWorkers();
    ReadMACVendorFile();
    StartPlugins();
    if (data.settings.EventLogSave) StartEventLogWrite();
    RunFrame();

    PostEvent(EventKind::ProgramExited);
    data.plugins.UnloadPlugins();
    AwaitEventLog();
    RequestStops();
    threadsHaveEnded_ = AwaitThreads();
    // A thread that still runs keeps all that it may touch; the process ends with it.
    if (!threadsHaveEnded_) return 0;
    CloseHandles();
    data.fences.CloseAll();
    CloseEventGuard();
    LeaveApartment();
    return 0;
}

bool Vardel::AnotherInstanceRuns() {
    if (!CheckRunningInstance(kInstanceName)) return false;
    services.process.DebugText("Vardel - MainRun - only one instance can be started... EXIT !");
    return true;
}

// Plain searches anywhere in the line; "-file" alone turns nothing on.
void Vardel::SetUpTracing() {
    const char* commandLine = GetCmdLine();
    if (!std::strstr(commandLine, "-debug")) return;
    TcTrace::SetupTracing(std::strstr(commandLine, "-file") != nullptr, 1);
}

void Vardel::TakeSettings() {
    if (!data.settings.ReadSettings()) return;
    data.capturing = data.settings.AutoCapture;
    data.interfaceName = data.settings.Interface;
    if (data.settings.DeleteARPCache) services.arpCache.Flush();
}

void Vardel::TakeInstances() {
    const ModuleHandle program = GetInstance();
    const ModuleHandle language = LoadLanguages();
    const ModuleHandle texts = language ? language : program;
    for (VardelCaptureData* handler : {static_cast<VardelCaptureData*>(&arpImpl),
                                       static_cast<VardelCaptureData*>(&ipImpl)}) {
        handler->resourceInstance = texts;
        handler->programInstance = program;
    }
    data.resourceInstance = texts;
    data.programInstance = program;
    data.app = this;
}

// The moment is kept before the checks and whatever their outcome, so that failing ones are tried again a week later.
void Vardel::CheckForUpdates() {
    if (!data.settings.UpdateCheck) return;
    const i64 now = services.clock.Now();
    if (!IsUpdateCheckDue(now, data.settings.LastUpdateTime)) return;
    data.settings.LastUpdateTime = now;
    data.settings.WriteLastUpdateTime();
    const bool hasProgram = data.CheckProgramUpdate();
    const bool hasMacList = data.CheckMacListUpdate();
    if (hasProgram || hasMacList) TellOfUpdates();
}

void Vardel::TellOfUpdates() {
    if (!updatePopup) updatePopup = frame.MakeUpdatePopup();
    if (!updatePopup) return;
    char text[kUpdateTextSize];
    data.LoadText(IDS_UPDATES_AVAILABLE, text, sizeof text);
    ShowUpdateNotice(*updatePopup, text);
}

void Vardel::CreateEventGuard() {
    eventGuard_ = services.events.Create(kEventGuardName, true, true);
    TheEventMap().SetGuard(&services.events, eventGuard_);
}

void Vardel::CloseEventGuard() {
    TheEventMap().SetGuard(nullptr, nullptr);
    services.events.Close(eventGuard_);
    eventGuard_ = nullptr;
}

void Vardel::LeaveApartment() {
    if (apartmentEntered_) services.process.LeaveApartment();
    apartmentEntered_ = false;
}

void Vardel::EndEarly(u32 stringId) {
    ErrorBox(stringId);
    CloseEventGuard();
    LeaveApartment();
}

void Vardel::FillThreadParams() {
    for (ThreadParams* block : {&workerParams, &shareParams, &eventWriterParams}) {
        block->arp = &arpImpl;
        block->ip = &ipImpl;
        block->data = &data;
        block->app = this;
        block->stop = 0;
        block->stopRequested = services.events.Create(nullptr, true, false);
    }
    batchWritten = services.events.Create(nullptr, false, false);
}

void Vardel::StartWorkers() {
    Threads& threads = services.threads;
    threads.Start(&SnifferThread, &workerParams, snifferThread.handle, snifferThread.id);
    threads.Start(&FileSharingThread, &shareParams, fileSharingThread.handle, fileSharingThread.id);
    threads.Start(&WMIThread, &workerParams, wmiThread.handle, wmiThread.id);
    threads.Start(&CheckNetResThread, &workerParams, checkNetResThread.handle, checkNetResThread.id);
    VARDEL_TRACE_INT("Vardel", "MainRun", "Create SnifferThread - ID: ", snifferThread.id);
    VARDEL_TRACE_INT("Vardel", "MainRun", "Create FileSharingThread - ID: ", fileSharingThread.id);
    VARDEL_TRACE_INT("Vardel", "MainRun", "Create WMIThread - ID: ", wmiThread.id);
    VARDEL_TRACE_INT("Vardel", "MainRun", "Create CheckNetResThread - ID: ", checkNetResThread.id);
}

// A plugin that is new to the settings starts switched off; nobody tells a plugin before its switch is known.
void Vardel::StartPlugins() {
    data.plugins.LoadPlugins();
    data.plugins.SetPluginLanguage(data.languageId);
    MergePluginStates(data.plugins, data.settings.pluginStates);
    services.threads.Start(&NotifyPluginThread, &workerParams, notifyPluginThread.handle, notifyPluginThread.id);
    VARDEL_TRACE_INT("Vardel", "MainRun", "Create NotifyPluginThread - ID: ", notifyPluginThread.id);
}

void Vardel::RunFrame() {
    VARDEL_TRACE("Vardel", "MainRun", "Create app");
    frame.CreateApp(data, *this);
    VARDEL_TRACE("Vardel", "MainRun", "App goes home");
}

// So that the last event reaches the file. Only a live writer that nobody stopped is waited for; it is woken, since
// it may just have begun its pause.
void Vardel::AwaitEventLog() {
    if (!IsEventWriterRunning() || eventWriterParams.stop) return;
    services.events.Set(eventWriterParams.stopRequested);
    const u32 posted = TheEventMap().Count();  // more may follow while frames come in; they aren't waited for
    const u32 start = services.clock.TickCount();
    u32 waitedMs = 0;
    while (eventsWritten < posted && waitedMs < kEventLogTimeoutMs) {
        if (services.events.Wait(batchWritten, kEventLogTimeoutMs - waitedMs) != WaitResult::Signalled) return;
        waitedMs = services.clock.TickCount() - start;
    }
}

void Vardel::RequestStops() {
    RequestStop(shareParams, services.events);
    RequestStop(eventWriterParams, services.events);
    RequestStop(workerParams, services.events);
}

bool Vardel::AwaitThreads() {
    VARDEL_TRACE("Vardel", "MainRun", "Wait for exiting threads");
    std::vector<ThreadHandle> handles;
    for (const RunningThread* thread : ThreadTable()) handles.push_back(thread->handle);
    handles.insert(handles.end(), abandonedThreads.begin(), abandonedThreads.end());
    const bool ended = services.threads.WaitAll(handles, kThreadEndTimeoutMs);
    VARDEL_TRACE("Vardel", "MainRun", "after WaitForMultipleObjects");
    return ended;
}

// In the order in which they are waited for and closed.
std::array<RunningThread*, 7> Vardel::ThreadTable() {
    return {&snifferThread,     &fileSharingThread,  &readVendorThread, &wmiThread,
            &checkNetResThread, &notifyPluginThread, &writeEventsThread};
}

void Vardel::CloseHandles() {
    for (RunningThread* thread : ThreadTable()) {
        services.threads.Close(thread->handle);
        *thread = {};
    }
    for (const ThreadHandle abandoned : abandonedThreads) services.threads.Close(abandoned);
    abandonedThreads.clear();
    for (ThreadParams* block : {&workerParams, &shareParams, &eventWriterParams}) {
        services.events.Close(block->stopRequested);
        block->stopRequested = nullptr;
    }
    services.events.Close(batchWritten);
    batchWritten = nullptr;
}

// Both moments may be anything that a settings store can hold; the difference wraps instead of overflowing.
bool IsUpdateCheckDue(i64 now, i64 lastUpdate) {
    const i64 delta = static_cast<i64>(static_cast<u64>(now) - static_cast<u64>(lastUpdate));
    return delta >= kUpdateCheckSeconds;
}

}  // namespace vardel

// Vardel: the application. Holds all state of one run, starts the threads, hands control to the frame until the
// user exits, and ends everything in a fixed order.
//
// Built and run by the program entry on the main thread, which deletes it only when ThreadsHaveEnded says so.
// Operations that belong to an upper folder are defined there.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "capture/ThreadParams.h"
#include "capture/VardelARPImpl.h"
#include "capture/VardelData.h"
#include "capture/VardelFrame.h"
#include "capture/VardelIPImpl.h"
#include "foundation/TcWinMain.h"
#include "platform/Services.h"

namespace vardel {

class TcSystemInfo;
struct VendorRun;

// One row of the thread table: handle and id, null and 0 when not running.
struct RunningThread {
    ThreadHandle handle = nullptr;
    u32 id = 0;
};

class Vardel : public TcWinMain {
  public:
    Vardel(Services& systemServices, VardelFrame& userFrame);
    ~Vardel() override;

    u32 MainRun() override;

    // Loads both capture modules and resolves the twelve entry points; true only when all are there.
    bool InitializeWinPCAP();
    // Builds `adapters`, the local host records, `localHostName`, `localMac`, `adapterIndex`. Gives the number of
    // devices walked; 0 means no adapter.
    u32 FindAdapters();
    // The connection's display name of a device; untouched on no match.
    void FindConnectionName(const char* deviceName, TcString& friendlyName);
    // Error box with the text of `stringId`.
    void ErrorBox(u32 stringId);

    // Starts a vendor run; a run that hasn't ended is abandoned and publishes nothing.
    bool ReadMACVendorFile();

    // Fills `data.languages` and gives the module of the chosen language; null: the program's own texts.
    ModuleHandle LoadLanguages();

    bool StartEventLogWrite();
    bool StopEventLogWrite();
    bool IsEventWriterRunning() const;

    Services& services;
    VardelFrame& frame;
    VardelData data;
    VardelARPImpl arpImpl;
    VardelIPImpl ipImpl;
    RunningThread snifferThread;
    RunningThread fileSharingThread;
    RunningThread readVendorThread;
    RunningThread wmiThread;
    RunningThread checkNetResThread;
    RunningThread notifyPluginThread;
    RunningThread writeEventsThread;
    Shared<u8> captureLibraryReady = 0;
    TcSystemInfo* systemInfo = nullptr;  // made in MainRun
    std::unique_ptr<NotifyPopup> updatePopup;  // the frame's; null until there is something to tell
    ModuleHandle captureModule = nullptr;
    ModuleHandle packetModule = nullptr;
    CaptureEntryPoints capture;
    ThreadParams workerParams;      // capture, vendor table
    ThreadParams shareParams;       // share access
    ThreadParams eventWriterParams;
    Shared<u32> eventsWritten = 0;  // how far the running log writer has got, in events of the map
    EventHandle batchWritten = nullptr;  // auto-reset; the log writer sets it after each of its batches
    std::shared_ptr<VendorRun> vendorRun;
    // Workers that were given up while they still ran. Nothing shared may be freed before they have ended.
    std::vector<ThreadHandle> abandonedThreads;

    // True unless a thread outlived the end of the run. The process then ends as it stands: nothing shared may be
    // freed, this object included.
    bool ThreadsHaveEnded() const { return threadsHaveEnded_; }

  private:
    // The steps of the start, in their order (MainRun.cpp).
    bool AnotherInstanceRuns();
    void SetUpTracing();
    void TakeSettings();
    void TakeInstances();
    void CheckForUpdates();
    void TellOfUpdates();
    void CreateEventGuard();
    void FillThreadParams();
    void StartWorkers();
    void StartPlugins();
    void RunFrame();
    // The steps of the end.
    void AwaitEventLog();
    void RequestStops();
    bool AwaitThreads();
    std::array<RunningThread*, 7> ThreadTable();
    void CloseHandles();
    void CloseEventGuard();
    void LeaveApartment();
    void EndEarly(u32 stringId);

    // Asks what an early end of the run left behind to stop, and waits for it.
    void StopLeftThreads();
    void FreeLanguages();

    EventHandle eventGuard_ = nullptr;
    bool apartmentEntered_ = false;
    bool threadsHaveEnded_ = true;
};

// True when the last update check lies seven days or more back. A moment in the future is not due.
bool IsUpdateCheckDue(i64 now, i64 lastUpdate);

}  // namespace vardel

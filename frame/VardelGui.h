// VardelGui: the desktop program's frame. A main window that is never shown, the tray icon with its menu, the popups,
// and the windows that the commands open, one at a time.
//
// Built by the program entry, handed to the application object, runs on the main thread. The Exit command, a close
// request or the end of the session ends the message loop. Where the program was given a standard output, the run's
// lines and the alerts go there too, since it has no console of its own.
#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "capture/VardelFrame.h"
#include "frame/AboutBox.h"
#include "frame/AlertLines.h"
#include "frame/FrameTimers.h"
#include "frame/MainWindow.h"
#include "frame/PeriodicTick.h"
#include "frame/RunReport.h"
#include "frame/ShellTrayIcon.h"
#include "frame/TrayMenus.h"
#include "views/VardelViewDlg.h"

namespace vardel {

class TcSystemInfo;

class VardelGui : public VardelFrame, private AlertSurface {
  public:
    // `output` may be null.
    explicit VardelGui(std::FILE* output);
    ~VardelGui() override;

    bool CreateApp(VardelData& data, Vardel& app) override;
    void ShowError(const char* title, const char* text) override;
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return MakePopup(); }

    // True once the application has come to its message loop.
    bool WasBuilt() const { return built_; }
    RunReport& Report() { return report_; }

    // While the message loop runs.
    const ShellTrayIcon& Tray() const { return tray_; }
    const TrayMenus& Menus() const { return menus_; }
    VardelViewDlg& View() { return view_; }
    AlertSurface& Surface() { return *this; }

  private:
    // The window's timers.
    class WindowTimers : public FrameTimers {
      public:
        explicit WindowTimers(HWND window) : window_(window) {}
        void Arm(u32 id, u64 periodMs) override;
        void Kill(u32 id) override { KillTimer(window_, id); }

      private:
        const HWND window_;
    };
    struct SystemInfoDeleter {
        void operator()(TcSystemInfo* info) const;
    };

    // The alerts' surface.
    void ShowTrayNotify(u32 iconId, const char* text, const char* tip) override;
    NotifyPopup* HostPopup() override { return hostPopup_.get(); }
    NotifyPopup* WatchPopup() override { return watchPopup_.get(); }
    NotifyPopup* SyslogPopup() override { return syslogPopup_.get(); }
    Color MenuHighlight() override;

    std::unique_ptr<NotifyPopup> MakePopup();
    void MakePopups();
    bool RegisterMainClass(HINSTANCE instance);
    void RunWindow(Vardel& app);
    std::string TrayTip() const;

    static LRESULT CALLBACK MainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCreate();
    void OnInit();
    void OnEndSession(bool ends);
    void OnTimer(UINT_PTR id);
    void OnTrayMessage(UINT iconId, UINT mouse);
    void OnTrayMenu();

    // The commands.
    void OnCommand(u32 command);
    void SetCapturing(bool on);
    void ShowAbout();
    void OpenHelp();
    void SelectLanguage(u32 menuId);

    // The windows. Those that this program doesn't have are null, and their commands grey.
    WindowSet PresentWindows() const;
    WindowSet OpenWindows() const;
    void CarryOut(const WindowDeed& deed);
    void OpenWindow(ProgramWindow window);

    RunReport report_;
    AlertLines lines_;
    const std::unique_ptr<TcSystemInfo, SystemInfoDeleter> systemInfo_;
    VardelData* data_ = nullptr;
    ModuleHandle language_ = nullptr;  // of the frame's texts
    ModuleHandle images_ = nullptr;
    HWND window_ = nullptr;
    UINT taskbarCreated_ = 0;
    PeriodicTick* tick_ = nullptr;  // while the message loop runs
    ShellTrayIcon tray_;
    TrayMenus menus_;
    AboutBox about_;
    VardelViewDlg view_;
    std::array<TcDialog*, kProgramWindows> windows_{};
    std::unique_ptr<NotifyPopup> hostPopup_, watchPopup_, syslogPopup_;
    bool built_ = false;
};

}  // namespace vardel

// HiddenWindowFrame: the desktop program's frame: a main window that is never shown, and its message loop.
//
// Built by the program entry, handed to the application object, runs on the main thread. The Exit command, a close
// request or the end of the session ends the loop. Where the program was given a standard output, the run's lines
// and the alerts go there too, since it has no console of its own.
#pragma once

#include <cstdio>

#include "capture/VardelFrame.h"
#include "frame/AlertLines.h"
#include "frame/FrameTimers.h"
#include "frame/MainWindow.h"
#include "frame/PeriodicTick.h"
#include "frame/RunReport.h"
#include "platform/WindowsApi.h"

namespace vardel {

class HiddenWindowFrame : public VardelFrame {
  public:
    // `output` may be null.
    explicit HiddenWindowFrame(std::FILE* output) : report_(output), alerts_(output, SystemDesktopNotice()) {}

    bool CreateApp(VardelData& data, Vardel& app) override;
    void ShowError(const char* title, const char* text) override;
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return alerts_.MakePopup(); }

    // True once the application has come to its message loop.
    bool WasBuilt() const { return built_; }
    RunReport& Report() { return report_; }

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

    void RunWindow(HWND window, VardelData& data, Vardel& app);
    static LRESULT CALLBACK MainProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(unsigned command);
    void OnTimer(UINT_PTR id);
    bool RegisterMainClass(HINSTANCE instance);

    RunReport report_;
    AlertLines alerts_;
    VardelData* data_ = nullptr;
    PeriodicTick* tick_ = nullptr;  // while the message loop runs
    bool built_ = false;
};

}  // namespace vardel

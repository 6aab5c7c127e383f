// HeadlessFrame: the frame of a program without windows. A message loop of its own with timers, and lines of text.
//
// Built by the program entry, handed to the application object, runs on the main thread. Events appear on the
// output as they are posted, each as the event log's line tells it; the loop ends when `leave` is signalled.
#pragma once

#include <cstdio>

#include "capture/VardelFrame.h"
#include "frame/AlertLines.h"
#include "frame/RunReport.h"
#include "frame/TimerQueue.h"
#include "platform/Services.h"

namespace vardel {

class HeadlessFrame : public VardelFrame {
  public:
    // Borrows all of them for its life. Errors of the start go to `errors`.
    HeadlessFrame(Services& services, EventHandle leave, std::FILE* output, std::FILE* errors,
                  DesktopNotice& notices = SystemDesktopNotice());

    bool CreateApp(VardelData& data, Vardel& app) override;
    void ShowError(const char* title, const char* text) override;
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return alerts_.MakePopup(); }

    // True once the application has come to its message loop.
    bool WasBuilt() const { return built_; }
    RunReport& Report() { return report_; }

  private:
    void OnTimer(u32 id, VardelData& data);

    Services& services_;
    const EventHandle leave_;
    std::FILE* const errors_;
    RunReport report_;
    AlertLines alerts_;
    TimerQueue timers_;
    bool built_ = false;
};

}  // namespace vardel

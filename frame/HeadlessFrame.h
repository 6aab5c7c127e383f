// HeadlessFrame: the frame of a program without windows. A message loop of its own with timers, and lines of text.
//
// Built by the program entry, handed to the application object, runs on the main thread. Events appear on the
// output as they are posted, each as the event log's line tells it, and alerts as their lines; the loop ends when
// `leave` is signalled.
#pragma once

#include <cstdio>

#include "capture/VardelFrame.h"
#include "frame/AlertLines.h"
#include "frame/FrameTimers.h"
#include "frame/PeriodicTick.h"
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
    // The frame's timers over its queue.
    class QueueTimers : public FrameTimers {
      public:
        explicit QueueTimers(TimerQueue& queue) : queue_(queue) {}
        void Arm(u32 id, u64 periodMs) override;
        void Kill(u32 id) override { queue_.Kill(id); }

      private:
        TimerQueue& queue_;
    };

    void ArmAll(VardelData& data);
    void OnTimer(u32 id, VardelData& data, PeriodicTick& tick);

    Services& services_;
    const EventHandle leave_;
    std::FILE* const errors_;
    RunReport report_;
    AlertLines alerts_;
    TimerQueue timers_;
    bool built_ = false;
};

}  // namespace vardel

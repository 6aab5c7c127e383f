// EngineDeeds: what the tick has done in the running program. Built by a frame, main thread.
#pragma once

#include "frame/TickDeeds.h"

namespace vardel {

class EngineDeeds : public TickDeeds {
  public:
    // Borrows it for its life.
    explicit EngineDeeds(VardelData& data) : data_(data) {}

    void QueuePluginNotify(u32 kind, i64 mark) override;
    void StartApplication(const TcString& file, const TcString& parameters, const HostRecord& host) override;
    void CheckWatchedHosts(NotifyPopup* popup, ModuleHandle language) override;
    void WriteReport() override;

  private:
    VardelData& data_;
};

}  // namespace vardel

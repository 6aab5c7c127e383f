// PeriodicTick: the pump between the worker threads and the user. A frame hands it every timer that fires.
//
// Workers never send anything to a window: they append to shared lists, and these ticks drain them on the main thread,
// one at a time. Nothing is kept between ticks but what the lists and the popups hold.
#pragma once

#include "frame/TickContext.h"

namespace vardel {

class PeriodicTick {
  public:
    // Borrows all for its life. Without data it does nothing.
    PeriodicTick(VardelData* data, AlertSurface& surface, TickDeeds& deeds)
        : data_(data), surface_(surface), deeds_(deeds), language_(data ? data->resourceInstance.Get() : nullptr) {}

    // A number that is none of FrameTimer is ignored. Memory that runs out ends the tick early; what it has not
    // consumed is there for the next one.
    void OnTimer(u32 timerId);

    // The module of the frame's texts from now on; null: the program's own.
    void SetLanguage(ModuleHandle module) { language_ = module; }

  private:
    void Run(u32 timerId, const TickContext& tick);

    VardelData* const data_;
    AlertSurface& surface_;
    TickDeeds& deeds_;
    ModuleHandle language_;
};

}  // namespace vardel

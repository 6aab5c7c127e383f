// LooklessPopup: a popup without a window. Its look means nothing; what becomes of a text and how long it counts as
// showing is for the class over it to say.
//
// As every popup it belongs to a surface and is used on the main thread alone.
#pragma once

#include "capture/NotifyPopup.h"

namespace vardel {

class LooklessPopup : public NotifyPopup {
  public:
    bool IsShowing() const override { return false; }
    void Reset() override {}
    void SetColors(Color, Color, Color, Color) override {}
    void SetDisplayTime(i32) override {}
    void SetCorner(bool) override {}
    void SetRamp(bool) override {}
    void SetFont(i32, i32) override {}
};

}  // namespace vardel

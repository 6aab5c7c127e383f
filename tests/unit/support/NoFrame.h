// The user's side of an application that a test drives itself: builds nothing, shows nothing.
#pragma once

#include "capture/VardelFrame.h"

namespace vardel::test {

class NoFrame : public VardelFrame {
  public:
    bool CreateApp(VardelData&, Vardel&) override { return true; }
    void ShowError(const char*, const char*) override {}
    std::unique_ptr<NotifyPopup> MakeUpdatePopup() override { return nullptr; }
};

}  // namespace vardel::test

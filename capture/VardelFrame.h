// What the application object asks of the part that faces the user: a desktop or a headless frame.
//
// Built by app/ and handed to the application object; runs on the main thread.
#pragma once

#include <memory>

#include "capture/NotifyPopup.h"

namespace vardel {

class Vardel;
class VardelData;

class VardelFrame {
  public:
    virtual ~VardelFrame() = default;

    // Builds what the frame shows, then runs the message loop until the user exits. False when it could not be built.
    virtual bool CreateApp(VardelData& data, Vardel& app) = 0;

    // An error box with one button and no owner; returns when it was answered.
    virtual void ShowError(const char* title, const char* text) = 0;

    // A popup for the notice that there are updates, made before CreateApp and given back after it; what it shows
    // appears once the message loop runs. Null when it could not be made.
    virtual std::unique_ptr<NotifyPopup> MakeUpdatePopup() = 0;
};

}  // namespace vardel

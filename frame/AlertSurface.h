// AlertSurface: what the periodic tick shows its alerts on. The tray icon with its tooltip and balloons, and three
// popups.
//
// A frame's own; used on the main thread alone. The tick decides what is told and in which form, the surface only
// shows it.
#pragma once

#include "capture/NotifyPopup.h"

namespace vardel {

// Tray icons by their resource ids. The first one only refreshes the tooltip, the others raise a balloon.
enum TrayIcon : u32 { kTrayProgram = 102, kTrayRemoteAccess = 110, kTrayMacSpoofing = 119, kTrayInformation = 121 };

constexpr char kProductName[] = "Vardelwatch";

class AlertSurface {
  public:
    virtual ~AlertSurface() = default;

    // `tip` becomes the tooltip; an empty one stands for the bare product name. `text` is the balloon's body, under
    // the product name as its title; with kTrayProgram there is no balloon and the text isn't shown. A surface cuts
    // both to what it has room for.
    virtual void ShowTrayNotify(u32 iconId, const char* text, const char* tip) = 0;

    // The three popups; null for one that could not be made. They live as long as the surface.
    virtual NotifyPopup* HostPopup() = 0;
    virtual NotifyPopup* WatchPopup() = 0;
    virtual NotifyPopup* SyslogPopup() = 0;

    // The colour in which the system highlights a menu's entry.
    virtual Color MenuHighlight() = 0;
};

}  // namespace vardel

// What every tick works with: the shared state, the surface it shows alerts on, those who do its deeds, and the
// language of its texts. Borrowed for the time of one tick, on the main thread.
#pragma once

#include <string>

#include "capture/VardelData.h"
#include "frame/AlertSurface.h"
#include "frame/TickDeeds.h"
#include "settings/VardelSettings.h"

namespace vardel {

struct TickContext {
    VardelData& data;
    AlertSurface& surface;
    TickDeeds& deeds;
    ModuleHandle language;  // of the frame's texts; null: the program's own

    // A user text by its id in the frame's language; empty for an unknown one.
    std::string Text(u32 id) const {
        constexpr int kTextSize = 500;
        char text[kTextSize];
        data.services.strings.Load(language, id, text, kTextSize);
        return text;
    }
    bool HostPopupIsShowing() const {
        const NotifyPopup* popup = surface.HostPopup();
        return popup && popup->IsShowing();
    }
};

// The look of an alert in the host popup. A display time of 0 leaves the popup's own.
struct AlertLook {
    Color left, right, text, border;
    i32 displayTimeMs;
};

// MAC spoofing and remote access are told in red.
constexpr AlertLook kWarningLook{{255, 0, 0}, {180, 0, 0}, {255, 255, 255}, {100, 0, 0}, 7500};

// Sets the look and shows the text. Without a popup the alert is told to nobody, which is wanted.
inline void ShowInPopup(NotifyPopup* popup, const AlertLook& look, const std::string& text) {
    if (!popup) return;
    popup->SetColors(look.left, look.right, look.text, look.border);
    if (look.displayTimeMs != 0) popup->SetDisplayTime(look.displayTimeMs);
    popup->Show(text.c_str());
}
inline void ResetAndShowInPopup(NotifyPopup* popup, const AlertLook& look, const std::string& text) {
    if (popup) popup->Reset();
    ShowInPopup(popup, look, text);
}

inline bool IsListed(const ListedHostTable& table, const TcString& ip) {
    ReadPin pin;
    return table.Find(ip) != nullptr;
}

}  // namespace vardel

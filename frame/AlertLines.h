// AlertLines: the surface of a frame without windows. Alerts become lines of text, and notices of the desktop where
// one runs.
//
// A balloon and a popup are told alike; the tooltip is shown nowhere. A popup never counts as showing, so nothing is
// ever held back. Whatever came from the network is made printable.
#pragma once

#include <cstdio>
#include <memory>

#include "frame/AlertSurface.h"
#include "platform/DesktopNotice.h"

namespace vardel {

class AlertLines : public AlertSurface {
  public:
    // Borrows both for its life; `output` may be null.
    AlertLines(std::FILE* output, DesktopNotice& notices);
    ~AlertLines() override;

    void ShowTrayNotify(u32 iconId, const char* text, const char* tip) override;
    NotifyPopup* HostPopup() override { return popup_.get(); }
    NotifyPopup* WatchPopup() override { return popup_.get(); }
    NotifyPopup* SyslogPopup() override { return popup_.get(); }
    Color MenuHighlight() override { return {}; }

    // One more popup, which must not outlive this object.
    std::unique_ptr<NotifyPopup> MakePopup();

    // "Alert: " and the text's first line, each further line behind four blanks. An empty text tells nothing.
    void Tell(const char* text);

  private:
    std::FILE* const output_;
    DesktopNotice& notices_;
    const std::unique_ptr<NotifyPopup> popup_;
};

}  // namespace vardel

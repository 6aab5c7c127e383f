// DialogResizer: moves and stretches the controls of a dialog that may be resized, and bounds its size.
//
// Part of TcDialog, one a dialog. Begin binds it to a window; what was set for that window is forgotten with
// End. Main thread.
#pragma once

#include <vector>

#include "platform/WindowsApi.h"
#include "toolkit/PixelRect.h"

namespace vardel {

class DialogResizer {
  public:
    void Begin(HWND dialog);
    void End();

    // The sizing border follows at once while there is a window, otherwise when there is one.
    void Enable(bool enable);
    bool IsEnabled() const { return enabled_; }
    // The control's place in the client area as it is now is what later sizes are told from. False without
    // it.
    bool Add(int control, int flags);
    // Of the whole window, in pixels of 100 %.
    void SetMinimum(PixelSize size) { minimum_ = size; }
    // The same in pixels of the display.
    PixelSize Minimum() const;

    void OnSize();
    void OnMinMaxInfo(MINMAXINFO& limits) const;

  private:
    struct Follower {
        HWND control;
        int flags;
        PixelRect original;
        PixelSize client;  // of the dialog at that time
    };

    PixelSize ClientSize() const;
    void ShowBorder() const;
    bool MoveTogether(PixelSize client) const;

    HWND dialog_ = nullptr;
    bool enabled_ = false;
    PixelSize minimum_;
    std::vector<Follower> followers_;
};

}  // namespace vardel

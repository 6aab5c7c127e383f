// TcColorBar: a caption bar with a 16 x 16 icon, a text and a colour that fades out, drawn into an existing
// static control. The object outlives the control and lets it go by itself; it may be bound to another one
// then, and keeps colour, text and icon. Main thread. Texts are in the system code page.
#pragma once

#include <string>

#include "platform/StringResources.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

class TcColorBar {
  public:
    TcColorBar() = default;
    ~TcColorBar();
    TcColorBar(const TcColorBar&) = delete;
    TcColorBar& operator=(const TcColorBar&) = delete;

    // False, and nothing is bound, for a handle that is no window.
    bool SetHwnd(HWND control);
    // Takes effect with the next Update, like text and icon. Under a high contrast scheme the system's
    // colours hold.
    bool SetStartColor(COLORREF color);
    // Also the control's text, which screen readers read. False without a control.
    bool SetText(const char* text);
    // An icon of the program; false, and no icon shows, when it has none of that number.
    bool SetIcon(int iconResource);
    // Paints anew, at once. False without a control.
    bool Update();

  private:
    static LRESULT CALLBACK ControlProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR self);
    void Paint(HDC dc) const;
    void PaintBackground(HDC dc, const RECT& bar, int gradientStart, COLORREF start) const;
    void Release();

    HWND control_ = nullptr;
    COLORREF start_ = GetSysColor(COLOR_HIGHLIGHT);
    std::string text_;
    UniqueIcon icon_;
};

}  // namespace vardel

// TcGuiTools: helpers of the toolkit and of the windows that stand on it. Main thread.
#pragma once

#include <string>

#include "platform/StringResources.h"
#include "platform/WindowsApi.h"
#include "toolkit/PixelRect.h"

namespace vardel {

class TcGuiTools {
  public:
    // A new copy of an icon in shades of grey, of the same size and opacity. The caller owns it
    // (DestroyIcon). `dc` is the display it is for; null stands for the screen. Null on failure.
    static HICON CreateGrayScaleIcon(HICON icon, HDC dc);

    // The module for the system's calls; null stands for the program's own.
    static HINSTANCE Instance(ModuleHandle module);

    // An icon resource at `edge` pixels of 100 %, scaled for the display. The caller owns it (DestroyIcon).
    // Null when the module has none of that number.
    static HICON LoadSizedIcon(ModuleHandle module, int iconResource, int edge);

    // A text of the system code page in the system's own characters.
    static std::wstring WideText(const std::string& text);

    // Dots per inch of the system, fixed for the session.
    static int Dpi();
    static int Scaled(int pixels) { return ScaledForDpi(pixels, Dpi()); }

    // True while the user has chosen a high contrast scheme: then only the system's own colours are readable.
    static bool IsHighContrast();
};

inline PixelRect ToPixels(const RECT& rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
            static_cast<int>(rect.bottom)};
}
inline RECT ToRect(const PixelRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace vardel

// VardelNotifyWnd: the small window that fades in at the edge of the desktop, tells one text, and fades out.
//
// A frame makes these and lends them out; main thread. An object shows one text at a time, which its caller sees to:
// a second Show makes a second window, and the object follows that one. Its timers run in the thread's message loop.
// Where the window couldn't be made the object counts as showing from then on, which is wanted.
#pragma once

#include <string>
#include <vector>

#include "frame/PopupFade.h"
#include "frame/PopupLook.h"
#include "frame/PopupPlacement.h"
#include "platform/StringResources.h"
#include "platform/WindowsApi.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

class TcSystemInfo;

constexpr char kNotifyWindowClass[] = "Vardelwatch - NotifyWndClass";

class VardelNotifyWnd : public NotifyPopup {
  public:
    // `systemInfo` may be null: the window then doesn't fade and is never seen.
    VardelNotifyWnd(ModuleHandle resources, ModuleHandle program, TcSystemInfo* systemInfo);
    ~VardelNotifyWnd() override;
    VardelNotifyWnd(const VardelNotifyWnd&) = delete;
    VardelNotifyWnd& operator=(const VardelNotifyWnd&) = delete;

    bool IsShowing() const override { return showing_; }
    void Reset() override { look_.Reset(); }
    void SetColors(Color left, Color right, Color text, Color border) override {
        look_.SetColors(left, right, text, border);
    }
    void SetDisplayTime(i32 milliseconds) override { look_.SetDisplayTime(milliseconds); }
    void SetCorner(bool atTheEdge) override { look_.atTheEdge = atTheEdge; }
    void SetRamp(bool ramp) override { look_.ramp = ramp; }
    void SetFont(i32 points, i32 weight) override { look_.SetFont(points, weight); }
    bool Show(const char* text) override;

    // Null while nothing is shown.
    HWND Window() const { return window_; }
    const PopupLook& Look() const { return look_; }
    const PopupExtent& Extent() const { return extent_; }

    // What the window's client area looks like.
    void Paint(HDC dc) const;

  private:
    // The function by which a window is made transparent, from the module that has it.
    class FadeFunction {
      public:
        explicit FadeFunction(TcSystemInfo* systemInfo);
        ~FadeFunction();
        FadeFunction(const FadeFunction&) = delete;
        FadeFunction& operator=(const FadeFunction&) = delete;
        explicit operator bool() const { return function_ != nullptr; }
        void Apply(HWND window, i32 opacity) const;

      private:
        using Function = BOOL(WINAPI*)(HWND, COLORREF, BYTE, DWORD);
        HMODULE module_ = nullptr;
        bool moduleLoaded_ = false;
        Function function_ = nullptr;
    };

    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool RegisterNotifyClass(HINSTANCE instance) const;
    void OnCreate(HWND window);
    void OnPaint(HWND window) const;
    void OnDestroy();
    void OnNcDestroy(HWND window);
    void MeasureText(HWND window);
    void Place(HWND window) const;
    void CarryOut(HWND window, const PopupStep& step);

    const FadeFunction fade_;
    const HINSTANCE instance_;
    PopupLook look_;
    PopupFade life_;
    PopupExtent extent_;
    DesktopMeasures desktop_;
    std::string text_;
    UniqueFont font_;
    HWND window_ = nullptr;
    std::vector<HWND> windows_;  // all that still stand, which is more than one after a second Show
    bool showing_ = false;
};

}  // namespace vardel

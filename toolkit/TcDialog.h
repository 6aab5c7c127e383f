// TcDialog: base of all dialogs. A dialog is a class derived from it whose resource module, parent and
// template number are set before the show call; the object is made before its window and outlives it.
//
// A show call runs a message loop of its own until ExitDialog, so timers and other windows go on meanwhile.
// It gives the argument of ExitDialog; false too when the window could not be made, was destroyed by somebody
// else, or the program is to end. Main thread only. Texts are in the system code page.
#pragma once

#include "foundation/TcString.h"
#include "platform/StringResources.h"
#include "platform/WindowsApi.h"
#include "toolkit/DialogResizer.h"

struct ITaskbarList3;

namespace vardel {

class TcDialog {
  public:
    TcDialog() = default;
    TcDialog(const TcDialog&) = delete;
    TcDialog& operator=(const TcDialog&) = delete;

    // The virtual operations, in this order.
    virtual ~TcDialog();
    // The window and its controls are there. `param` as given to the show call. True lets the system give the
    // focus to the first control.
    virtual bool OnInitDialog(LPARAM param) = 0;
    // A control's or menu's command, true when handled. Escape, which is command IDCANCEL, closes the dialog
    // like its close button where nobody handles it.
    virtual bool OnCommand(int id, int notification, HWND control) = 0;
    // The user closes the window. Ends the dialog with false.
    virtual void OnClose();
    // The window is going away, its controls are still there. Only after OnInitDialog.
    virtual void OnDestroy();
    // A common control notifies; `data` is its NMHDR. The control gets the result; 0 means not handled.
    virtual ULONG_PTR OnNotify(int id, LPARAM data);
    // Owner-drawn controls, also before OnInitDialog; id 0 is a menu item. True when handled.
    virtual bool OnMeasureItem(int id, MEASUREITEMSTRUCT* item) = 0;
    virtual bool OnDrawItem(int id, DRAWITEMSTRUCT* item) = 0;
    // A static control is about to paint: the brush for its background, null for the system's.
    virtual HBRUSH OnColorStatic(HDC dc, int id, HWND control);
    virtual void OnTimer(int id);
    // A key goes down in the dialog or one of its controls. True takes the key: no control sees it. A tab
    // that is taken still moves the focus on, also out of a control that would have kept it.
    virtual bool OnKeyDown(int key);
    // True keeps `taskbar` valid until the window is gone.
    virtual bool OnTaskbarButtonCreated(ITaskbarList3* taskbar);

    void SetDialogIdent(int id) { ident_ = id; }
    // Where the template is taken from; one that the module lacks comes from the program. Null: the program.
    void SetResInstance(ModuleHandle module) { module_ = module; }
    ModuleHandle GetResInstance() const { return module_; }
    // Parent of the next sub dialog, or a window within it.
    void SetParent(HWND parent) { parent_ = parent; }

    bool ShowDialogModal(LPARAM param);
    // The parent takes no input until the dialog has ended.
    bool ShowSubDialog(LPARAM param);
    // The first result holds; the window goes when the show call comes back to its loop.
    void ExitDialog(bool result);

    HWND GetHwnd() const { return window_; }
    HWND GetControl(int id) const { return window_ ? GetDlgItem(window_, id) : nullptr; }
    bool SetControlText(int id, const char* text);
    bool GetControlText(int id, TcString& text) const;
    bool SetControlTextAsInt(int id, int value);
    bool EnableControl(int id) { return SetControlEnabled(id, true); }
    bool DisableControl(int id) { return SetControlEnabled(id, false); }
    bool ShowControl(int id) { return SetControlShown(id, SW_SHOW); }
    bool HideControl(int id) { return SetControlShown(id, SW_HIDE); }
    bool IsButtonChecked(int id) const;
    LRESULT SendCtrlMsg(int id, UINT message, WPARAM wParam, LPARAM lParam) const;

    // Completion in an edit control while the user types: `addresses` that were visited before, `files` of
    // the disk. Needs an apartment of COM on this thread.
    static bool SetupAutoComplete(HWND control, bool addresses, bool files);

    void EnableResizing(bool enable) { resizer_.Enable(enable); }
    // Bits 128, 64 and 1: see ResizeRules.h. Once the window is there.
    bool AddControlForResize(int id, int flags) { return resizer_.Add(id, flags); }
    // Lower limits of the window's size in pixels, scaled with the display.
    void SetMinimumSize(int width, int height) { resizer_.SetMinimum({width, height}); }

    // The window's place on the screen; for a minimised or maximised one the place that it returns to. A
    // rectangle of no size is refused, one that lies on no monitor is moved onto the nearest.
    bool SetSizeAndPosition(const RECT& place);
    bool GetSizeAndPosition(RECT& place) const;

  private:
    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool Run(HWND owner, LPARAM param);
    HWND MakeWindow(HWND owner, LPARAM param);
    void RunLoop();
    bool TakesKey(const MSG& message);
    INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR RouteInit(LPARAM param);
    INT_PTR RouteCommand(WPARAM wParam, LPARAM lParam);
    INT_PTR RouteNotify(LPARAM lParam);
    INT_PTR RouteMenuChar(WPARAM wParam, LPARAM lParam);
    INT_PTR RouteColorChange(WPARAM wParam, LPARAM lParam);
    INT_PTR RouteMinMaxInfo(LPARAM lParam);
    INT_PTR RouteTaskbarButton();
    INT_PTR RouteDestroy();
    INT_PTR Unbind();
    INT_PTR Answer(LRESULT result) const;
    void ReleaseTaskbar();
    bool SetControlEnabled(int id, bool enabled);
    bool SetControlShown(int id, int how);

    int ident_ = 0;
    ModuleHandle module_ = nullptr;
    HWND parent_ = nullptr;
    HWND window_ = nullptr;
    bool running_ = false;
    bool initialised_ = false;
    bool ended_ = false;
    bool result_ = false;
    ITaskbarList3* taskbar_ = nullptr;
    DialogResizer resizer_;
};

}  // namespace vardel

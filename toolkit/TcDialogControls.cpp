// TcDialog's access to its controls and its place on the screen.
#include <algorithm>
#include <vector>

#include "toolkit/AutoCompleteRules.h"
#include "toolkit/ResizeRules.h"
#include "toolkit/TcDialog.h"
#include "toolkit/TcGuiTools.h"

#include <shlwapi.h>

namespace vardel {

bool TcDialog::SetControlText(int id, const char* text) {
    return window_ && SetDlgItemTextA(window_, id, text ? text : "");
}

bool TcDialog::GetControlText(int id, TcString& text) const {
    const HWND control = GetControl(id);
    if (!control) return false;
    // The length told may be more than the text's, never less.
    std::vector<char> buffer(static_cast<std::size_t>(std::max(GetWindowTextLengthA(control), 0)) + 1);
    const int length = GetWindowTextA(control, buffer.data(), static_cast<int>(buffer.size()));
    return text.Set(buffer.data(), length);
}

bool TcDialog::SetControlTextAsInt(int id, int value) {
    return window_ && SetDlgItemInt(window_, id, static_cast<UINT>(value), TRUE);
}

bool TcDialog::SetControlEnabled(int id, bool enabled) {
    const HWND control = GetControl(id);
    if (!control) return false;
    // A control that is switched off can't keep the focus, or the keyboard would be lost.
    if (!enabled && GetFocus() == control) SendMessageA(window_, WM_NEXTDLGCTL, 0, FALSE);
    EnableWindow(control, enabled);
    return true;
}

bool TcDialog::SetControlShown(int id, int how) {
    const HWND control = GetControl(id);
    if (!control) return false;
    ShowWindow(control, how);
    return true;
}

bool TcDialog::IsButtonChecked(int id) const {
    return window_ && IsDlgButtonChecked(window_, id) == BST_CHECKED;
}

LRESULT TcDialog::SendCtrlMsg(int id, UINT message, WPARAM wParam, LPARAM lParam) const {
    const HWND control = GetControl(id);
    return control ? SendMessageA(control, message, wParam, lParam) : 0;
}

bool TcDialog::SetupAutoComplete(HWND control, bool addresses, bool files) {
    const u32 flags = AutoCompleteFlags(addresses, files);
    return flags != 0 && IsWindow(control) && SUCCEEDED(SHAutoComplete(control, flags));
}

bool TcDialog::SetSizeAndPosition(const RECT& place) {
    if (!window_ || place.right <= place.left || place.bottom <= place.top) return false;
    PixelRect wanted = ToPixels(place);
    const PixelSize size = AtLeast({wanted.Width(), wanted.Height()}, resizer_.Minimum());
    wanted.right = wanted.left + size.width;
    wanted.bottom = wanted.top + size.height;
    RECT asked = ToRect(wanted);
    if (!MonitorFromRect(&asked, MONITOR_DEFAULTTONULL)) {
        MONITORINFO nearest{};
        nearest.cbSize = sizeof nearest;
        if (GetMonitorInfoA(MonitorFromRect(&asked, MONITOR_DEFAULTTONEAREST), &nearest))
            wanted = MovedInto(wanted, ToPixels(nearest.rcWork));
    }
    return SetWindowPos(window_, nullptr, wanted.left, wanted.top, wanted.Width(), wanted.Height(),
                        SWP_NOZORDER | SWP_NOACTIVATE) != FALSE;
}

bool TcDialog::GetSizeAndPosition(RECT& place) const {
    if (!window_) return false;
    if (!IsIconic(window_) && !IsZoomed(window_)) return GetWindowRect(window_, &place) != FALSE;
    WINDOWPLACEMENT kept{};
    kept.length = sizeof kept;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (!GetWindowPlacement(window_, &kept) ||
        !GetMonitorInfoA(MonitorFromWindow(window_, MONITOR_DEFAULTTOPRIMARY), &monitor))
        return false;
    place = kept.rcNormalPosition;
    // Told from the corner of the work area; a tool window's alone from the corner of the screen.
    if (!(GetWindowLongPtrA(window_, GWL_EXSTYLE) & WS_EX_TOOLWINDOW))
        OffsetRect(&place, monitor.rcWork.left - monitor.rcMonitor.left,
                   monitor.rcWork.top - monitor.rcMonitor.top);
    return true;
}

}  // namespace vardel

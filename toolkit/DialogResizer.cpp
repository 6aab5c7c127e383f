#include "toolkit/DialogResizer.h"

#include <algorithm>

#include "toolkit/ResizeRules.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr UINT kMoveFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER;

}  // namespace

void DialogResizer::Begin(HWND dialog) {
    dialog_ = dialog;
    if (enabled_) ShowBorder();
}

void DialogResizer::End() {
    dialog_ = nullptr;
    enabled_ = false;
    minimum_ = {};
    followers_.clear();
}

void DialogResizer::Enable(bool enable) {
    enabled_ = enable;
    if (dialog_) ShowBorder();
}

// The client area keeps its size, so the window grows by what the border takes.
void DialogResizer::ShowBorder() const {
    const auto style = static_cast<DWORD>(GetWindowLongPtrA(dialog_, GWL_STYLE));
    const auto extended = static_cast<DWORD>(GetWindowLongPtrA(dialog_, GWL_EXSTYLE));
    const DWORD wantedStyle = enabled_ ? (style | WS_THICKFRAME) & ~static_cast<DWORD>(DS_MODALFRAME)
                                       : style & ~static_cast<DWORD>(WS_THICKFRAME);
    const DWORD wantedExtended = enabled_ ? extended & ~static_cast<DWORD>(WS_EX_DLGMODALFRAME) : extended;
    if (wantedStyle == style && wantedExtended == extended) return;
    RECT place{};
    GetClientRect(dialog_, &place);
    SetWindowLongPtrA(dialog_, GWL_STYLE, static_cast<LONG_PTR>(wantedStyle));
    SetWindowLongPtrA(dialog_, GWL_EXSTYLE, static_cast<LONG_PTR>(wantedExtended));
    AdjustWindowRectEx(&place, wantedStyle, GetMenu(dialog_) != nullptr, wantedExtended);
    SetWindowPos(dialog_, nullptr, 0, 0, place.right - place.left, place.bottom - place.top,
                 kMoveFlags | SWP_NOMOVE | SWP_FRAMECHANGED);
}

PixelSize DialogResizer::ClientSize() const {
    RECT client{};
    GetClientRect(dialog_, &client);
    return {static_cast<int>(client.right), static_cast<int>(client.bottom)};
}

bool DialogResizer::Add(int control, int flags) {
    const HWND window = dialog_ ? GetDlgItem(dialog_, control) : nullptr;
    RECT place{};
    if (!window || !GetWindowRect(window, &place)) return false;
    MapWindowPoints(nullptr, dialog_, reinterpret_cast<POINT*>(&place), 2);
    followers_.push_back({window, flags, ToPixels(place), ClientSize()});
    return true;
}

PixelSize DialogResizer::Minimum() const {
    return {TcGuiTools::Scaled(minimum_.width), TcGuiTools::Scaled(minimum_.height)};
}

void DialogResizer::OnSize() {
    if (!dialog_ || !enabled_ || followers_.empty() || IsIconic(dialog_)) return;
    const PixelSize client = ClientSize();
    if (MoveTogether(client)) return;
    for (const Follower& one : followers_) {
        const PixelRect place = ResizedControl(
            one.original, one.flags, {client.width - one.client.width, client.height - one.client.height});
        SetWindowPos(one.control, nullptr, place.left, place.top, place.Width(), place.Height(), kMoveFlags);
    }
}

// All controls in one step; false when the system has no memory for the list of them.
bool DialogResizer::MoveTogether(PixelSize client) const {
    HDWP moves = BeginDeferWindowPos(static_cast<int>(followers_.size()));
    for (const Follower& one : followers_) {
        if (!moves) return false;
        const PixelRect place = ResizedControl(
            one.original, one.flags, {client.width - one.client.width, client.height - one.client.height});
        moves = DeferWindowPos(moves, one.control, nullptr, place.left, place.top, place.Width(),
                               place.Height(), kMoveFlags);
    }
    return moves && EndDeferWindowPos(moves);
}

void DialogResizer::OnMinMaxInfo(MINMAXINFO& limits) const {
    const PixelSize minimum = Minimum();
    limits.ptMinTrackSize.x = std::max<LONG>(limits.ptMinTrackSize.x, minimum.width);
    limits.ptMinTrackSize.y = std::max<LONG>(limits.ptMinTrackSize.y, minimum.height);
}

}  // namespace vardel

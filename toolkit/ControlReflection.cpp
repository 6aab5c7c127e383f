#include "toolkit/ControlReflection.h"

#include <vector>

namespace vardel {

namespace {

struct BoundControl {
    HWND control;
    ControlReceiver* receiver;  // null where it was unbound beneath somebody else's procedure
    WNDPROC own;                // the control's procedure
};

std::vector<BoundControl>& BoundControls() {
    static std::vector<BoundControl> controls;
    return controls;
}

BoundControl* FindBound(HWND control) {
    for (BoundControl& one : BoundControls())
        if (one.control == control) return &one;
    return nullptr;
}

// Controls have procedures for wide or for 8-bit texts, and keep theirs.
WNDPROC SetProcedure(HWND control, WNDPROC procedure) {
    const auto value = reinterpret_cast<LONG_PTR>(procedure);
    return reinterpret_cast<WNDPROC>(IsWindowUnicode(control)
                                         ? SetWindowLongPtrW(control, GWLP_WNDPROC, value)
                                         : SetWindowLongPtrA(control, GWLP_WNDPROC, value));
}

WNDPROC GetProcedure(HWND control) {
    return reinterpret_cast<WNDPROC>(IsWindowUnicode(control) ? GetWindowLongPtrW(control, GWLP_WNDPROC)
                                                              : GetWindowLongPtrA(control, GWLP_WNDPROC));
}

LRESULT CallProcedure(WNDPROC own, HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    return IsWindowUnicode(control) ? CallWindowProcW(own, control, message, wParam, lParam)
                                    : CallWindowProcA(own, control, message, wParam, lParam);
}

void EraseBound(HWND control) {
    std::erase_if(BoundControls(), [control](const BoundControl& one) { return one.control == control; });
}

LRESULT CALLBACK BoundProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    const BoundControl* const found = FindBound(control);
    if (!found) return DefWindowProcA(control, message, wParam, lParam);
    ControlReceiver* const receiver = found->receiver;
    if (message != WM_NCDESTROY)
        return receiver ? receiver->OnControlMessage(message, wParam, lParam)
                        : CallProcedure(found->own, control, message, wParam, lParam);
    const WNDPROC own = found->own;
    EraseBound(control);
    if (receiver) receiver->OnControlGone();
    return CallProcedure(own, control, message, wParam, lParam);
}

}  // namespace

bool BindReceiver(HWND control, ControlReceiver* receiver) {
    if (BoundControl* const found = FindBound(control)) {
        found->receiver = receiver;
        return true;
    }
    const WNDPROC own = GetProcedure(control);
    if (!own) return false;
    BoundControls().push_back({control, receiver, own});
    if (SetProcedure(control, &BoundProcedure)) return true;
    EraseBound(control);
    return false;
}

void UnbindReceiver(HWND control, const ControlReceiver* receiver) {
    BoundControl* const found = FindBound(control);
    if (!found || found->receiver != receiver) return;
    found->receiver = nullptr;
    // Beneath another procedure ours has to stay, and passes everything on.
    if (GetProcedure(control) == &BoundProcedure && SetProcedure(control, found->own)) EraseBound(control);
}

LRESULT CallControl(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    const BoundControl* const found = FindBound(control);
    return found ? CallProcedure(found->own, control, message, wParam, lParam) : 0;
}

bool IsReceiverFirst(HWND control) { return FindBound(control) && GetProcedure(control) == &BoundProcedure; }

bool ReflectNotify(HWND control, LPARAM data, LRESULT& result) {
    const BoundControl* const found = FindBound(control);
    return found && found->receiver && found->receiver->OnReflectedNotify(data, result);
}

}  // namespace vardel

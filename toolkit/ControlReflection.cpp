#include "toolkit/ControlReflection.h"

namespace vardel {

namespace {

constexpr char kReceiverProperty[] = "Vardel.NotifyReceiver";

NotifyReceiver* ReceiverOf(HWND control) {
    return reinterpret_cast<NotifyReceiver*>(GetPropA(control, kReceiverProperty));
}

}  // namespace

bool BindNotifyReceiver(HWND control, NotifyReceiver* receiver) {
    return SetPropA(control, kReceiverProperty, reinterpret_cast<HANDLE>(receiver)) != FALSE;
}

void UnbindNotifyReceiver(HWND control, NotifyReceiver* receiver) {
    if (control && ReceiverOf(control) == receiver) RemovePropA(control, kReceiverProperty);
}

bool ReflectNotify(HWND control, LPARAM data, LRESULT& result) {
    NotifyReceiver* const receiver = control ? ReceiverOf(control) : nullptr;
    return receiver && receiver->OnReflectedNotify(data, result);
}

}  // namespace vardel

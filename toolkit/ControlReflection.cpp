#include "toolkit/ControlReflection.h"

#include <vector>

namespace vardel {

namespace {

// A table of this process: each row that a list gets is notified, and a property of a window would be asked
// from the system every time.
struct BoundReceiver {
    HWND control;
    NotifyReceiver* receiver;
};

std::vector<BoundReceiver>& Receivers() {
    static std::vector<BoundReceiver> receivers;
    return receivers;
}

}  // namespace

void BindNotifyReceiver(HWND control, NotifyReceiver* receiver) {
    std::erase_if(Receivers(), [control](const BoundReceiver& one) { return one.control == control; });
    Receivers().push_back({control, receiver});
}

void UnbindNotifyReceiver(HWND control, NotifyReceiver* receiver) {
    std::erase_if(Receivers(), [=](const BoundReceiver& one) {
        return one.control == control && one.receiver == receiver;
    });
}

bool ReflectNotify(HWND control, LPARAM data, LRESULT& result) {
    for (const BoundReceiver& one : Receivers())
        if (one.control == control) return one.receiver->OnReflectedNotify(data, result);
    return false;
}

}  // namespace vardel

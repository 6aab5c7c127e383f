// Notifications of a control, offered first to the toolkit's object that serves the control.
//
// The object is unbound before it or its control goes. Main thread.
#pragma once

#include "platform/WindowsApi.h"

namespace vardel {

class NotifyReceiver {
  public:
    // `data` is the notification's header. True when handled; `result` is then what the control gets.
    virtual bool OnReflectedNotify(LPARAM data, LRESULT& result) = 0;

  protected:
    ~NotifyReceiver() = default;
};

// A control has one receiver, the last that was bound.
void BindNotifyReceiver(HWND control, NotifyReceiver* receiver);
// Nothing where another receiver is bound by now.
void UnbindNotifyReceiver(HWND control, NotifyReceiver* receiver);

// What a dialog calls with each WM_NOTIFY.
bool ReflectNotify(HWND control, LPARAM data, LRESULT& result);

}  // namespace vardel

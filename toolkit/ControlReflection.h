// The toolkit's object behind a control: it sees each message of the control first, and its dialog offers it
// each notification of the control.
//
// The common controls' own subclassing looks a window's property up at each message, which on some systems is
// a call to another process; a list of many rows is filled by many messages. Here it is a look into a table.
// Main thread.
#pragma once

#include "platform/WindowsApi.h"

namespace vardel {

class ControlReceiver {
  public:
    // `data` is the notification's header. True when handled; `result` is then what the control gets.
    virtual bool OnReflectedNotify(LPARAM data, LRESULT& result) = 0;
    // Gives the message's result, by CallControl for what it leaves to the control.
    virtual LRESULT OnControlMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // The control is no more; nothing is bound to it by then.
    virtual void OnControlGone() = 0;

  protected:
    ~ControlReceiver() = default;
};

// A control has one receiver, the last that was bound. False, and nothing bound, when the system refuses.
bool BindReceiver(HWND control, ControlReceiver* receiver);
// Nothing where another receiver is bound by now.
void UnbindReceiver(HWND control, const ControlReceiver* receiver);

// What the control itself makes of a message.
LRESULT CallControl(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

// True while a message that is sent to the control comes to its receiver first: then one that the receiver would only
// pass on can be given to the control directly.
bool IsReceiverFirst(HWND control);

// What a dialog calls with each WM_NOTIFY.
bool ReflectNotify(HWND control, LPARAM data, LRESULT& result);

}  // namespace vardel

#include "platform/MessageLoop.h"

#include "platform/WindowsApi.h"

namespace vardel {

bool RunSystemMessageLoop() {
    MSG message;
    for (;;) {
        const BOOL result = GetMessageA(&message, nullptr, 0, 0);
        if (result <= 0) return result == 0;  // -1 is a failure
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

}  // namespace vardel

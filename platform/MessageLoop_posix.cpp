#include "platform/MessageLoop.h"

namespace vardel {

bool RunSystemMessageLoop() {
    return false;
}

}  // namespace vardel

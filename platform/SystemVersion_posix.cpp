#include "platform/SystemVersion.h"

namespace vardel {

bool QuerySystemVersion(SystemVersion&) {
    return false;
}

u32 QueryControlsVersion() {
    return 0;
}

}  // namespace vardel

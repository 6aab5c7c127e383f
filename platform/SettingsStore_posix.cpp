#include "platform/FileSettingsStore.h"

namespace vardel {

SettingsStore& SystemSettingsStore() {
    // Never destroyed: threads may still read settings while the process ends.
    static SettingsStore* store = new FileSettingsStore(UserSettingsFiles());
    return *store;
}

}  // namespace vardel

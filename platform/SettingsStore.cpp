#include "platform/SettingsStore.h"

#include <atomic>

namespace vardel {

namespace {

std::atomic<SettingsStore*> installed{nullptr};

}  // namespace

SettingsStore& UserSettingsStore() {
    SettingsStore* store = installed.load();
    return store ? *store : SystemSettingsStore();
}

ScopedSettingsStore::ScopedSettingsStore(SettingsStore& store) : before_(installed.exchange(&store)) {}

ScopedSettingsStore::~ScopedSettingsStore() {
    installed.store(before_);
}

}  // namespace vardel

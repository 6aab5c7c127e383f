#include "platform/TreeSettingsStore.h"

#include <cstring>

namespace vardel {

namespace {

constexpr const char* kRoot = "HKEY_CURRENT_USER\\Software";

// What a StoreKey of this store points at.
struct OpenKey {
    RegistryTree::KeyPointer key;
};

OpenKey* Opened(StoreKey key) {
    return reinterpret_cast<OpenKey*>(key);
}
StoreKey HandOut(RegistryTree::KeyPointer key) {
    return reinterpret_cast<StoreKey>(new OpenKey{std::move(key)});
}
bool IsUsable(StoreKey key) {
    return key && !Opened(key)->key->deleted;
}

}  // namespace

std::string TreeSettingsStore::FullPath(StoreKey parent, const char* path) {
    std::string_view below(path);
    while (below.ends_with('\\')) below.remove_suffix(1);
    if (parent && !IsUsable(parent)) return {};
    const std::string start = parent ? Opened(parent)->key->path : kRoot;
    if (below.empty()) return start;
    return RegistryTree::IsValidPath(below) ? start + "\\" + std::string(below) : std::string();
}

StoreKey TreeSettingsStore::Open(StoreKey parent, const char* path) {
    std::lock_guard hold(guard_);
    Load();
    const std::string full = FullPath(parent, path);
    RegistryTree::KeyPointer key = full.empty() ? nullptr : tree_.Find(full);
    return key ? HandOut(std::move(key)) : nullptr;
}

StoreKey TreeSettingsStore::Create(StoreKey parent, const char* path) {
    std::lock_guard hold(guard_);
    Load();
    const std::string full = FullPath(parent, path);
    if (full.empty()) return nullptr;
    RegistryTree::KeyPointer key = tree_.Find(full);
    if (!key) {
        // The keys above stay when this one goes again.
        for (std::size_t end = full.find('\\', std::strlen(kRoot) + 1); end != std::string::npos;
             end = full.find('\\', end + 1))
            tree_.Make(std::string_view(full).substr(0, end));
        key = tree_.Make(full);
        Changed();
    }
    return HandOut(std::move(key));
}

void TreeSettingsStore::Close(StoreKey key) {
    std::lock_guard hold(guard_);
    delete Opened(key);
}

bool TreeSettingsStore::Delete(const char* path) {
    std::lock_guard hold(guard_);
    Load();
    const std::string full = *path ? FullPath(nullptr, path) : std::string();
    if (full.empty() || tree_.HasSubkeys(full) || !tree_.Find(full)) return false;
    const std::string above = full.substr(0, full.rfind('\\'));
    if (above.size() > std::strlen(kRoot)) tree_.Make(above);
    tree_.Erase(full);
    Changed();
    return true;
}

StoreResult TreeSettingsStore::Query(StoreKey key, const char* name, ValueType& type, void* data, u32& size) {
    std::lock_guard hold(guard_);
    Load();
    if (!IsUsable(key)) return StoreResult::InvalidHandle;
    const RegistryValue* value = Opened(key)->key->Find(name ? name : "");
    if (!value) return StoreResult::NotFound;
    const u32 room = size;
    type = value->type;
    size = static_cast<u32>(value->data.size());
    if (!data) return StoreResult::Ok;
    if (size > room) return StoreResult::MoreData;
    std::memcpy(data, value->data.data(), size);
    return StoreResult::Ok;
}

StoreResult TreeSettingsStore::Set(StoreKey key, const char* name, ValueType type, const void* data,
                                   u32 size) {
    std::lock_guard hold(guard_);
    Load();
    if (!IsUsable(key)) return StoreResult::InvalidHandle;
    Opened(key)->key->Set(name ? name : "", type,
                          size ? std::string(static_cast<const char*>(data), size) : "");
    Changed();
    return StoreResult::Ok;
}

bool TreeSettingsStore::AddAutostart(const char* name) {
    std::lock_guard hold(guard_);
    autostarts_.insert(name);
    return true;
}

bool TreeSettingsStore::RemoveAutostart(const char* name) {
    std::lock_guard hold(guard_);
    autostarts_.erase(name);
    return true;
}

bool TreeSettingsStore::Changed() {
    unsaved_ = true;
    if (batches_ == 0 && Save()) unsaved_ = false;
    return !unsaved_;
}

void TreeSettingsStore::BeginBatch() {
    std::lock_guard hold(guard_);
    ++batches_;
}

bool TreeSettingsStore::EndBatch() {
    std::lock_guard hold(guard_);
    if (--batches_ == 0 && unsaved_) return Changed();
    return !unsaved_;
}

RegistryTree TreeSettingsStore::Tree() {
    std::lock_guard hold(guard_);
    Load();
    RegistryTree copy;
    for (const auto& [folded, key] : tree_.Keys()) {
        const RegistryTree::KeyPointer target = copy.Make(key->path);
        for (const RegistryValue* value : key->Values()) target->Set(value->name, value->type, value->data);
    }
    return copy;
}

std::set<std::string> TreeSettingsStore::Autostarts() {
    std::lock_guard hold(guard_);
    return autostarts_;
}

}  // namespace vardel

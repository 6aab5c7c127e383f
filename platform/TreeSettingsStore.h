// TreeSettingsStore: a settings store in memory, with the registry's own results; base of the store in a
// file.
//
// Any thread may call any operation; one guard covers all. The root is "HKEY_CURRENT_USER\Software" of its
// tree.
#pragma once

#include <mutex>
#include <set>
#include <string>

#include "platform/RegistryTree.h"
#include "platform/SettingsStore.h"

namespace vardel {

class TreeSettingsStore : public SettingsStore {
  public:
    TreeSettingsStore() = default;
    explicit TreeSettingsStore(RegistryTree tree) : tree_(std::move(tree)) {}

    StoreKey Open(StoreKey parent, const char* path) override;
    StoreKey Create(StoreKey parent, const char* path) override;
    void Close(StoreKey key) override;
    bool Delete(const char* path) override;
    StoreResult Query(StoreKey key, const char* name, ValueType& type, void* data, u32& size) override;
    StoreResult Set(StoreKey key, const char* name, ValueType type, const void* data, u32 size) override;
    bool AddAutostart(const char* name) override;
    bool RemoveAutostart(const char* name) override;
    void BeginBatch() override;
    bool EndBatch() override;

    // A copy of all that is stored.
    RegistryTree Tree();
    // The names under which the program is entered for automatic start.
    std::set<std::string> Autostarts();

  protected:
    // Both are called with the guard held. Load comes before each use of the tree.
    virtual void Load() {}
    // Called after a change, or after all changes of a batch. False when it could not be saved; it is then
    // called again after the next one.
    virtual bool Save() { return true; }

    RegistryTree tree_;

  private:
    // The full path, or empty when there is none such.
    static std::string FullPath(StoreKey parent, const char* path);
    bool Changed();

    std::mutex guard_;
    int batches_ = 0;
    bool unsaved_ = false;
    std::set<std::string> autostarts_;
};

}  // namespace vardel

// A settings store in memory that keeps a record of what was asked of it, and fails where a test says so.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/TreeSettingsStore.h"

namespace vardel::test {

class RecordingStore : public SettingsStore {
  public:
    // Calls read "open PATH", "create PATH", "delete PATH", "query NAME", "set NAME", "autostart NAME" and
    // "no autostart NAME"; paths are those below the root, whatever key they were given with.
    std::vector<std::string> calls;
    std::function<bool(const std::string& call)> fails = [](const std::string&) { return false; };
    int batchesEnded = 0;
    int openBatches = 0;
    TreeSettingsStore tree;

    StoreKey Open(StoreKey parent, const char* path) override {
        const std::string full = Full(parent, path);
        return Record("open " + full) ? HandOut(tree.Open(parent, path), full) : nullptr;
    }
    StoreKey Create(StoreKey parent, const char* path) override {
        const std::string full = Full(parent, path);
        return Record("create " + full) ? HandOut(tree.Create(parent, path), full) : nullptr;
    }
    void Close(StoreKey key) override {
        paths_.erase(key);
        tree.Close(key);
    }
    bool Delete(const char* path) override {
        return Record(std::string("delete ") + path) && tree.Delete(path);
    }
    StoreResult Query(StoreKey key, const char* name, ValueType& type, void* data, u32& size) override {
        if (!Record(std::string("query ") + name)) return StoreResult::Failed;
        return tree.Query(key, name, type, data, size);
    }
    StoreResult Set(StoreKey key, const char* name, ValueType type, const void* data, u32 size) override {
        if (!Record(std::string("set ") + name)) return StoreResult::Failed;
        return tree.Set(key, name, type, data, size);
    }
    bool AddAutostart(const char* name) override {
        return Record(std::string("autostart ") + name) && tree.AddAutostart(name);
    }
    bool RemoveAutostart(const char* name) override {
        return Record(std::string("no autostart ") + name) && tree.RemoveAutostart(name);
    }
    void BeginBatch() override { ++openBatches; }
    bool EndBatch() override {
        --openBatches;
        ++batchesEnded;
        return true;
    }

    // Keys that were handed out and not closed.
    std::size_t OpenKeys() const { return paths_.size(); }

    // ---- what tests put in and look at ----

    void Put(const std::string& path, const std::string& name, ValueType type, const void* data,
             std::size_t size) {
        const StoreKey key = tree.Create(nullptr, path.c_str());
        tree.Set(key, name.c_str(), type, data, static_cast<u32>(size));
        tree.Close(key);
    }
    void PutDword(const std::string& path, const std::string& name, i64 value) {
        const u32 number = static_cast<u32>(value);
        Put(path, name, ValueType::Dword, &number, sizeof number);
    }
    void PutText(const std::string& path, const std::string& name, const std::string& text) {
        Put(path, name, ValueType::Text, text.c_str(), text.size() + 1);
    }
    bool HasKey(const std::string& path) { return Key(path) != nullptr; }
    // Null when there is no such value.
    const RegistryValue* Value(const std::string& path, const std::string& name) {
        const RegistryTree::KeyPointer key = Key(path);
        return key ? key->Find(name) : nullptr;
    }
    std::vector<std::string> ValueNames(const std::string& path) {
        std::vector<std::string> names;
        if (const RegistryTree::KeyPointer key = Key(path))
            for (const RegistryValue* value : key->Values()) names.push_back(value->name);
        return names;
    }

  private:
    bool Record(const std::string& call) {
        calls.push_back(call);
        return !fails(call);
    }
    std::string Full(StoreKey parent, const char* path) {
        return parent ? paths_.at(parent) + "\\" + path : path;
    }
    StoreKey HandOut(StoreKey key, const std::string& path) {
        if (key) paths_[key] = path;
        return key;
    }
    RegistryTree::KeyPointer Key(const std::string& path) {
        snapshot_ = tree.Tree();
        const std::string full = "HKEY_CURRENT_USER\\Software\\" + path;
        return snapshot_.Find(full);
    }

    std::map<StoreKey, std::string> paths_;
    RegistryTree snapshot_;  // keeps what Value gave
};

}  // namespace vardel::test

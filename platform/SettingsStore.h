// The settings store: a tree of named values for the running user, as the Windows registry has it below
// HKEY_CURRENT_USER\Software.
//
// On Windows it is that registry. On Linux it is a registry text file (see FileSettingsStore.h). Key paths
// are separated by '\'; key and value names don't tell upper from lower case. Values are typed bytes; texts
// are stored with their NUL. All operations may be called from any thread. A key that was handed out is
// closed once.
#pragma once

#include "platform/Types.h"

namespace vardel {

struct StoreKeyObject;
using StoreKey = StoreKeyObject*;

// The numbers are the registry's own; other types than these may be stored and come back as they are.
enum class ValueType : u32 {
    None = 0,
    Text = 1,
    ExpandText = 2,
    Binary = 3,
    Dword = 4,
    MultiText = 7,
    Qword = 11
};

// The numbers are the system's error codes; a failure that has none of these is Failed.
enum class StoreResult : u32 { Ok = 0, NotFound = 2, InvalidHandle = 6, MoreData = 234, Failed = 31 };

class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    // `parent` null stands for the root. For reading and writing. Null when the key doesn't exist.
    virtual StoreKey Open(StoreKey parent, const char* path) = 0;
    // Opens the key or makes it, with what is missing above it. Null on failure.
    virtual StoreKey Create(StoreKey parent, const char* path) = 0;
    virtual void Close(StoreKey key) = 0;
    // Deletes the key at `path` below the root, with its values. False, and nothing done, when it doesn't
    // exist or has keys below it. Handles to it stay to be closed; everything else fails on them.
    virtual bool Delete(const char* path) = 0;

    // Copies a value of any type to `data`. `size` is in: the room in bytes, out: the value's length.
    // `data` null asks for type and length alone. MoreData when the room is too small: `type` and `size` are
    // set, what `data` then holds is open. On any other failure `type` and `size` are open.
    virtual StoreResult Query(StoreKey key, const char* name, ValueType& type, void* data, u32& size) = 0;
    virtual StoreResult Set(StoreKey key, const char* name, ValueType type, const void* data, u32 size) = 0;

    // Enters the running program for automatic start at the user's logon under `name`, or takes the entry
    // out. False on failure; taking out what isn't there is none.
    virtual bool AddAutostart(const char* name) = 0;
    virtual bool RemoveAutostart(const char* name) = 0;

    // Changes between the two may reach the disk together, at the last EndBatch. They nest. EndBatch gives
    // false when something could not be written yet; it stays in memory and goes with the next change.
    virtual void BeginBatch() {}
    virtual bool EndBatch() { return true; }
};

// Changes in its scope reach the disk together.
class StoreBatch {
  public:
    explicit StoreBatch(SettingsStore& store) : store_(store) { store_.BeginBatch(); }
    ~StoreBatch() { store_.EndBatch(); }
    StoreBatch(const StoreBatch&) = delete;
    StoreBatch& operator=(const StoreBatch&) = delete;

  private:
    SettingsStore& store_;
};

// The running system's store.
SettingsStore& SystemSettingsStore();

// The store that settings are read from and written to: the system's, unless another one is installed.
SettingsStore& UserSettingsStore();

// Installs another store for its lifetime, e.g. one read from a file. Such scopes nest; they are not for use
// while other threads read or write settings.
class ScopedSettingsStore {
  public:
    explicit ScopedSettingsStore(SettingsStore& store);
    ~ScopedSettingsStore();
    ScopedSettingsStore(const ScopedSettingsStore&) = delete;
    ScopedSettingsStore& operator=(const ScopedSettingsStore&) = delete;

  private:
    SettingsStore* const before_;
};

}  // namespace vardel

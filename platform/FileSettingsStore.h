// FileSettingsStore: the settings store of systems without a registry, in a registry text file.
//
// The file is read at the first use and from then on only written, as a whole: to a new file beside it,
// flushed and renamed over it, so that at any moment the old or the new content is there. What can't be
// written stays in memory and goes with the next change; the failure is told once on standard error. A file
// that can't be read or understood in full is told there too, what could be understood is used, and before
// the first write the original is kept as "<file>.damaged" (".damaged.2" and so on where that exists):
// nobody's lists get lost.
//
// Changes of the file by others while the program runs are not seen. Any thread may call any operation.
#pragma once

#include <string>

#include "platform/TreeSettingsStore.h"

namespace vardel {

struct SettingsFiles {
    std::string settings;         // full path of the registry text file; empty: keep in memory alone
    std::string autostartFolder;  // for desktop entries
    std::string program;          // full path of the running program
};

// The running user's: below $XDG_CONFIG_HOME where that is an absolute path, else below ~/.config.
SettingsFiles UserSettingsFiles();

class FileSettingsStore : public TreeSettingsStore {
  public:
    explicit FileSettingsStore(SettingsFiles files) : files_(std::move(files)) {}

    // A desktop entry as the XDG autostart rules have it.
    bool AddAutostart(const char* name) override;
    bool RemoveAutostart(const char* name) override;

  protected:
    void Load() override;
    bool Save() override;

  private:
    bool KeepAside(const std::string& original);
    std::string AutostartFile(const char* name) const;

    const SettingsFiles files_;
    bool loaded_ = false;
    bool damaged_ = false;  // the file on disk holds more than what was understood
    bool failed_ = false;   // the last write failed, and that was told
};

}  // namespace vardel

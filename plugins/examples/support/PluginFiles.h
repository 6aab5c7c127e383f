// What the example plugins keep beside themselves: a file of settings, and whatever else they write.
//
// The files bear the name of the module, with another ending: wake_on_lan.so reads wake_on_lan.ini. Each
// plugin uses its files on one thread at a time.
#pragma once

#include <map>
#include <string>

#include "plugins/plugin_interface.h"

namespace vardel::examples {

// The full path of a loaded module; empty where the system doesn't tell.
std::string ModulePath(void* module);

// The path of the plugin's module with `ending` (".ini") in place of its own.
std::string BesideModule(const PluginInfo& info, const char* ending);

// Lines "name=value"; blanks around both are dropped, and lines that start with '#' or ';' say nothing.
class IniFile {
  public:
    // A file that isn't there gives no values.
    explicit IniFile(const std::string& path);

    std::string Text(const std::string& name, const std::string& otherwise) const;
    // What is no number from `least` to `most` gives `otherwise`.
    long Number(const std::string& name, long least, long most, long otherwise) const;

    void Set(const std::string& name, const std::string& value) { values_[name] = value; }
    // Writes all values; false when that failed.
    bool Save() const;

  private:
    std::string path_;
    std::map<std::string, std::string> values_;
};

}  // namespace vardel::examples

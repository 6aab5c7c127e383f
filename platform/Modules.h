// Modules that are loaded while the program runs (plugins, language modules): finding their files, loading
// them, their entry points.
//
// A module is named by its full path, always, so that nothing of that name in another folder can take its
// place. All operations may be called from any thread; a module is freed once by whoever loaded it, and no
// call of it may be under way then.
#pragma once

#include <string>
#include <vector>

#include "platform/StringResources.h"

namespace vardel {

// One hit of a search in a folder.
struct FolderEntry {
    std::string name;    // without the folder
    bool isPlainFolder;  // a folder and nothing more: not hidden, no link to a folder

    bool operator==(const FolderEntry&) const = default;
};

class Modules {
  public:
    virtual ~Modules() = default;

    // The entries of `folder` whose name ends in `ending` (".dll"), files and folders, in the order in which
    // the system gives them (Linux: by name). Empty also when there is no such folder. `folder` may end in a
    // separator.
    virtual std::vector<FolderEntry> List(const std::string& folder, const char* ending) = 0;

    // Null when the path isn't a full one, or the file isn't there or isn't a module of this program's kind.
    // The system shows no message of its own.
    virtual ModuleHandle Load(const char* path) = 0;

    // Null when the module has no such entry point, or for a null module.
    virtual void* Find(ModuleHandle module, const char* entryPoint) = 0;

    virtual void Free(ModuleHandle module) = 0;

    // What the files of modules end in: ".dll" on Windows, ".so" on Linux.
    virtual const char* Ending() const = 0;
};

Modules& SystemModules();

}  // namespace vardel

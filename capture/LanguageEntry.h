// LanguageEntry: one language of the user interface, and the table of all that were found at the start.
//
// The table is filled on the main thread before any thread exists and belongs to VardelData; after that only the menu
// numbers change. The modules stay loaded until the application object ends.
#pragma once

#include "foundation/Shared.h"
#include "foundation/SharedMap.h"
#include "foundation/TcString.h"
#include "platform/StringResources.h"

namespace vardel {

struct LanguageEntry {
    u32 iconId = 0;                 // the flag's icon inside `module`
    TcString file;                  // full path of the module; empty for the built-in language
    TcString name;                  // as the menu shows it and the setting keeps it; the table's key
    ModuleHandle module = nullptr;  // where its texts lie; the program's own for the built-in language
    Shared<u32> menuId = 0;         // of its entry in the tray's language menu
    u32 languageId = 0;             // told to plugins
};

using LanguageTable = SharedMap<LanguageEntry, Ownership::OwnsValues>;

}  // namespace vardel

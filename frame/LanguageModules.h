// The languages of the user interface: finding and loading them, offering them, taking another one.
//
// The program's own file holds the English texts; each "*.lang" in the folder "Language" beside it is a module of the
// same texts, dialogs and menus in another language, with one entry point that names it:
//
//     u32 GetModuleLanguageInfo(char* name, int size, u32* languageId)
//
// It copies the language's name, at most `size` bytes, stores its number and gives the resource id of its flag's icon; 0
// or an empty name means that the module isn't to be used. Linux, which has no resources in modules, asks the module
// for its texts (see StringResources). Main thread.
#pragma once

#include <vector>

#include "capture/VardelData.h"

namespace vardel {

// The tray menu's numbers of languages.
constexpr u32 kFirstLanguageCommand = 22000;
constexpr u32 kLastLanguageCommand = 22499;

// The built-in language.
constexpr u32 kEnglishLocale = 1033;
constexpr u32 kEnglishIcon = 146;
constexpr u32 kEnglishId = 9;

// Fills data.languages and gives the module of the language that the setting names; null when there is none, and the
// program's own texts are then the ones to use. data.languageId takes its number, 0 when there is none. `program` is
// the program's own module.
ModuleHandle LoadLanguages(VardelData& data, ModuleHandle program);

// One entry of the language menu, in the menu's order.
struct LanguageMenuEntry {
    const LanguageEntry* language;
    bool isCurrent;
};

// Numbers the languages for the menu. Empty when there is no choice: with fewer than two.
std::vector<LanguageMenuEntry> OfferLanguages(VardelData& data, ModuleHandle current);

// The language that was offered under that number; null when there is none.
const LanguageEntry* FindOfferedLanguage(const VardelData& data, u32 menuId);

// Takes a language: for the settings, stored at once, and for the plugins. The frame's own texts are the frame's to
// change; those of the worker threads stay as they were at the start, which is wanted.
void TakeLanguage(VardelData& data, const LanguageEntry& language);

}  // namespace vardel

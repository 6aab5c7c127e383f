#include "frame/LanguageModules.h"

#include <memory>
#include <string>

#include "capture/Vardel.h"

namespace vardel {

namespace {

constexpr char kFolder[] = "Language";
constexpr char kEnding[] = ".lang";
constexpr char kEntryPoint[] = "GetModuleLanguageInfo";
constexpr int kNameSize = 256;

extern "C" using GetModuleLanguageInfo = u32(char* name, int size, u32* languageId);

struct Choice {
    ModuleHandle module = nullptr;
    u32 languageId = 0;
};

// The name is the key: of two equal ones the first stays in the table, though the later one may become the choice.
void Enter(VardelData& data, std::unique_ptr<LanguageEntry> entry, Choice& choice) {
    const TcString name = entry->name;
    if (name == data.settings.Language) choice = {entry->module, entry->languageId};
    data.languages.Insert(name, std::move(entry));
}

std::unique_ptr<LanguageEntry> BuiltInLanguage(ModuleHandle program) {
    auto entry = std::make_unique<LanguageEntry>();
    entry->iconId = kEnglishIcon;
    entry->name = NativeLanguageName(kEnglishLocale).c_str();
    entry->module = program;
    entry->languageId = kEnglishId;
    return entry;
}

// The program's folder with "Language" in it; empty where the program's path isn't known.
std::string LanguageFolder(Folders& folders) {
    const std::string program = folders.ProgramPath();
    const std::size_t separator = program.rfind(folders.Separator());
    if (separator == std::string::npos) return {};
    return program.substr(0, separator + 1) + kFolder;
}

// Null where the module isn't one of ours. A module stays loaded also then. `languageId` keeps its value from module to
// module: one that stores nothing inherits the number of the one before, which is wanted.
std::unique_ptr<LanguageEntry> LoadLanguage(Modules& modules, const std::string& path, u32& languageId) {
    const ModuleHandle module = modules.Load(path.c_str());
    if (!module) return nullptr;
    const auto info = reinterpret_cast<GetModuleLanguageInfo*>(modules.Find(module, kEntryPoint));
    if (!info) return nullptr;
    char name[kNameSize + 1] = "";
    const u32 icon = info(name, kNameSize, &languageId);
    name[kNameSize] = 0;  // a name of the full size has no terminator
    if (icon == 0 || !name[0]) return nullptr;
    auto entry = std::make_unique<LanguageEntry>();
    entry->iconId = icon;
    entry->file = path.c_str();
    entry->name = name;
    entry->module = module;
    entry->languageId = languageId;
    return entry;
}

}  // namespace

ModuleHandle LoadLanguages(VardelData& data, ModuleHandle program) {
    Choice choice;
    Enter(data, BuiltInLanguage(program), choice);
    const std::string folder = LanguageFolder(data.services.folders);
    u32 languageId = 0;
    if (!folder.empty())
        for (const FolderEntry& file : data.services.modules.List(folder, kEnding)) {
            const std::string path = folder + data.services.folders.Separator() + file.name;
            if (auto entry = LoadLanguage(data.services.modules, path, languageId))
                Enter(data, std::move(entry), choice);
        }
    data.languageId = choice.languageId;
    return choice.module;
}

ModuleHandle Vardel::LoadLanguages() { return vardel::LoadLanguages(data, GetInstance()); }

std::vector<LanguageMenuEntry> OfferLanguages(VardelData& data, ModuleHandle current) {
    std::vector<LanguageMenuEntry> offered;
    if (data.languages.Count() < 2) return offered;
    data.languages.ForEach([&](const TcString&, LanguageEntry* language) {
        language->menuId = kFirstLanguageCommand + static_cast<u32>(offered.size());
        offered.push_back({language, language->module == current});
    });
    return offered;
}

const LanguageEntry* FindOfferedLanguage(const VardelData& data, u32 menuId) {
    if (menuId < kFirstLanguageCommand || menuId > kLastLanguageCommand) return nullptr;
    const LanguageEntry* found = nullptr;
    data.languages.ForEach([&](const TcString&, const LanguageEntry* language) {
        if (language->menuId == menuId) found = language;
        return !found;
    });
    return found;
}

void TakeLanguage(VardelData& data, const LanguageEntry& language) {
    data.settings.Language = language.name;
    data.settings.WriteLanguage();
    data.languageId = language.languageId;
    data.plugins.SetPluginLanguage(language.languageId);
}

}  // namespace vardel

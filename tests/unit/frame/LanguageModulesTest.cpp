#include "frame/LanguageModules.h"

#include <gtest/gtest.h>

#include <cstring>

#include "capture/Vardel.h"
#include "platform/SettingsStore.h"
#include "platform/TreeSettingsStore.h"
#include "resources/ResourceIds.h"
#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/TestModules.h"
#include "tests/unit/support/NoFrame.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

extern "C" {

u32 GermanInfo(char* name, int size, u32* languageId) {
    EXPECT_EQ(size, 256);
    EXPECT_EQ(*languageId, 0u);  // where it begins
    std::strcpy(name, "Deutsch");
    *languageId = 7;
    return 200;
}
u32 FrenchInfo(char* name, int, u32* languageId) {
    std::strcpy(name, "Fran\xe7" "ais");
    *languageId = 12;
    return 201;
}
u32 SecondGermanInfo(char* name, int, u32* languageId) {
    std::strcpy(name, "Deutsch");
    *languageId = 77;
    return 202;
}
u32 NumberlessInfo(char* name, int, u32*) {
    std::strcpy(name, "Klingon");
    return 203;
}
u32 IconlessInfo(char* name, int, u32* languageId) {
    std::strcpy(name, "Iconless");
    *languageId = 5;
    return 0;
}
u32 NamelessInfo(char*, int, u32*) { return 204; }
u32 EndlessInfo(char* name, int size, u32*) {
    std::memset(name, 'x', static_cast<std::size_t>(size));
    return 205;
}
}

using Info = u32(char*, int, u32*);
const auto kProgram = reinterpret_cast<ModuleHandle>(0x1000);

class LanguageModulesTest : public testing::Test {
  protected:
    LanguageModulesTest() {
        system.folders.programPath = "/opt/watch/vardelwatch";
        data.settings.Language = "";
    }
    // A file in the language folder; without `info` it has no entry point.
    void Installed(const std::string& file, Info* info = nullptr) {
        system.modules.folders["/opt/watch/Language"].push_back({file, false});
        const std::string path = "/opt/watch/Language/" + file;
        system.modules.modules.insert(path);
        if (info) system.modules.entryPoints[path + "!GetModuleLanguageInfo"] = reinterpret_cast<void*>(info);
    }
    ModuleHandle Load(const char* wanted = "") {
        data.settings.Language = wanted;
        return LoadLanguages(data, kProgram);
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        data.languages.ForEach([&](const TcString& key, const LanguageEntry* entry) {
            EXPECT_EQ(key, entry->name);
            names.push_back(entry->name.GetContent());
        });
        return names;
    }
    const LanguageEntry& Language(const char* name) { return *data.languages.FindValue(name); }
    std::string FileOf(ModuleHandle module) { return system.modules.PathOf(module); }
    using NamesList = std::vector<std::string>;

    test::TestServices system;
    TreeSettingsStore store;
    ScopedSettingsStore installed{store};
    VardelData data{system.services};
};

// ---- loading ----

TEST_F(LanguageModulesTest, TheProgramsOwnLanguageIsEnglish) {
    EXPECT_EQ(Load(), nullptr);
    EXPECT_EQ(Names(), NamesList{"English"});
    const LanguageEntry& english = Language("English");
    EXPECT_EQ(english.iconId, 146u);
    EXPECT_EQ(english.languageId, 9u);
    EXPECT_EQ(english.module, kProgram);
    EXPECT_TRUE(english.file.IsEmpty());
}

TEST_F(LanguageModulesTest, AnEmptySettingChoosesNothing) {
    EXPECT_EQ(Load(""), nullptr);
    EXPECT_EQ(data.languageId, 0u);
}

TEST_F(LanguageModulesTest, EnglishChosenIsTheProgramItself) {
    EXPECT_EQ(Load("English"), kProgram);
    EXPECT_EQ(data.languageId, 9u);
}

TEST_F(LanguageModulesTest, AModuleIsListedWithAllThatItSays) {
    Installed("german.lang", &GermanInfo);
    EXPECT_EQ(Load(), nullptr);
    const LanguageEntry& german = Language("Deutsch");
    EXPECT_EQ(german.iconId, 200u);
    EXPECT_EQ(german.languageId, 7u);
    EXPECT_EQ(german.file, "/opt/watch/Language/german.lang");
    EXPECT_EQ(FileOf(german.module), "/opt/watch/Language/german.lang");
}

TEST_F(LanguageModulesTest, TheSettingChoosesAModule) {
    Installed("german.lang", &GermanInfo);
    Installed("french.lang", &FrenchInfo);
    const ModuleHandle choice = Load("Deutsch");
    EXPECT_EQ(FileOf(choice), "/opt/watch/Language/german.lang");
    EXPECT_EQ(data.languageId, 7u);
    EXPECT_EQ(Names().size(), 3u);
}

TEST_F(LanguageModulesTest, ALanguageThatHasGoneMeansTheProgramsOwnTextsAndNoNumber) {
    Installed("german.lang", &GermanInfo);
    EXPECT_EQ(Load("Suomi"), nullptr);
    EXPECT_EQ(data.languageId, 0u);
}

TEST_F(LanguageModulesTest, AModuleWithoutTheEntryPointIsNotListedAndStaysLoaded) {
    Installed("plain.lang");
    Installed("german.lang", &GermanInfo);
    Load();
    EXPECT_EQ(Names(), (NamesList{"English", "Deutsch"}));
    EXPECT_TRUE(system.modules.freed.empty());
}

TEST_F(LanguageModulesTest, AFileThatIsNoModuleIsPassedOver) {
    system.modules.folders["/opt/watch/Language"].push_back({"broken.lang", false});
    Installed("german.lang", &GermanInfo);
    Load();
    EXPECT_EQ(Names(), (NamesList{"English", "Deutsch"}));
}

TEST_F(LanguageModulesTest, AModuleWithoutAnIconOrANameIsNotUsed) {
    Installed("iconless.lang", &IconlessInfo);
    Installed("nameless.lang", &NamelessInfo);
    EXPECT_EQ(Load("Iconless"), nullptr);
    EXPECT_EQ(Names(), NamesList{"English"});
}

TEST_F(LanguageModulesTest, AModuleThatStoresNoNumberInheritsTheOneBefore) {
    Installed("german.lang", &GermanInfo);
    Installed("numberless.lang", &NumberlessInfo);
    Load();
    EXPECT_EQ(Language("Klingon").languageId, 7u);
}

TEST_F(LanguageModulesTest, TheFirstModuleInheritsZero) {
    Installed("numberless.lang", &NumberlessInfo);
    Load("Klingon");
    EXPECT_EQ(Language("Klingon").languageId, 0u);
}

TEST_F(LanguageModulesTest, OfTwoModulesOfOneNameTheFirstIsListedAndTheLaterMayBeTheChoice) {
    Installed("a.lang", &GermanInfo);
    Installed("b.lang", &SecondGermanInfo);
    const ModuleHandle choice = Load("Deutsch");
    EXPECT_EQ(Names(), (NamesList{"English", "Deutsch"}));
    EXPECT_EQ(Language("Deutsch").languageId, 7u);
    EXPECT_EQ(FileOf(choice), "/opt/watch/Language/b.lang");
    EXPECT_EQ(data.languageId, 77u);
}

TEST_F(LanguageModulesTest, ANameWithoutEndIsCut) {
    Installed("endless.lang", &EndlessInfo);
    Load();
    EXPECT_EQ(Names()[1], std::string(256, 'x'));
}

TEST_F(LanguageModulesTest, WithoutAProgramPathNothingIsSearched) {
    system.folders.programPath = "";
    Load();
    EXPECT_TRUE(system.modules.listed.empty());
    EXPECT_EQ(Names(), NamesList{"English"});
}

// ---- the menu ----

TEST_F(LanguageModulesTest, OneLanguageAloneIsNoChoice) {
    Load();
    EXPECT_TRUE(OfferLanguages(data, kProgram).empty());
}

TEST_F(LanguageModulesTest, TheMenuNumbersTheLanguagesAndMarksTheCurrentOne) {
    Installed("german.lang", &GermanInfo);
    Installed("french.lang", &FrenchInfo);
    const ModuleHandle choice = Load("Deutsch");
    const auto menu = OfferLanguages(data, choice);
    ASSERT_EQ(menu.size(), 3u);
    for (u32 i = 0; i < 3; ++i) {
        EXPECT_EQ(menu[i].language->menuId, 22000 + i);
        EXPECT_EQ(menu[i].isCurrent, menu[i].language->name == "Deutsch");
        EXPECT_EQ(FindOfferedLanguage(data, 22000 + i), menu[i].language);
    }
}

TEST_F(LanguageModulesTest, OtherCommandsAreNoLanguage) {
    Installed("german.lang", &GermanInfo);
    Load();
    EXPECT_EQ(FindOfferedLanguage(data, 0), nullptr);  // before the menu was made
    OfferLanguages(data, kProgram);
    for (const u32 id : {0u, 21999u, 22002u, 22499u, 22500u, 40001u}) EXPECT_EQ(FindOfferedLanguage(data, id), nullptr);
}

TEST_F(LanguageModulesTest, ATakenLanguageIsStoredAndTold) {
    Installed("german.lang", &GermanInfo);
    Load();
    data.resourceInstance = kProgram;
    for (int round = 0; round < 2; ++round) {  // all steps run for the current one too
        TakeLanguage(data, Language("Deutsch"));
        EXPECT_EQ(data.settings.Language, "Deutsch");
        EXPECT_EQ(data.languageId, 7u);
        VardelSettings stored;
        stored.ReadSettings();
        EXPECT_EQ(stored.Language, "Deutsch");
    }
    EXPECT_EQ(data.resourceInstance.Get(), kProgram);  // the workers keep their texts
}

TEST_F(LanguageModulesTest, PluginsHearOfATakenLanguage) {
    Installed("german.lang", &GermanInfo);
    Load();
    test::PluginFolder folder(system);
    test::ScriptedPlugin plugin;
    plugin.Named(PLUGIN_TYPE_VIEW, "one");
    folder.Add("one.so", plugin);
    data.plugins.LoadPlugins();
    TakeLanguage(data, Language("Deutsch"));
    EXPECT_EQ(plugin.block.language, 7u);
    data.plugins.UnloadPlugins();
}

// ---- a real module ----

std::string GermanFile() {
    std::string path = test::TestModule("german");
    return path.replace(path.rfind('.'), std::string::npos, ".lang");
}

TEST_F(LanguageModulesTest, ARealModuleTellsItsLanguageAndGivesItsTexts) {
    const ModuleHandle module = SystemModules().Load(GermanFile().c_str());
    ASSERT_NE(module, nullptr);
    Installed("german.lang", reinterpret_cast<Info*>(SystemModules().Find(module, "GetModuleLanguageInfo")));
    EXPECT_NE(Load("Deutsch"), nullptr);
    EXPECT_EQ(data.languageId, 7u);
    EXPECT_EQ(Language("Deutsch").iconId, 147u);

    char text[64];
    StringResources& strings = SystemStringResources();
    EXPECT_EQ(strings.Load(module, IDS_ALERT_NEW_HOSTS, text, sizeof text), 22);
    EXPECT_STREQ(text, "Neue(r) Host gefunden:");
    EXPECT_EQ(strings.Load(module, IDS_ALERT_NEW_HOSTS, text, 5), 4);
    EXPECT_STREQ(text, "Neue");
    EXPECT_EQ(strings.Load(module, IDS_ALERT_SYSLOG, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
    SystemModules().Free(module);
}

TEST_F(LanguageModulesTest, AModuleWithoutTextsGivesNone) {
    const ModuleHandle module = SystemModules().Load(test::TestModule("plain_module").c_str());
    ASSERT_NE(module, nullptr);
    char text[8] = "x";
    EXPECT_EQ(SystemStringResources().Load(module, IDS_ALERT_NEW_HOSTS, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
    SystemModules().Free(module);
}

TEST_F(LanguageModulesTest, TheApplicationFreesTheModulesAtItsEndButNotTheProgramsOwn) {
    Installed("german.lang", &GermanInfo);
    {
        test::NoFrame frame;
        Vardel app(system.services, frame);
        app.data.settings.Language = "Deutsch";
        const ModuleHandle choice = app.LoadLanguages();
        EXPECT_EQ(FileOf(choice), "/opt/watch/Language/german.lang");
        EXPECT_EQ(app.data.languages.Count(), 2u);
        EXPECT_TRUE(system.modules.freed.empty());
    }
    EXPECT_EQ(system.modules.freed, std::vector<std::string>{"/opt/watch/Language/german.lang"});
}

}  // namespace
}  // namespace vardel

// The language modules that lie beside the program.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "capture/VardelData.h"
#include "frame/LanguageModules.h"
#include "platform/Modules.h"
#include "platform/StringResources.h"
#include "resources/IconIds.h"
#include "resources/ResourceIds.h"
#include "tests/unit/support/TestModules.h"
#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

struct ShippedLanguage {
    const char* file;
    const char* name;  // Windows-1252
    u32 number;        // what plugins are told
    const char* newHosts;
    const char* noUpdates;
};

constexpr ShippedLanguage kShipped[] = {
    {"french", "Fran\xe7" "ais", 12, "Nouvel(s) h\xf4te(s) trouv\xe9(s) :", "Aucune mise \xe0 jour disponible !"},
    {"german", "Deutsch", 7, "Neue(r) Host(s) gefunden:", "Keine Updates verf\xfcgbar!"},
    {"spanish", "Espa\xf1ol", 10, "Nuevo(s) host(s) encontrado(s):", "\xa1No hay actualizaciones disponibles!"},
};

class ShippedLanguagesTest : public testing::TestWithParam<ShippedLanguage> {
  protected:
    ~ShippedLanguagesTest() override { SystemModules().Free(module); }
    std::string Text(u32 id, ModuleHandle from) {
        char text[512];
        const int length = SystemStringResources().Load(from, id, text, sizeof text);
        EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(text)) << id;
        return text;
    }
    using Info = u32(char* name, int size, u32* languageId);
    Info* info() { return reinterpret_cast<Info*>(SystemModules().Find(module, "GetModuleLanguageInfo")); }

    const ModuleHandle module = SystemModules().Load(test::LanguageModule(GetParam().file).c_str());
};

TEST_P(ShippedLanguagesTest, TellsItsNameItsNumberAndItsFlag) {
    ASSERT_NE(module, nullptr);
    ASSERT_NE(info(), nullptr);
    char name[256];
    std::memset(name, 'x', sizeof name);
    u32 number = 0;
    EXPECT_EQ(info()(name, sizeof name, &number), static_cast<u32>(IDI_FLAG));
    EXPECT_STREQ(name, GetParam().name);
    EXPECT_EQ(number, GetParam().number);
}

TEST_P(ShippedLanguagesTest, IsNotUsedWhereItsNameHasNoRoom) {
    ASSERT_NE(info(), nullptr);
    char name[8] = "before";
    u32 number = 99;
    EXPECT_EQ(info()(name, 4, &number), 0u);
    EXPECT_STREQ(name, "");
    EXPECT_EQ(number, 99u);
    EXPECT_EQ(info()(name, 0, &number), 0u);
    EXPECT_EQ(info()(nullptr, 256, &number), 0u);
}

TEST_P(ShippedLanguagesTest, HasEachTextOfTheProgramAndNoOther) {
    ASSERT_NE(module, nullptr);
    for (u32 id = 0; id < 1000; ++id) EXPECT_EQ(Text(id, module).empty(), Text(id, nullptr).empty()) << id;
}

TEST_P(ShippedLanguagesTest, SaysTheTextsInItsLanguage) {
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(Text(IDS_ALERT_NEW_HOSTS, module), GetParam().newHosts);
    EXPECT_EQ(Text(IDS_NO_UPDATES, module), GetParam().noUpdates);
    EXPECT_NE(Text(IDS_ALERT_SYSLOG, module), Text(IDS_ALERT_SYSLOG, nullptr));
}

TEST_P(ShippedLanguagesTest, CutsATextToTheBuffer) {
    ASSERT_NE(module, nullptr);
    char text[6];
    EXPECT_EQ(SystemStringResources().Load(module, IDS_ALERT_NEW_HOSTS, text, sizeof text), 5);
    EXPECT_EQ(text, std::string(GetParam().newHosts).substr(0, 5));
}

INSTANTIATE_TEST_SUITE_P(Modules, ShippedLanguagesTest, testing::ValuesIn(kShipped),
                         [](const auto& one) { return std::string(one.param.file); });

TEST(ShippedLanguages, AreListedBesideEnglishAndCanBeChosen) {
    std::vector<ModuleHandle> loaded;
    test::TestServices system;
    system.folders.programPath = "/opt/watch/vardelwatch";
    for (const ShippedLanguage& language : kShipped) {
        const ModuleHandle module = SystemModules().Load(test::LanguageModule(language.file).c_str());
        ASSERT_NE(module, nullptr) << language.file;
        loaded.push_back(module);
        const std::string file = std::string(language.file) + ".lang";
        system.modules.folders["/opt/watch/Language"].push_back({file, false});
        system.modules.modules.insert("/opt/watch/Language/" + file);
        system.modules.entryPoints["/opt/watch/Language/" + file + "!GetModuleLanguageInfo"] =
            SystemModules().Find(module, "GetModuleLanguageInfo");
    }
    for (const ShippedLanguage& language : kShipped) {
        VardelData data{system.services};
        data.settings.Language = language.name;
        EXPECT_NE(LoadLanguages(data, nullptr), nullptr) << language.file;
        EXPECT_EQ(data.languageId, language.number);
        EXPECT_EQ(data.languages.Count(), std::size(kShipped) + 1);
    }
    for (const ModuleHandle module : loaded) SystemModules().Free(module);
}

}  // namespace
}  // namespace vardel

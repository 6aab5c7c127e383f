// The setters: each writes one value at the moment it changes.
#include <functional>

#include "tests/unit/support/SettingsFixture.h"

namespace vardel {
namespace {

using namespace test;

struct SetterCase {
    const char* name;
    std::function<bool(VardelSettings&)> write;
    ValueType type;
    std::string data;
};
const SetterCase kSetters[] = {
    {"SavedViewWindowDimension",
     [](VardelSettings& s) {
         s.SavedViewWindowDimension.Write({1, 2, 3, 4});
         return s.WriteSavedViewWindowDimension();
     },
     ValueType::Binary, std::string("\1\0\0\0\2\0\0\0\3\0\0\0\4\0\0\0", 16)},
    {"Language",
     [](VardelSettings& s) {
         s.Language = "Deutsch";
         return s.WriteLanguage();
     },
     ValueType::Text, std::string("Deutsch", 8)},
    {"ViewFilterOptions",
     [](VardelSettings& s) {
         s.ViewFilterOptions = 3;
         return s.WriteViewFilterOptions();
     },
     ValueType::Dword, std::string("\3\0\0\0", 4)},
    {"LastUpdateTime",
     [](VardelSettings& s) {
         s.LastUpdateTime = 0x1122334455667788;
         return s.WriteLastUpdateTime();
     },
     ValueType::Qword, std::string("\x88\x77\x66\x55\x44\x33\x22\x11", 8)},
    {"MACListVersion", [](VardelSettings& s) { return s.WriteMACListVersion(0x80000001u); }, ValueType::Dword,
     std::string("\1\0\0\x80", 4)},
};

class Setter : public SettingsFixture, public ::testing::WithParamInterface<SetterCase> {
  protected:
    VardelSettings settings;
};

TEST_P(Setter, MakesTheKeyAndWritesItsValueAlone) {
    EXPECT_TRUE(GetParam().write(settings));
    EXPECT_EQ(store.calls,
              (std::vector<std::string>{"open " + kSettings, "create " + kProduct, "create " + kSettings,
                                        "open " + kSettings, std::string("set ") + GetParam().name}));
    const RegistryValue* value = store.Value(kSettings, GetParam().name);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, GetParam().type);
    EXPECT_EQ(value->data, GetParam().data);
    EXPECT_EQ(store.batchesEnded, 1);
}

TEST_P(Setter, UsesTheKeyThatIsThere) {
    store.PutDword(kSettings, "AutoStart", 1);
    EXPECT_TRUE(GetParam().write(settings));
    EXPECT_EQ(store.calls,
              (std::vector<std::string>{"open " + kSettings, std::string("set ") + GetParam().name}));
}

TEST_P(Setter, FailsWhenAnyStepToTheKeyFails) {
    for (const std::string& step : {"create " + kProduct, "create " + kSettings, "open " + kSettings}) {
        store.fails = [&](const std::string& call) { return call == step; };
        EXPECT_FALSE(GetParam().write(settings)) << step;
        EXPECT_TRUE(store.ValueNames(kSettings).empty());
        store.tree.Delete(kSettings.c_str());
    }
}

TEST_P(Setter, IsContentOnceTheKeyIsReached) {
    store.fails = [](const std::string& call) { return call.starts_with("set "); };
    EXPECT_TRUE(GetParam().write(settings));
}

INSTANTIATE_TEST_SUITE_P(Settings, Setter, ::testing::ValuesIn(kSetters),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SettingsFixture, MacListVersionIsWrittenFromItsArgumentAndTheFieldStays) {
    VardelSettings settings;
    settings.MACListVersion = 3;
    EXPECT_TRUE(settings.WriteMACListVersion(9));
    EXPECT_EQ(settings.MACListVersion, 3);
}

}  // namespace
}  // namespace vardel

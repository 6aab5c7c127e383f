#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "platform/CodePage.h"

namespace vardel {
namespace {

// The locale's variables, as they were before afterwards.
class OutputTakesUtf8Test : public testing::Test {
  protected:
    OutputTakesUtf8Test() {
        for (const char* name : kNames) {
            if (const char* value = std::getenv(name)) before[name] = value;
            unsetenv(name);
        }
    }
    ~OutputTakesUtf8Test() override {
        for (const char* name : kNames) {
            if (before[name]) setenv(name, before[name]->c_str(), 1);
            else unsetenv(name);
        }
    }
    static constexpr const char* kNames[] = {"LC_ALL", "LC_CTYPE", "LANG"};
    std::map<std::string, std::optional<std::string>> before;
};

TEST_F(OutputTakesUtf8Test, IsWhatTheLocaleSays) {
    EXPECT_FALSE(OutputTakesUtf8());
    for (const char* locale : {"de_DE.UTF-8", "C.utf8", "fr_FR.UTF-8@euro"}) {
        setenv("LANG", locale, 1);
        EXPECT_TRUE(OutputTakesUtf8()) << locale;
    }
    for (const char* locale : {"C", "POSIX", "de_DE.ISO-8859-1", "utf8", ""}) {
        setenv("LANG", locale, 1);
        EXPECT_FALSE(OutputTakesUtf8()) << locale;
    }
}

TEST_F(OutputTakesUtf8Test, TheStrongerVariableCounts) {
    setenv("LANG", "de_DE.UTF-8", 1);
    setenv("LC_CTYPE", "C", 1);
    EXPECT_FALSE(OutputTakesUtf8());
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_TRUE(OutputTakesUtf8());
    setenv("LC_ALL", "", 1);
    EXPECT_FALSE(OutputTakesUtf8());
}

}  // namespace
}  // namespace vardel

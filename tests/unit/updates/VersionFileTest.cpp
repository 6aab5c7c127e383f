#include "updates/VersionFile.h"

#include <gtest/gtest.h>

#include <string>

namespace vardel {
namespace {

constexpr i32 kMost = 2147483647;

struct Row {
    const char* text;
    ProgramVersion version;
    bool isNewer;
};

// What a version file may hold, what is read from it, and whether that is newer than this program.
const Row kRows[] = {
    {"0.7.0.1623", {0, 7, 0, 1623}, false},
    {"0.7.0.1624", {0, 7, 0, 1624}, true},
    {"0.7.0.1622", {0, 7, 0, 1622}, false},
    {"0.7.0.0", {0, 7, 0, 0}, false},
    {"0.7.1.0", {0, 7, 1, 0}, true},
    {"0.7.-1.9999", {0, 7, -1, 9999}, false},
    {"0.6.9.9999", {0, 6, 9, 9999}, false},
    {"0.8", {0, 0, 0, 0}, false},
    {"0.8.", {0, 8, 0, 0}, true},
    {"0.8.0", {0, 8, 0, 0}, true},
    {"0.8.0.0", {0, 8, 0, 0}, true},
    // Without a third dot neither revision nor build counts.
    {"0.7.1", {0, 7, 0, 0}, false},
    {"0.7.9999", {0, 7, 0, 0}, false},
    {"0.7.1.", {0, 7, 1, 0}, true},
    {"1.0", {1, 0, 0, 0}, true},
    {"1.", {1, 0, 0, 0}, true},
    {"1.0.0.0", {1, 0, 0, 0}, true},
    {"2.-5.-5.-5", {2, -5, -5, -5}, true},
    {"-1.9.9.9999", {-1, 9, 9, 9999}, false},
    {"0.-8.1.1", {0, -8, 1, 1}, false},
    {"0.7.0.1624.99", {0, 7, 0, 1624}, true},
    {"0.7.0.1624\r\n", {0, 7, 0, 1624}, true},
    {" 0 . 8 . 0 . 0 ", {0, 8, 0, 0}, true},
    {"v1.0", {0, 0, 0, 0}, false},
    {".", {0, 0, 0, 0}, false},
    {"...", {0, 0, 0, 0}, false},
    {"<html>Not found. Sorry.</html>", {0, 0, 0, 0}, false},
    {"99999999999999999999.0", {kMost, 0, 0, 0}, true},
    {"4294967296.0", {kMost, 0, 0, 0}, true},
    {"-99999999999999999999.0", {-kMost - 1, 0, 0, 0}, false},
    {"0.99999999999.0", {0, kMost, 0, 0}, true},
    {"0.7.0.99999999999", {0, 7, 0, kMost}, true},
};

TEST(VersionFile, IsReadNumberByNumber) {
    for (const Row& row : kRows) {
        const auto version = ParseProgramVersion(row.text);
        ASSERT_TRUE(version) << row.text;
        EXPECT_EQ(*version, row.version) << row.text;
        EXPECT_EQ(*version > kProgramVersion, row.isNewer) << row.text;
    }
}

TEST(VersionFile, ATextWithoutADotIsNoVersion) {
    for (const char* text : {"", "1", "99", "0,8,0,0", "new", "\n"}) EXPECT_FALSE(ParseProgramVersion(text)) << text;
}

TEST(VersionFile, TheTextStaysAsItIs) {
    const TcString text = "1.2.3.4";
    ParseProgramVersion(text);
    EXPECT_EQ(text, "1.2.3.4");
}

TEST(ProgramVersion, IsTheOneThatIsShown) {
    const auto shown = ParseProgramVersion(kProgramVersionText);
    ASSERT_TRUE(shown);
    EXPECT_EQ(*shown, kProgramVersion);
    EXPECT_EQ(kProgramVersion, (ProgramVersion{0, 7, 0, 1623}));
}

}  // namespace
}  // namespace vardel

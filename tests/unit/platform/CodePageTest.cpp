#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include <string>

namespace vardel {
namespace {

std::string Lowered(std::string text) {
    LowerInCodePage(text.data(), text.size());
    return text;
}

TEST(CodePage, LowersAsciiLettersAndNothingAroundThem) {
    EXPECT_EQ(Lowered("@AZ[`az{09"), "@az[`az{09");
    EXPECT_EQ(Lowered(""), "");
}

TEST(CodePage, LowersTheWesternLetters) {
    EXPECT_EQ(Lowered("\xC0\xC4\xD6\xDC\xDE"), "\xE0\xE4\xF6\xFC\xFE");
    EXPECT_EQ(Lowered("\xD7\xDF\xF7"), "\xD7\xDF\xF7")
        << "multiplication, sharp s and division have no other case";
    EXPECT_EQ(Lowered("\x8A\x8C\x8E\x9F"), "\x9A\x9C\x9E\xFF");
}

TEST(CodePage, LeavesWhatStandsBehindTheLength) {
    std::string text = "ABCD";
    LowerInCodePage(text.data(), 2);
    EXPECT_EQ(text, "abCD");
    LowerInCodePage(text.data(), 0);
    EXPECT_EQ(text, "abCD");
}

}  // namespace
}  // namespace vardel

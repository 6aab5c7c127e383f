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

// Lead bytes of code page 932.
bool LeadsIn932(unsigned char byte) { return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); }

TEST(WholeCharacters, AreAllOfAShortText) {
    EXPECT_EQ(WholeCharacters("abc", 3), 3u);
    EXPECT_EQ(WholeCharacters("abc", 9), 3u);
    EXPECT_EQ(WholeCharacters("abc", 2), 2u);
    EXPECT_EQ(WholeCharacters("", 0), 0u);
}

TEST(WholeCharacters, OfTwoBytesAreNotCut) {
    const char* text = "a\x83\x65\x83\x58";  // a, two characters
    EXPECT_EQ(WholeCharactersOf(text, 5, LeadsIn932), 5u);
    EXPECT_EQ(WholeCharactersOf(text, 4, LeadsIn932), 3u);
    EXPECT_EQ(WholeCharactersOf(text, 3, LeadsIn932), 3u);
    EXPECT_EQ(WholeCharactersOf(text, 2, LeadsIn932), 1u);
    EXPECT_EQ(WholeCharactersOf(text, 0, LeadsIn932), 0u);
    EXPECT_EQ(WholeCharactersOf("\x83\x83", 2, LeadsIn932), 2u) << "a second byte may look like a first one";
    EXPECT_EQ(WholeCharactersOf("a\x83", 9, LeadsIn932), 2u) << "a text may end in a half one";
}

TEST(WholeCharacters, OfUtf8AreNotCut) {
    const char* text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";  // of one, two, three and four bytes
    const std::size_t expected[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (std::size_t limit = 0; limit < std::size(expected); ++limit)
        EXPECT_EQ(WholeCharactersOfUtf8(text, limit), expected[limit]) << limit;
    EXPECT_EQ(WholeCharactersOfUtf8("\x80\x80\x80\x80\x80\x80", 5), 5u) << "no such text: cut at the limit";
}

}  // namespace
}  // namespace vardel

#include "platform/CommandLine.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

using Arguments = std::vector<std::string>;

TEST(CommandLine, BlanksAndTabsPartArguments) {
    EXPECT_EQ(SplitCommandLine("  one two\tthree \t "), (Arguments{"one", "two", "three"}));
}

TEST(CommandLine, NothingButBlanksHoldsNoArgument) {
    EXPECT_EQ(SplitCommandLine(""), Arguments{});
    EXPECT_EQ(SplitCommandLine(" \t "), Arguments{});
}

TEST(CommandLine, QuotesKeepBlanksTogether) {
    EXPECT_EQ(SplitCommandLine(R"("one two" three)"), (Arguments{"one two", "three"}));
    EXPECT_EQ(SplitCommandLine(R"(--name="one two"/three)"), (Arguments{"--name=one two/three"}));
}

TEST(CommandLine, EmptyQuotesAreAnEmptyArgument) {
    EXPECT_EQ(SplitCommandLine(R"(one "" two)"), (Arguments{"one", "", "two"}));
}

TEST(CommandLine, ADoubledQuoteBetweenQuotesIsAPlainOne) {
    EXPECT_EQ(SplitCommandLine(R"("a""b" c)"), (Arguments{R"(a"b)", "c"}));
}

TEST(CommandLine, BackslashesStandForThemselvesUnlessAQuoteFollows) {
    EXPECT_EQ(SplitCommandLine(R"(C:\path\ \\server\share a\)"),
              (Arguments{R"(C:\path\)", R"(\\server\share)", R"(a\)"}));
    EXPECT_EQ(SplitCommandLine(R"("a\b c" d)"), (Arguments{R"(a\b c)", "d"}));
}

TEST(CommandLine, BackslashesAheadOfAQuoteAreHalved) {
    EXPECT_EQ(SplitCommandLine(R"("C:\path\\" b)"), (Arguments{R"(C:\path\)", "b"}));
    EXPECT_EQ(SplitCommandLine(R"(a\"b c)"), (Arguments{R"(a"b)", "c"}));
    EXPECT_EQ(SplitCommandLine(R"(a\\\"b c)"), (Arguments{R"(a\"b)", "c"}));
    EXPECT_EQ(SplitCommandLine(R"("a\" b" c)"), (Arguments{R"(a" b)", "c"}));
}

TEST(CommandLine, AQuoteThatIsNeverClosedReachesToTheEnd) {
    EXPECT_EQ(SplitCommandLine(R"(a "b c )"), (Arguments{"a", "b c "}));
}

// What a command interpreter would act on means nothing here.
TEST(CommandLine, OtherCharactersArePlain) {
    EXPECT_EQ(SplitCommandLine("a;b|c $(d) `e` 'f g'\nh"),
              (Arguments{"a;b|c", "$(d)", "`e`", "'f", "g'\nh"}));
}

}  // namespace
}  // namespace vardel

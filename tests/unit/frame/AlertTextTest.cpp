#include "frame/AlertText.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vardel {
namespace {

AlertText Of(std::size_t entries) {
    AlertText text("heading");
    for (std::size_t i = 1; i <= entries; ++i)
        text.Add([i](std::string& line) { line = "\nentry " + std::to_string(i); });
    return text;
}

std::size_t LinesOf(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

TEST(AlertText, IsTheHeadingAndALineForEachEntry) {
    EXPECT_EQ(Of(2).Finish(), "heading\nentry 1\nentry 2");
    EXPECT_EQ(Of(0).Finish(), "heading");
}

TEST(AlertText, HasContentFromTheFirstEntryOn) {
    EXPECT_FALSE(Of(0).HasContent());
    EXPECT_TRUE(Of(1).HasContent());
    EXPECT_TRUE(Of(1000).HasContent());
}

TEST(AlertText, FiveHundredLinesAreShownWhole) {
    const std::string text = Of(499).Finish();
    EXPECT_EQ(LinesOf(text), 500u);
    EXPECT_TRUE(text.ends_with("\nentry 498\nentry 499"));
}

TEST(AlertText, TheLastLineTellsHowManyMoreThereAre) {
    const std::string text = Of(500).Finish();
    EXPECT_EQ(LinesOf(text), 500u);
    EXPECT_TRUE(text.ends_with("\nentry 498\n... (+2)")) << text.substr(text.size() - 40);
    EXPECT_TRUE(Of(10'000).Finish().ends_with("\nentry 498\n... (+9502)"));
}

TEST(AlertText, LineFeedsInANameCountAsLines) {
    AlertText text("heading");
    text.Add([](std::string& line) { line = "\n" + std::string(600, '\n'); });
    text.Add([](std::string& line) { line = "\nshort"; });
    EXPECT_EQ(text.Finish(), "heading\n... (+2)");
    AlertText fits("heading");
    fits.Add([](std::string& line) { line = std::string(499, '\n'); });
    EXPECT_EQ(LinesOf(fits.Finish()), 500u);
    fits.Add([](std::string& line) { line = "\nx"; });
    EXPECT_EQ(fits.Finish(), "heading\n... (+2)");
}

TEST(AlertText, EntriesThatAreNotShownAreNotFormed) {
    AlertText text("heading");
    int formed = 0;
    for (int i = 0; i < 100'000; ++i) text.Add([&](std::string& line) { ++formed, line = "\nx"; });
    EXPECT_EQ(formed, 499);
}

TEST(AlertText, AnotherThreadsTextIsTakenWhole) {
    std::string line = "[";
    AppendText(line, TcString("a text that is longer than fits inside the object"));
    EXPECT_EQ(line, "[a text that is longer than fits inside the object");
}

}  // namespace
}  // namespace vardel

#include "platform/TextFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/Folders.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

struct TextFile : testing::Test {
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            names.push_back(entry.path().filename().string());
        return names;
    }
    test::TestFolder folder;
};

TEST_F(TextFile, IsReadWhole) {
    std::string text = "old";
    EXPECT_TRUE(ReadTextFile(folder.Write("file", std::string("a\nb\0c\xff", 6)), text));
    EXPECT_EQ(text, std::string("a\nb\0c\xff", 6));
}

TEST_F(TextFile, ThatIsEmptyIsRead) {
    std::string text = "old";
    EXPECT_TRUE(ReadTextFile(folder.Write("file", ""), text));
    EXPECT_EQ(text, "");
}

TEST_F(TextFile, ThatIsNotThereIsNotRead) {
    std::string text = "old";
    EXPECT_FALSE(ReadTextFile(folder.Path("gone"), text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(ReadTextFile(folder.Path(), text));
    EXPECT_FALSE(ReadTextFile("", text));
}

TEST_F(TextFile, IsMadeWithTheLineEndsOfTheSystem) {
    const std::string lineEnd = SystemFolders().Separator() == '\\' ? "\r\n" : "\n";
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "one\ntwo\n"));
    EXPECT_EQ(folder.Read("file"), "one" + lineEnd + "two" + lineEnd);
}

TEST_F(TextFile, LineEndsSurviveReadingAndWriting) {
    const std::string bytes = "one\r\ntwo\r\n";
    std::string text;
    EXPECT_TRUE(ReadTextFile(folder.Write("from", bytes), text));
    EXPECT_TRUE(WriteTextFile(folder.Path("to"), text));
    EXPECT_EQ(folder.Read("to"), bytes);
}

TEST_F(TextFile, TakesThePlaceOfALongerOne) {
    folder.Write("file", std::string(100000, 'x'));
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "short"));
    EXPECT_EQ(folder.Read("file"), "short");
}

TEST_F(TextFile, LeavesNothingBesideIt) {
    folder.Write("vardelwatch.part", "of a run that was cut short");
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "text"));
    EXPECT_EQ(Names(), std::vector<std::string>{"file"});
}

TEST_F(TextFile, IsOverwrittenInPlaceWhereItCannotBeReplaced) {
    // A folder of the name that the fresh file would have.
    std::filesystem::create_directories(folder.Path("vardelwatch.part"));
    folder.Write("file", "a longer old text");
    EXPECT_TRUE(WriteTextFile(folder.Path("file"), "text"));
    EXPECT_EQ(folder.Read("file"), "text");
}

TEST_F(TextFile, IsNotMadeWhereThereIsNoFolder) {
    EXPECT_FALSE(WriteTextFile(folder.Path("gone/file"), "text"));
    EXPECT_FALSE(WriteTextFile(folder.Path(), "text"));
    EXPECT_FALSE(WriteTextFile("", "text"));
    EXPECT_TRUE(Names().empty());
}

}  // namespace
}  // namespace vardel

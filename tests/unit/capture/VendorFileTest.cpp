#include "capture/VendorFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/VendorFileTwin.h"

namespace vardel {

namespace {

using test::TestFolder;
using test::VendorFileTwin;
using test::VendorTexts;

VendorTexts Content(const VendorMap& vendors) {
    VendorTexts texts;
    vendors.ForEach([&](const TcString& key, const TcString* vendor) {
        texts[{key.GetContent(), static_cast<std::size_t>(key.GetLength())}] = vendor->GetContent();
    });
    return texts;
}

VendorTexts Parsed(std::string_view file) {
    VendorMap vendors;
    ParseVendorFile(file, vendors, [] { return true; });
    return Content(vendors);
}

std::string Normalised(const char* key) {
    TcString text(key);
    NormaliseVendorKey(text);
    return text.GetContent();
}

TEST(VendorKey, PadsOctetsOfOneDigit) {
    const std::pair<const char*, const char*> table[] = {
        {"0:0:c", "00:00:0c"},    {"8:0:20", "08:00:20"},  {"0:1b:2", "00:1b:02"},
        {"00:00:0c", "00:00:0c"}, {"00:1b:2", "00:1b:02"}, {"0:1b:02", "00:1b:02"},
        {"0:0:0c", "00:00:0c"},   {"00:0:0c", "00:00:0c"}, {"aa:bb:cc", "aa:bb:cc"},
    };
    for (const auto& [file, key] : table) EXPECT_EQ(Normalised(file), key) << file;
}

TEST(VendorKey, PadsTheSecondOctetBehindItsDigit) {
    EXPECT_EQ(Normalised("0:a:95"), "00:a0:95");
    EXPECT_EQ(Normalised("00:a:95"), "00:a0:95");
    EXPECT_EQ(Normalised("0:a:9"), "00:a0:09");
}

TEST(VendorKey, LeavesOtherTextsAsTheStepsDo) {
    EXPECT_EQ(Normalised(""), "");
    EXPECT_EQ(Normalised(":"), ":");
    EXPECT_EQ(Normalised("a:"), "0a:");
    EXPECT_EQ(Normalised("Cisco"), "Cisco");
    EXPECT_EQ(Normalised("letters"), "letter0s");   // any text of seven characters
    EXPECT_EQ(Normalised("AA:BB:CC"), "AA:BB:CC");  // the case is kept
    EXPECT_EQ(Normalised("x:yz:vw:uv:ts"), "0x:yz:vw:uv:ts");
}

TEST(VendorFile, StoresTheTrimmedNameUnderThePaddedKey) {
    EXPECT_EQ(Parsed("0:0:c\tCisco  \n"), (VendorTexts{{"00:00:0c", "Cisco"}}));
    EXPECT_EQ(Parsed("00:00:0c\t \t\n"), (VendorTexts{{"00:00:0c", ""}}));
}

TEST(VendorFile, TakesTheSecondOfThreeColumns) {
    EXPECT_EQ(Parsed("00:00:0c\tCisco\tCisco Systems\tCA\n08:00:20\tSun\n"),
              (VendorTexts{{"00:00:0c", "Cisco"}, {"08:00:20", "Sun"}}));
}

TEST(VendorFile, KeepsTheFirstVendorOfARepeatedKey) {
    EXPECT_EQ(Parsed("00:00:0c\tFirst\n0:0:c\tSecond\n"), (VendorTexts{{"00:00:0c", "First"}}));
}

TEST(VendorFile, NeverStoresALastLineWithoutLf) {
    EXPECT_EQ(Parsed("00:00:0c\tCisco\n08:00:20\tSun"), (VendorTexts{{"00:00:0c", "Cisco"}}));
    EXPECT_TRUE(Parsed("00:00:0c\tCisco").empty());
}

TEST(VendorFile, LineWithoutTabGoesUnderTheKeyBefore) {
    EXPECT_EQ(Parsed("00:00:0c\tCisco\nno tab here\n"), (VendorTexts{{"00:00:0c", "Cisco"}}));
    EXPECT_EQ(Parsed("# a heading\n\n00:00:0c\tCisco\n"),
              (VendorTexts{{"", "# a heading"}, {"00:00:0c", "Cisco"}}));
    EXPECT_EQ(Parsed("\n"), (VendorTexts{{"", ""}}));
}

TEST(VendorFile, EmptyKeyIsAKey) {
    EXPECT_EQ(Parsed("\tNobody\n"), (VendorTexts{{"", "Nobody"}}));
}

TEST(VendorFile, CrBeforeLfIsPartOfTheLineEnd) {
    EXPECT_EQ(Parsed("00:00:0c\tCisco\r\n08:00:20\tSun\tx\r\n"),
              (VendorTexts{{"00:00:0c", "Cisco"}, {"08:00:20", "Sun"}}));
}

TEST(VendorFile, LoneCrStaysInsideAName) {
    EXPECT_EQ(Parsed("00:00:0c\tCis\rco\n"), (VendorTexts{{"00:00:0c", "Cis\rco"}}));
}

TEST(VendorFile, CutsANameAt254CharactersAndTrimsThen) {
    const std::string longest(254, 'v');
    EXPECT_EQ(Parsed("00:00:0c\t" + longest + "\n")["00:00:0c"], longest);
    EXPECT_EQ(Parsed("00:00:0c\t" + longest + "w\n")["00:00:0c"], longest);
    EXPECT_EQ(Parsed("00:00:0c\t" + std::string(100000, 'v') + "\tx\n")["00:00:0c"], longest);
    EXPECT_EQ(Parsed("00:00:0c\t" + std::string(253, ' ') + "vw\n")["00:00:0c"], "v");
    EXPECT_EQ(Parsed("00:00:0c\t" + std::string(254, ' ') + "v\n")["00:00:0c"], "");
}

TEST(VendorFile, EndsAtAZeroByte) {
    EXPECT_EQ(Parsed(std::string_view("00:00:0c\tCisco\n\0"
                                      "08:00:20\tSun\n",
                                      29)),
              (VendorTexts{{"00:00:0c", "Cisco"}}));
    EXPECT_TRUE(Parsed(std::string_view("00:00:0c\tCi\0sco\n", 16)).empty());
}

TEST(VendorFile, EmptyFileGivesNothing) {
    EXPECT_TRUE(Parsed("").empty());
}

TEST(VendorFile, EndsWhenTheRunShallNotGoOn) {
    VendorMap vendors;
    int lines = 2;
    ParseVendorFile("00:00:01\ta\n00:00:02\tb\n00:00:03\tc\n", vendors, [&] { return lines-- > 0; });
    EXPECT_EQ(Content(vendors), (VendorTexts{{"00:00:01", "a"}, {"00:00:02", "b"}}));

    VendorMap none;
    ParseVendorFile("00:00:01\ta\n", none, [] { return false; });
    EXPECT_TRUE(none.IsEmpty());
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(VARDEL_FEWER_ROUNDS)
constexpr int kRandomFiles = 40'000;
#else
constexpr int kRandomFiles = 1'000'000;
#endif

std::string RandomFile(std::mt19937& random) {
    static const std::string_view pieces[] = {
        "\t",       "\t", "\n", "\n",  "\r\n",     "\r",      ":",  "0",          "a",    "0:0:c", "8:0:20",
        "00:00:0c", " ",  "  ", "Sun", "0:a:95\t", "\t\tx\n", "1b", "00:00:0c\t", "\xfc", "\n\n",  "x y z"};
    std::string file;
    for (u32 count = random() % 24; count > 0; --count) file += pieces[random() % std::size(pieces)];
    if (random() % 16 == 0) file.insert(random() % (file.size() + 1), 1, '\0');
    if (random() % 64 == 0) file.insert(random() % (file.size() + 1), 245 + random() % 20, 'v');
    return file;
}

TEST(VendorFile, AgreesWithTheParseCharacterByCharacter) {
    std::mt19937 random(20240501);
    for (int i = 0; i < kRandomFiles; ++i) {
        const std::string file = RandomFile(random);
        ASSERT_EQ(Parsed(file), VendorFileTwin::Parse(file))
            << "file " << i << ": " << testing::PrintToString(file);
    }
}

// A stop that the parser meets in the middle of a line is the same as one at its start.
TEST(VendorFile, StopBetweenLinesAgreesWithTheStopAtACharacter) {
    std::mt19937 random(7);
    for (int i = 0; i < kRandomFiles / 20; ++i) {
        const std::string file = RandomFile(random);
        if (file.find('\r') != std::string::npos) continue;  // positions would shift
        const std::size_t stop = random() % (file.size() + 1);
        const long lines = std::count(file.begin(), file.begin() + static_cast<long>(stop), '\n');
        long left = lines;
        VendorMap vendors;
        ParseVendorFile(file, vendors, [&] { return left-- > 0; });
        ASSERT_EQ(Content(vendors), VendorFileTwin::Parse(file, static_cast<long>(stop)))
            << "file " << i << " stopped at " << stop << ": " << testing::PrintToString(file);
    }
}

TEST(VendorFilePaths, UsersCopyComesBeforeTheOneBesideTheProgram) {
    test::ScriptedFolders folders;
    folders.localApplicationData = "/home/u/.local/share";
    folders.programPath = "/opt/vardelwatch/bin/vardelwatch";
    EXPECT_EQ(VendorFilePaths(folders),
              (std::vector<std::string>{"/home/u/.local/share/Vardelwatch/ethercodes.dat",
                                        "/opt/vardelwatch/bin/ethercodes.dat"}));
    folders.separator = '\\';
    folders.localApplicationData = "C:\\Users\\u\\AppData\\Local";
    folders.programPath = "C:\\Program Files\\Vardelwatch\\vardelwatch.exe";
    EXPECT_EQ(VendorFilePaths(folders),
              (std::vector<std::string>{"C:\\Users\\u\\AppData\\Local\\Vardelwatch\\ethercodes.dat",
                                        "C:\\Program Files\\Vardelwatch\\ethercodes.dat"}));
}

TEST(VendorFilePaths, LeaveOutWhatTheSystemCannotName) {
    test::ScriptedFolders folders;
    folders.programPath = "/opt/vardelwatch";
    EXPECT_EQ(VendorFilePaths(folders), (std::vector<std::string>{"/opt/ethercodes.dat"}));
    folders.programPath = "";
    EXPECT_TRUE(VendorFilePaths(folders).empty());
}

TEST(ReadVendorFile, TakesTheFirstThatOpens) {
    TestFolder folder;
    const std::string first = folder.Path("user/ethercodes.dat");
    const std::string second = folder.Write("program/ethercodes.dat", "second\n");
    EXPECT_EQ(ReadVendorFile({first, second}), "second\n");
    folder.Write("user/ethercodes.dat", "first\n");
    EXPECT_EQ(ReadVendorFile({first, second}), "first\n");
    EXPECT_EQ(ReadVendorFile({}), "");
    EXPECT_EQ(ReadVendorFile({folder.Path("none")}), "");
}

TEST(ReadVendorFile, AnEmptyFileThatOpensIsTheOneThatCounts) {
    TestFolder folder;
    const std::string first = folder.Write("user/ethercodes.dat", "");
    const std::string second = folder.Write("program/ethercodes.dat", "second\n");
    EXPECT_EQ(ReadVendorFile({first, second}), "");
}

TEST(ReadVendorFile, FolderInThePlaceOfTheFileDoesNotOpen) {
    TestFolder folder;
    std::filesystem::create_directories(folder.Path("user/ethercodes.dat"));
    const std::string second = folder.Write("program/ethercodes.dat", "second\n");
    EXPECT_EQ(ReadVendorFile({folder.Path("user/ethercodes.dat"), second}), "second\n");
}

TEST(ReadVendorFile, LineEndsOfBothSystemsGiveTheSameTable) {
    TestFolder folder;
    const std::string windows = folder.Write("windows.dat", "0:0:c\tCisco\r\n8:0:20\tSun \r\n");
    const std::string unixFile = folder.Write("linux.dat", "0:0:c\tCisco\n8:0:20\tSun \n");
    const VendorTexts expected{{"00:00:0c", "Cisco"}, {"08:00:20", "Sun"}};
    EXPECT_EQ(Parsed(ReadVendorFile({windows})), expected);
    EXPECT_EQ(Parsed(ReadVendorFile({unixFile})), expected);
}

}  // namespace

}  // namespace vardel

#include "platform/RegistryText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/unit/support/RegistryDump.h"
#include "tests/unit/support/SampleBytes.h"

namespace vardel {
namespace {

using test::Dump;
using test::SampleBytes;
using test::Utf16;

constexpr const char* kKey = "HKEY_CURRENT_USER\\Software\\T";
const std::string kStart = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n";
const std::string kStart5 =
    "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n";

struct Read {
    u32 damagedLine;
    std::vector<std::string> lines;  // of the key alone, "type name=bytes"
};

Read ReadBytes(const std::string& bytes) {
    RegistryText text = ParseRegistryText(bytes);
    Read read{text.damagedLine, {}};
    if (const RegistryTree::KeyPointer key = text.tree.Find(kKey)) read.lines = Dump(*key);
    return read;
}
Read ReadLines(const std::string& lines) {
    return ReadBytes(kStart + lines);
}

using Lines = std::vector<std::string>;

void ExpectWhole(const Read& read, const Lines& lines) {
    EXPECT_EQ(read.damagedLine, 0u);
    EXPECT_EQ(read.lines, lines);
}
void ExpectDamaged(const Read& read, u32 line, const Lines& lines) {
    EXPECT_EQ(read.damagedLine, line);
    EXPECT_EQ(read.lines, lines);
}

// ---- value forms ----

TEST(RegistryText, TextsHaveTwoEscapes) {
    ExpectWhole(ReadLines("\"n\"=\"C:\\\\a\\\\\\\"b\\\" = [x] ; y\"\r\n"), {"1 n=C:\\a\\\"b\" = [x] ; y<0>"});
    ExpectWhole(ReadLines("\"n\"=\"\"\r\n"), {"1 n=<0>"});
}

TEST(RegistryText, NamesHaveThemToo) {
    ExpectWhole(ReadLines("\"a\\\\b \\\"c\\\"=\"=dword:00000001\r\n"), {"4 a\\b \"c\"==<1><0><0><0>"});
}

TEST(RegistryText, EscapesOfOtherRegistryEditorsAreRead) {
    ExpectWhole(ReadLines("\"n\"=\"a\\r\\nb\\0c\"\r\n"), {"1 n=a<d><a>b<0>c<0>"});
}

TEST(RegistryText, ASingleBackslashOfAPathTypedByHandStays) {
    ExpectWhole(ReadLines("\"n\"=\"C:\\path\\with\"\r\n"), {"1 n=C:\\path\\with<0>"});
}

TEST(RegistryText, ATextMayGoOverLines) {
    ExpectWhole(ReadLines("\"n\"=\"one\r\ntwo\nthree\r\n\"\r\n\"m\"=\"x\"\r\n"),
                {"1 n=one<d><a>two<a>three<d><a><0>", "1 m=x<0>"});
}

TEST(RegistryText, ALostQuoteSwallowsNoOtherLine) {
    ExpectDamaged(ReadLines("\"n\"=\"one\r\n\"m\"=\"x\"\r\n"), 4, {"1 m=x<0>"});
    ExpectDamaged(ReadLines("\"n\"=\"one\r\n@=\"x\"\r\n"), 4, {"1 @=x<0>"});
    ExpectDamaged(ReadLines("\"n\"=\"one\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n\"m\"=\"x\"\r\n"), 4,
                  {"1 m=x<0>"});
}

TEST(RegistryText, TheDefaultValueIsAnAtSign) {
    ExpectWhole(ReadLines("@=\"text\"\r\n"), {"1 @=text<0>"});
}

TEST(RegistryText, DwordsAreLittleEndianBytes) {
    ExpectWhole(ReadLines("\"n\"=dword:80000001\r\n\"m\"=DWORD:aBcD\r\n"),
                {"4 n=<1><0><0><80>", "4 m=<cd><ab><0><0>"});
}

TEST(RegistryText, BytesMayGoOverLines) {
    ExpectWhole(ReadLines("\"n\"=hex:00,01,\\\r\n  fe,ff,\\\r\n\t7f\r\n"), {"3 n=<0><1><fe><ff><7f>"});
    ExpectWhole(ReadLines("\"n\"=hex:\\\r\n  41\r\n"), {"3 n=A"});
    ExpectWhole(ReadLines("\"n\"=hex:\r\n"), {"3 n="});
    ExpectWhole(ReadLines("\"n\"=hex: 41 , 4 ,0D \r\n"), {"3 n=A<4><d>"});
}

TEST(RegistryText, OtherTypesAreNumberedAndKeptByteForByte) {
    ExpectWhole(
        ReadLines("\"q\"=hex(b):01,02,03,04,05,06,07,88\r\n\"o\"=hex(0):41\r\n\"x\"=hex(2):25,41,25,00\r\n"
                  "\"m\"=hex(7):41,00,00\r\n\"u\"=hex(1f):01,ff\r\n\"U\"=HEX(ffff0003):02\r\n\"d\"=hex(4):01,"
                  "02\r\n"),
        {"b q=<1><2><3><4><5><6><7><88>", "0 o=A", "2 x=%A%<0>", "7 m=A<0><0>", "ffff0003 u=<2>",
         "4 d=<1><2>"});
}

TEST(RegistryText, HexadecimalTextsAreEightBitsInRegedit4) {
    ExpectWhole(ReadLines("\"n\"=hex(1):41,e4,00\r\n"), {"1 n=A<e4><0>"});
}

TEST(RegistryText, HexadecimalTextsAreUtf16InVersion5) {
    ExpectWhole(
        ReadBytes(kStart5 + "\"n\"=hex(1):41,00,e4,00,00,00\r\n\"x\"=hex(2):ac,20,3d,d8,00,de,00,00\r\n"
                            "\"m\"=hex(7):41,00,00,00,00,00\r\n\"b\"=hex:41,00\r\n\"u\"=hex(63):41,00\r\n"),
        {"1 n=A<c3><a4><0>", "2 x=<e2><82><ac><f0><9f><98><80><0>", "7 m=A<0><0>", "3 b=A<0>", "63 u=A<0>"});
}

TEST(RegistryText, LoneSurrogatesBecomeTheReplacementCharacter) {
    ExpectWhole(ReadBytes(kStart5 + "\"n\"=hex(1):00,d8,41,00,00,dc,00,d8\r\n"),
                {"1 n=<ef><bf><bd>A<ef><bf><bd><ef><bf><bd>"});
}

TEST(RegistryText, ValuesAndKeysCanBeDeleted) {
    ExpectWhole(ReadLines("\"a\"=\"x\"\r\n\"b\"=\"y\"\r\n\"A\"=-\r\n@=-\r\n"), {"1 b=y<0>"});
    const Read read = ReadLines(
        "\"a\"=\"x\"\r\n[HKEY_CURRENT_USER\\Software\\T\\Below]\r\n\"c\"=\"z\"\r\n"
        "[-HKEY_CURRENT_USER\\Software\\t]\r\n\"ignored\"=\"x\"\r\n");
    ExpectWhole(read, {});
    RegistryText text = ParseRegistryText(kStart + "[-HKEY_CURRENT_USER\\Software\\T]\r\n");
    EXPECT_TRUE(text.tree.IsEmpty());
}

TEST(RegistryText, ALaterValueReplacesAnEarlierOne) {
    ExpectWhole(ReadLines("\"Name\"=\"x\"\r\n\"NAME\"=dword:00000002\r\n"), {"4 Name=<2><0><0><0>"});
}

TEST(RegistryText, CommentsAndBlanksDontMatter) {
    ExpectWhole(ReadLines("; a comment\r\n\r\n   \t\r\n  \"a\" = \"x\" ; behind it\r\n\"b\"=dword:1 "
                          ";2\r\n\"c\"=hex:01 ;\r\n"),
                {"1 a=x<0>", "4 b=<1><0><0><0>", "3 c=<1>"});
}

TEST(RegistryText, LineEndsMayBeOfEitherKind) {
    ExpectWhole(ReadBytes("REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\T]\n\"a\"=\"x\"\n\"b\"=hex:01,\\\n02\n"),
                {"1 a=x<0>", "3 b=<1><2>"});
}

TEST(RegistryText, KeysAreFoundWithoutRegardToCaseAndTakeTheirValuesTogether) {
    ExpectWhole(ReadLines("\"a\"=\"x\"\r\n[HKEY_CURRENT_USER\\SOFTWARE\\t\\]\r\n\"b\"=\"y\"\r\n"),
                {"1 a=x<0>", "1 b=y<0>"});
}

TEST(RegistryText, BracketsMayStandInAKeysName) {
    RegistryText text = ParseRegistryText("REGEDIT4\r\n[HKEY_CURRENT_USER\\a]b[c]\r\n\"n\"=\"x\"\r\n");
    EXPECT_EQ(text.damagedLine, 0u);
    EXPECT_TRUE(text.tree.Find("HKEY_CURRENT_USER\\a]b[c"));
}

// ---- encodings ----

TEST(RegistryText, EightBitTextsAreTakenByteForByte) {
    ExpectWhole(ReadLines("\"\xe4\"=\"\xff\x80\xc3\xa4\"\r\n"), {"1 <e4>=<ff><80><c3><a4><0>"});
}

TEST(RegistryText, Utf16BecomesUtf8WithAndWithoutItsMark) {
    const std::string file = kStart5 + "\"\xc3\xa4\"=\"\xe2\x82\xac\"\r\n";
    ExpectWhole(ReadBytes("\xff\xfe" + Utf16(file)), {"1 <c3><a4>=<e2><82><ac><0>"});
    ExpectWhole(ReadBytes(Utf16(file)), {"1 <c3><a4>=<e2><82><ac><0>"});
}

TEST(RegistryText, Version5MayBeUtf8WithAndWithoutItsMark) {
    const std::string file = kStart5 + "\"n\"=\"\xe2\x82\xac\"\r\n\"h\"=hex(2):41,00,00,00\r\n";
    ExpectWhole(ReadBytes(file), {"1 n=<e2><82><ac><0>", "2 h=A<0>"});
    ExpectWhole(ReadBytes("\xef\xbb\xbf" + file), {"1 n=<e2><82><ac><0>", "2 h=A<0>"});
}

// ---- damage ----

TEST(RegistryText, WithoutAHeaderTheRestIsReadAllTheSame) {
    ExpectDamaged(ReadBytes("[HKEY_CURRENT_USER\\Software\\T]\r\n\"a\"=\"x\"\r\n"), 1, {"1 a=x<0>"});
    ExpectDamaged(ReadBytes("REGEDIT\r\n[HKEY_CURRENT_USER\\Software\\T]\r\n\"a\"=\"x\"\r\n"), 1,
                  {"1 a=x<0>"});
    EXPECT_EQ(ParseRegistryText("").damagedLine, 1u);
    EXPECT_EQ(ParseRegistryText("REGEDIT4").damagedLine, 0u);
    EXPECT_EQ(ParseRegistryText("REGEDIT4  \r\n").damagedLine, 0u);
}

TEST(RegistryText, ABadLineIsToldByItsNumberAndStopsNoOther) {
    for (const char* bad : {"garbage",
                            "\"n\"",
                            "\"n\"=",
                            "\"n\"x",
                            "\"n=\"x\"",
                            "\"n\"=text",
                            "\"n\"=dword:",
                            "\"n\"=dword:g",
                            "\"n\"=dword:123456789",
                            "\"n\"=dword:1 x",
                            "\"n\"=hex",
                            "\"n\"=hex(",
                            "\"n\"=hex():01",
                            "\"n\"=hex(3:01",
                            "\"n\"=hex(123456789):01",
                            "\"n\"=hex:0g",
                            "\"n\"=hex:123",
                            "\"n\"=hex:01,",
                            "\"n\"=hex:01 02",
                            "\"n\"=hex:,01",
                            "\"n\"=hex:01,\\ 02",
                            "\"n\"=\"x\" y",
                            "\"n\"=-x",
                            "@",
                            "="}) {
        const Read read = ReadLines("\"a\"=\"x\"\r\n" + std::string(bad) + "\r\n\"b\"=\"y\"\r\n");
        SCOPED_TRACE(bad);
        ExpectDamaged(read, 5, {"1 a=x<0>", "1 b=y<0>"});
    }
}

TEST(RegistryText, ABadKeyTakesItsValuesWithIt) {
    for (const char* bad :
         {"[HKEY_CURRENT_USER\\Software\\T", "[HKEY_CURRENT_USER\\Software\\T]x", "[]", "[-]", "[\\]",
          "[Software\\T]", "[HKEY_CURRENT_USER\\\\Software\\T]", "[\\HKEY_CURRENT_USER\\Software\\T]"}) {
        const Read read = ReadLines("\"a\"=\"x\"\r\n" + std::string(bad) + "\r\n\"b\"=\"y\"\r\n");
        SCOPED_TRACE(bad);
        ExpectDamaged(read, 5, {"1 a=x<0>"});
    }
}

TEST(RegistryText, ABrokenContinuationLosesItsValueAlone) {
    ExpectDamaged(ReadLines("\"a\"=hex:01,\\\r\n\"b\"=\"y\"\r\n"), 4, {"1 b=y<0>"});
    ExpectDamaged(ReadLines("\"a\"=hex:01,\\\r\n\r\n\"b\"=\"y\"\r\n"), 4, {"1 b=y<0>"});
    ExpectDamaged(ReadLines("\"a\"=hex:01,\\\r\n02,xx\r\n\"b\"=\"y\"\r\n"), 5, {"1 b=y<0>"});
}

TEST(RegistryText, AFileThatEndsInsideAValueLosesThatValue) {
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=hex:01,02"), 5, {"1 a=x<0>"});
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=hex:01,\\\r\n"), 5, {"1 a=x<0>"});
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=dword:0000001"), 5, {"1 a=x<0>"});
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=\"tex"), 5, {"1 a=x<0>"});
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=\"quote\\\""), 5, {"1 a=x<0>"});
    ExpectDamaged(ReadLines("\"a\"=\"x\"\r\n\"n\"=\"over\r\nlines"), 5, {"1 a=x<0>"});
}

TEST(RegistryText, AWholeLastLineNeedsNoLineEnd) {
    ExpectWhole(ReadLines("\"a\"=\"x\""), {"1 a=x<0>"});
    ExpectWhole(ReadLines("\"a\"=dword:00000001"), {"4 a=<1><0><0><0>"});
    ExpectWhole(ReadBytes("REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\T]"), {});
}

TEST(RegistryText, AHalfCharacterAtTheEndIsDamage) {
    const std::string file = "\xff\xfe" + Utf16(kStart5 + "\"a\"=\"x\"\r\n");
    ExpectWhole(ReadBytes(file), {"1 a=x<0>"});
    ExpectDamaged(ReadBytes(file + "x"), 4, {"1 a=x<0>"});
}

// ---- writing ----

TEST(RegistryText, IsWrittenAsRegedit4) {
    RegistryTree tree;
    const RegistryTree::KeyPointer key = tree.Make("HKEY_CURRENT_USER\\Software\\B");
    key->Set("text", ValueType::Text, std::string("C:\\a \"b\" \xe4\0", 11));
    key->Set("", ValueType::Text, std::string("default\0", 8));
    key->Set("dword", ValueType::Dword, std::string("\x0a\0\0\x80", 4));
    key->Set("qword", ValueType::Qword, std::string("\1\0\0\0\0\0\0\0", 8));
    key->Set("bytes", ValueType::Binary, std::string(26, '\xab'));
    key->Set("empty", ValueType::Binary, "");
    key->Set("two lines", ValueType::Text, std::string("a\r\nb\0", 5));
    key->Set("open", ValueType::Text, "a");
    key->Set("short", ValueType::Dword, "a");
    key->Set("odd \"name\"\\", static_cast<ValueType>(0x1f), "a");
    tree.Make("HKEY_CURRENT_USER\\Software\\A");
    EXPECT_EQ(FormatRegistryText(tree),
              "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\A]\r\n\r\n[HKEY_CURRENT_USER\\Software\\B]\r\n"
              "\"text\"=\"C:\\\\a \\\"b\\\" \xe4\"\r\n@=\"default\"\r\n\"dword\"=dword:8000000a\r\n"
              "\"qword\"=hex(b):01,00,00,00,00,00,00,00\r\n"
              "\"bytes\"=hex:ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,"
              "\\\r\n  ab\r\n"
              "\"empty\"=hex:\r\n\"two "
              "lines\"=hex(1):61,0d,0a,62,00\r\n\"open\"=hex(1):61\r\n\"short\"=hex(4):61\r\n"
              "\"odd \\\"name\\\"\\\\\"=hex(1f):61\r\n");
}

TEST(RegistryText, AnEmptyTreeIsAHeader) {
    EXPECT_EQ(FormatRegistryText(RegistryTree()), "REGEDIT4\r\n");
}

class RegistrySample : public ::testing::TestWithParam<const char*> {
  protected:
    const std::string bytes = SampleBytes("settings/" + std::string(GetParam()));
    static Lines AllOf(const std::string& text) {
        RegistryText read = ParseRegistryText(text);
        return Dump(read.tree);
    }
};

TEST_P(RegistrySample, SurvivesWritingAndReading) {
    RegistryText text = ParseRegistryText(bytes);
    EXPECT_EQ(text.damagedLine, 0u);
    ASSERT_FALSE(Dump(text.tree).empty());
    const std::string written = FormatRegistryText(text.tree);
    RegistryText again = ParseRegistryText(written);
    EXPECT_EQ(again.damagedLine, 0u);
    EXPECT_EQ(Dump(again.tree), Dump(text.tree));
    EXPECT_EQ(FormatRegistryText(again.tree), written);
}

// Wherever a file is torn, each whole value before the tear is there and none is a false one.
TEST_P(RegistrySample, KeepsWhatStandsBeforeATear) {
    const Lines whole = AllOf(bytes);
    std::size_t kept = 0;
    std::string before;
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        RegistryText text = ParseRegistryText(std::string_view(bytes).substr(0, length));
        const std::string content = FormatRegistryText(text.tree);
        if (content == before) continue;
        before = content;
        const Lines lines = Dump(text.tree);
        ASSERT_TRUE(std::includes(whole.begin(), whole.end(), lines.begin(), lines.end())) << length;
        ASSERT_GE(lines.size(), kept) << "a value was there and is gone at " << length;
        kept = lines.size();
    }
    EXPECT_EQ(kept, whole.size());
}

INSTANTIATE_TEST_SUITE_P(Files, RegistrySample,
                         ::testing::Values("linux.reg", "wine-export.reg", "windows-export.reg",
                                           "all-forms.reg"),
                         [](const auto& sample) {
                             std::string name(sample.param);
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
                             return name;
                         });

}  // namespace
}  // namespace vardel

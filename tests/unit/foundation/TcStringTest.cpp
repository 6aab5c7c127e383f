#include "foundation/TcString.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace vardel {
namespace {

const std::string kLong = "a text that does not fit into the object itself, by far";

TEST(TcString, IsEmptyByDefaultAndNeverNull) {
    const TcString text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_STREQ(static_cast<char*>(text), "");
    EXPECT_STREQ(text.GetContent(), "");
}

TEST(TcString, KeepsTextsOfUpTo23CharactersInsideTheObject) {
    const TcString inside("12345678901234567890123");
    const char* start = reinterpret_cast<const char*>(&inside);
    EXPECT_EQ(inside.GetLength(), 23);
    EXPECT_TRUE(inside.GetContent() >= start && inside.GetContent() < start + sizeof inside);
    const TcString outside("123456789012345678901234");
    EXPECT_FALSE(outside.GetContent() >= reinterpret_cast<const char*>(&outside) &&
                 outside.GetContent() < reinterpret_cast<const char*>(&outside) + sizeof outside);
}

TEST(TcString, CopiesAreDeep) {
    for (const std::string& source : {std::string("short"), kLong}) {
        TcString first(source.c_str());
        TcString second(first);
        first += "!";
        EXPECT_EQ(std::string(second), source);
        second = first;
        first.Clear();
        EXPECT_EQ(std::string(second), source + "!");
    }
}

TEST(TcString, AssignsItselfAndPartsOfItself) {
    TcString text(kLong.c_str());
    const TcString& same = text;
    text = same;
    EXPECT_EQ(std::string(text), kLong);
    text = static_cast<const char*>(text.GetContent() + 2);
    EXPECT_EQ(std::string(text), kLong.substr(2));
    text.Set(text.GetContent() + 1, 4);
    EXPECT_EQ(std::string(text), kLong.substr(3, 4));
}

TEST(TcString, AssignsUnsignedText) {
    TcString text;
    text = reinterpret_cast<const unsigned char*>("\xe4z");
    EXPECT_EQ(text.GetLength(), 2);
    EXPECT_EQ(static_cast<unsigned char>(text.GetAt(1)), 0xe4);
}

TEST(TcString, KeepsItsHeapBufferWhileTheNewTextFits) {
    TcString text(kLong.c_str());
    const char* buffer = text.GetContent();
    text = kLong.substr(0, 40).c_str();
    EXPECT_EQ(static_cast<const char*>(text.GetContent()), buffer);
    EXPECT_EQ(std::string(text), kLong.substr(0, 40));
}

TEST(TcString, AppendsTextsAndDecimalNumbers) {
    TcString text("n=");
    text += -42;
    text += ",";
    text += 2147483647;
    EXPECT_STREQ(text.GetContent(), "n=-42,2147483647");
    text += kLong.c_str();
    EXPECT_EQ(std::string(text), "n=-42,2147483647" + kLong);
    EXPECT_EQ(text.GetLength(), static_cast<int>(16 + kLong.size()));
}

TEST(TcString, ComparesExactly) {
    EXPECT_TRUE(TcString("abc") == TcString("abc"));
    EXPECT_TRUE(TcString("abc") != TcString("abC"));
    EXPECT_TRUE(TcString("abc") == "abc");
    EXPECT_FALSE(TcString("abc") == "abcd");
    EXPECT_TRUE(TcString(kLong.c_str()) == TcString(kLong.c_str()));
    EXPECT_FALSE(TcString(kLong.c_str()) == TcString("a"));
    EXPECT_FALSE(TcString("a") == TcString(kLong.c_str()));
    EXPECT_EQ(TcString("x").Compare("x"), 0);
    EXPECT_NE(TcString("x").Compare("y"), 0);
    EXPECT_EQ(TcString("x").Compare(TcString("x")), 0);
}

// A long buffer that shrank to a short text equals the same text inside another object.
TEST(TcString, EqualsAcrossBothKindsOfBuffer) {
    TcString shrunk(kLong.c_str());
    shrunk.SetSize(6);
    EXPECT_TRUE(shrunk == TcString("a text"));
    EXPECT_TRUE(TcString("a text") == shrunk);
    EXPECT_EQ(shrunk.GetHashNum(), TcString("a text").GetHashNum());
}

// What stands behind the end of a text that was written into directly doesn't count.
TEST(TcString, IgnoresWhatLiesBehindTheEnd) {
    TcString text("0123456789");
    text.GetContent()[3] = 0;
    text.SetStrLen();
    EXPECT_TRUE(text == TcString("012"));
    EXPECT_EQ(text.GetHashNum(), TcString("012").GetHashNum());
}

TEST(TcString, FindsFirstAndLast) {
    const TcString text("one two one");
    EXPECT_EQ(text.Find("one"), 0);
    EXPECT_EQ(text.FindRev("one"), 8);
    EXPECT_EQ(text.Find("One"), -1);
    EXPECT_EQ(text.FindRev("three"), -1);
    EXPECT_EQ(text.Count("one"), 2);
    EXPECT_EQ(text.Count("o"), 3);
}

TEST(TcString, FindOfALongerTextGivesMinusOne) {
    EXPECT_EQ(TcString("ab").Find("abc"), -1);
    EXPECT_EQ(TcString("ab").FindRev("abc"), -1);
}

TEST(TcString, GetAtCountsFromOne) {
    const TcString text("C:\\folder\\");
    EXPECT_EQ(text.GetAt(1), 'C');
    EXPECT_EQ(text.GetAt(text.GetLength()), 92);
    EXPECT_EQ(text.GetAt(0), 0);
    EXPECT_EQ(text.GetAt(text.GetLength() + 1), 0);
}

TEST(TcString, CopiesLeftAndMiddleWithinTheBuffer) {
    const TcString text("hello world");
    char buffer[6];
    EXPECT_EQ(text.GetLeft(buffer, sizeof buffer, 5), 5);
    EXPECT_STREQ(buffer, "hello");
    EXPECT_EQ(text.GetMiddle(buffer, sizeof buffer, 6, 100), 5);
    EXPECT_STREQ(buffer, "world");
    EXPECT_EQ(text.GetLeft(buffer, 3, 5), 2);
    EXPECT_STREQ(buffer, "he");
    EXPECT_EQ(text.GetMiddle(buffer, sizeof buffer, 99, 1), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(text.GetMiddle(buffer, sizeof buffer, 10, 3), 1);
    EXPECT_STREQ(buffer, "d");
    EXPECT_EQ(text.GetLeft(buffer, sizeof buffer, 1), 1);
    EXPECT_STREQ(buffer, "h");
    EXPECT_EQ(text.GetLeft(buffer, sizeof buffer, 0), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(TcString, CopiesNothingIntoABufferWithoutRoom) {
    const TcString text("hello");
    char buffer[] = "xx";
    EXPECT_EQ(text.GetLeft(buffer, 0, 5), 0);
    EXPECT_EQ(text.GetMiddle(buffer, 0, 1, 5), 0);
    EXPECT_STREQ(buffer, "xx");
    EXPECT_EQ(text.GetLeft(buffer, 1, 5), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(TcString, SetTakesTheGivenBytes) {
    TcString text;
    EXPECT_TRUE(text.Set("abcdef", 3));
    EXPECT_STREQ(text.GetContent(), "abc");
    EXPECT_FALSE(text.Set("abc", -1));
    EXPECT_STREQ(text.GetContent(), "abc");
}

TEST(TcString, SetSizeCutsAndLeavesShorterTextsAlone) {
    TcString text("00:11:22:33");
    text.SetSize(8);
    EXPECT_STREQ(text.GetContent(), "00:11:22");
    text = "short";
    text.SetSize(8);
    EXPECT_STREQ(text.GetContent(), "short");
    EXPECT_TRUE(text.SetSize(5));
    EXPECT_STREQ(text.GetContent(), "short");
    EXPECT_FALSE(text.SetSize(-1));
    EXPECT_STREQ(text.GetContent(), "short");
    EXPECT_TRUE(text.SetSize(0));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(text.GetContent(), "");
}

TEST(TcString, RemoveToTheEndLeavesTheFirstCharacters) {
    TcString text("folder/file.txt");
    text.Remove(7, text.GetLength() - 7);
    EXPECT_STREQ(text.GetContent(), "folder/");
    text.Remove(0, 3);
    EXPECT_STREQ(text.GetContent(), "der/");
    text.Remove(2, 100);
    EXPECT_STREQ(text.GetContent(), "de");
}

TEST(TcString, InsertsAnywhere) {
    TcString text("ac");
    text.Insert(1, "b");
    text.Insert(0, "<");
    text.Insert(99, ">");
    EXPECT_STREQ(text.GetContent(), "<abc>");
}

TEST(TcString, ReplacesFirstOrAllWithoutRescanning) {
    TcString text("a.a.a");
    EXPECT_EQ(text.Replace("a", "aa"), 1);
    EXPECT_STREQ(text.GetContent(), "aa.a.a");
    EXPECT_EQ(text.ReplaceAll("a", "ba"), 4);
    EXPECT_STREQ(text.GetContent(), "baba.ba.ba");
    EXPECT_EQ(text.Replace("x", "y"), 0);
    EXPECT_EQ(text.ReplaceAll("", "y"), 0);
}

TEST(TcString, TrimsBlanksTabsAndLineEnds) {
    TcString text(" \t\r\nname with blanks \t\r\n");
    text.Trim();
    EXPECT_STREQ(text.GetContent(), "name with blanks");
    text = " \n ";
    text.Trim();
    EXPECT_TRUE(text.IsEmpty());
}

TEST(TcString, LowersItsLetters) {
    TcString text("PC-Anna7");
    EXPECT_TRUE(text.ToLower());
    EXPECT_STREQ(text.GetContent(), "pc-anna7");
}

TEST(TcString, TokensEndWithAnEmptyText) {
    const TcString list("a,b");
    TcString text(list);
    EXPECT_STREQ(text.Token(",", false), "a");
    EXPECT_STREQ(text.Token(",", true), "b");
    EXPECT_STREQ(text.Token(",", true), "");
    EXPECT_STREQ(text.Token(",", true), "");
    EXPECT_TRUE(text == list) << "the text stays as it was";
}

TEST(TcString, TokensSkipRunsOfDelimiters) {
    TcString text(",;first;,second,");
    std::vector<std::string> tokens;
    for (char* token = text.Token(",;", false); *token; token = text.Token(",;", true))
        tokens.push_back(token);
    EXPECT_EQ(tokens, (std::vector<std::string>{"first", "second"}));
}

TEST(TcString, ReadsDecimalNumbers) {
    EXPECT_EQ(TcString("-17 apples").GetContentAsInt(), -17);
    EXPECT_EQ(TcString("").GetContentAsInt(), 0);
    EXPECT_EQ(TcString(" \t+8.").GetContentAsInt(), 8);
}

TEST(TcString, ANumberTooGreatIsTheGreatestOneOnEverySystem) {
    for (const char* number : {"2147483647", "2147483648", "4294967297", "99999999999999999999999999"})
        EXPECT_EQ(TcString(number).GetContentAsInt(), 2147483647) << number;
    for (const char* number : {"-2147483648", "-2147483649", "-4294967297", "-99999999999999999999999999"})
        EXPECT_EQ(TcString(number).GetContentAsInt(), -2147483647 - 1) << number;
}

TEST(TcString, HandsItsBufferOutForWriting) {
    TcString text("old");
    char* buffer = text.SetNewPointer(100);
    EXPECT_EQ(text.GetLength(), 0);
    std::memset(buffer, 'x', 100);
    buffer[100] = 0;
    EXPECT_EQ(text.SetStrLen(), 100);
    EXPECT_EQ(text.GetLength(), 100);
    text = "keep";
    text.ExpandBuffer(200);
    EXPECT_STREQ(text.GetContent(), "keep");
    std::memset(text.GetContent(), 'y', 200);
    text.GetContent()[200] = 0;
    EXPECT_EQ(text.SetStrLen(), 200);
}

TEST(TcString, FindsTheEndOfWhatWasWrittenIntoTheObject) {
    for (const char byte : {'\x01', '\x02', 'a', '\x7f', '\x80', '\x81', '\xfe', '\xff'}) {
        for (std::size_t length = 0; length <= 23; ++length) {
            TcString text("a text inside object");
            // Behind the zero lies what a C function left there.
            std::memset(text.GetContent(), '\x01', 24);
            std::memset(text.GetContent(), byte, length);
            text.GetContent()[length] = 0;
            ASSERT_EQ(text.SetStrLen(), static_cast<int>(length)) << static_cast<int>(byte);
            const std::string expected(length, byte);
            ASSERT_EQ(text.GetContent(), expected);
            ASSERT_TRUE(text == TcString(expected.c_str())) << "nothing behind the end counts";
            ASSERT_EQ(text.GetHashNum(), TcString(expected.c_str()).GetHashNum());
        }
    }
}

TEST(TcString, AWrittenTextWithoutAnEndIsCutWhereTheObjectEnds) {
    TcString text;
    std::memset(text.GetContent(), 'x', 24);
    EXPECT_EQ(text.SetStrLen(), 23);
    EXPECT_STREQ(text.GetContent(), "xxxxxxxxxxxxxxxxxxxxxxx");
}

TEST(TcString, AComparisonMeetsNoMixtureOfTwoTextsThatReplaceEachOther) {
    const TcString one("aaaaaaaabbbbbbbbcccccc"), two("ddddddddeeeeeeeeffffff");
    const TcString mixtures[] = {"aaaaaaaabbbbbbbbffffff", "aaaaaaaaeeeeeeeeffffff", "ddddddddbbbbbbbbcccccc",
                                 "ddddddddeeeeeeeecccccc"};
    TcString shared(one);
    std::atomic<bool> ends{false};
    std::thread writer([&] {
        while (!ends) {
            shared = two;
            shared = one;
        }
    });
    int mixed = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (std::chrono::steady_clock::now() < end)
        for (int round = 0; round < 1000; ++round)
            for (const TcString& mixture : mixtures) mixed += shared == mixture;
    ends = true;
    writer.join();
    EXPECT_EQ(mixed, 0);
}

// The number is part of what other builds rely on; these were taken once and stay.
TEST(TcString, HashesTheSameInEveryBuild) {
    EXPECT_EQ(TcString("").GetHashNum(), 1433898575);
    EXPECT_EQ(TcString("10.0.0.1").GetHashNum(), 251362258);
    EXPECT_EQ(TcString("192.168.178.254").GetHashNum(), -174415168);
    EXPECT_EQ(TcString("a text of more than twenty-three characters").GetHashNum(), -373376633);
}

TEST(TcString, HashSpreadsConsecutiveAddresses) {
    std::vector<int> buckets(65536);
    for (int third = 0; third < 256; ++third) {
        for (int fourth = 0; fourth < 256; ++fourth) {
            const std::string address = "10.0." + std::to_string(third) + "." + std::to_string(fourth);
            const int bucket = TcString(address.c_str()).GetHashNum() & 0xffff;
            EXPECT_LE(++buckets[static_cast<std::size_t>(bucket)], 12);
        }
    }
}

}  // namespace
}  // namespace vardel

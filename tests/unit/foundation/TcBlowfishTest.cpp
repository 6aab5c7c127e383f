#include "foundation/TcBlowfish.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "platform/Types.h"

namespace vardel {
namespace {

constexpr int kBufferSize = 101;  // as the accounts page has it

// The stored form as the accounts page makes it.
std::string Encoded(const std::string& text) {
    unsigned char buffer[kBufferSize] = {};
    std::memcpy(buffer, text.data(), text.size());
    EXPECT_TRUE(TcBlowfish().Encode(buffer, static_cast<int>(text.size())));
    return reinterpret_cast<char*>(buffer);
}

std::string Decoded(const std::string& stored, bool expected = true) {
    unsigned char buffer[kBufferSize] = {};
    std::memcpy(buffer, stored.data(), stored.size());
    EXPECT_EQ(TcBlowfish().Decode(buffer, static_cast<int>(stored.size())), expected) << stored;
    return reinterpret_cast<char*>(buffer);
}

TEST(TcBlowfish, TakesBackWhatItMade) {
    for (const char* text :
         {"a", "secret", "12345678", "123456789", "p\xE4ssw\xF6rd", " leading and trailing ", "\x01\xFF\x7F"})
        EXPECT_EQ(Decoded(Encoded(text)), text);
}

TEST(TcBlowfish, StoredFormsOfEarlierBuildsStayReadable) {
    EXPECT_EQ(Encoded("secret"), "H6wrnfzlm49Ka+J+/YkJtA");
    EXPECT_EQ(Encoded("correct horse battery staple"),
              "UD9SU3j2CoA+XF3D28glJgye7ffTGUyYL7Mskyy4wetUu77F+ryYAw");
    EXPECT_EQ(Decoded("H6wrnfzlm49Ka+J+/YkJtA"), "secret");
    EXPECT_EQ(Decoded("UD9SU3j2CoA+XF3D28glJgye7ffTGUyYL7Mskyy4wetUu77F+ryYAw"),
              "correct horse battery staple");
}

TEST(TcBlowfish, AnEmptyPasswordIsStoredAsAnEmptyText) {
    EXPECT_EQ(Encoded(""), "");
    EXPECT_EQ(Decoded(""), "");
}

TEST(TcBlowfish, TheStoredFormHasItsStatedLengthAndFitsThePasswordField) {
    for (int length = 0; length <= TcBlowfish::kLongestText; ++length) {
        const std::string stored = Encoded(std::string(static_cast<std::size_t>(length), 'x'));
        EXPECT_EQ(static_cast<int>(stored.size()), TcBlowfish::EncodedLength(length));
        EXPECT_LE(stored.size(), 99u);
    }
    EXPECT_EQ(TcBlowfish::EncodedLength(50), 86);
}

TEST(TcBlowfish, WritesNothingBehindTheTerminator) {
    for (int length = 1; length <= 50; ++length) {
        unsigned char buffer[kBufferSize];
        std::memset(buffer, 'x', sizeof buffer);
        ASSERT_TRUE(TcBlowfish().Encode(buffer, length));
        const int stored = TcBlowfish::EncodedLength(length);
        EXPECT_EQ(buffer[stored], 0);
        for (int i = stored + 1; i < kBufferSize; ++i) ASSERT_EQ(buffer[i], 'x') << length;
    }
}

TEST(TcBlowfish, NothingOfTheStoredFormStaysBehindTheDecodedText) {
    const std::string stored = Encoded("secret");
    unsigned char buffer[kBufferSize] = {};
    std::memcpy(buffer, stored.data(), stored.size());
    ASSERT_TRUE(TcBlowfish().Decode(buffer, static_cast<int>(stored.size())));
    for (int i = 6; i < kBufferSize; ++i) ASSERT_EQ(buffer[i], 0) << i;
}

TEST(TcBlowfish, DecodeWritesNothingBehindTheStoredForm) {
    const std::string stored = Encoded("secret");
    unsigned char buffer[kBufferSize];
    std::memset(buffer, 'x', sizeof buffer);
    std::memcpy(buffer, stored.data(), stored.size());
    ASSERT_TRUE(TcBlowfish().Decode(buffer, static_cast<int>(stored.size())));
    EXPECT_EQ(buffer[stored.size()], 0);
    for (std::size_t i = stored.size() + 1; i < kBufferSize; ++i) ASSERT_EQ(buffer[i], 'x') << i;
}

TEST(TcBlowfish, TheLongestTextHas64Characters) {
    const std::string longest(64, 'x');
    EXPECT_EQ(Encoded(longest).size(), 96u);
    EXPECT_EQ(Decoded(Encoded(longest)), longest);
    unsigned char buffer[kBufferSize];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_FALSE(TcBlowfish().Encode(buffer, 65));
}

TEST(TcBlowfish, ATextThatIsTooLongIsNotStoredInTheClear) {
    unsigned char buffer[kBufferSize];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_FALSE(TcBlowfish().Encode(buffer, TcBlowfish::kLongestText + 1));
    EXPECT_EQ(buffer[0], 0);
    EXPECT_FALSE(TcBlowfish().Encode(buffer, -1));
    EXPECT_FALSE(TcBlowfish().Decode(buffer, -1));
}

TEST(TcBlowfish, AZeroByteEndsTheText) {
    EXPECT_EQ(Encoded(std::string("abc\0def", 7)), Encoded("abc"));
    EXPECT_EQ(Encoded(std::string("\0def", 4)), "");
}

TEST(TcBlowfish, WhatItNeverMadeGivesFalseAndAnEmptyText) {
    for (const char* stored :
         {"a", "secret", "AAAAAAAAAAAAAAAAAAAAAA", "not base64 at all: !", "AAAAAAAAAAA"})
        EXPECT_EQ(Decoded(stored, false), "");
    EXPECT_EQ(Decoded(std::string(100, 'A'), false), "");
}

TEST(TcBlowfish, EveryChangedCharacterIsNoticed) {
    const std::string stored = Encoded("administrator's password");
    for (std::size_t i = 0; i < stored.size(); ++i) {
        std::string changed = stored;
        changed[i] = changed[i] == 'A' ? 'B' : 'A';
        EXPECT_EQ(Decoded(changed, false), "");
    }
    for (std::size_t length = 1; length < stored.size(); ++length)
        EXPECT_EQ(Decoded(stored.substr(0, length), false), "");
}

TEST(TcBlowfish, SimilarPasswordsHaveNothingInCommon) {
    const std::string first = Encoded("the same start 1"), second = Encoded("the same start 2");
    ASSERT_EQ(first.size(), second.size());
    int equal = 0;
    for (std::size_t i = 0; i < first.size(); ++i) equal += first[i] == second[i];
    EXPECT_LT(equal, 8);
}

// Cheap checks in the loop; a failure names the password afterwards.
TEST(TcBlowfish, TakesBackAMillionRandomPasswords) {
    constexpr int kPasswords = 1'000'000;
    constexpr int kLongestPassword = 50;
    u64 state = 20240229;
    const auto random = [&] {
        return state = state * 6364136223846793005u + 1442695040888963407u, state >> 33;
    };
    TcBlowfish blowfish;
    int wrong = 0;
    std::string firstWrong;
    for (int i = 0; i < kPasswords; ++i) {
        const int length = static_cast<int>(random() % (kLongestPassword + 1));
        unsigned char text[kBufferSize] = {}, buffer[kBufferSize];
        const bool printable = i % 2 == 0;
        for (int at = 0; at < length; ++at)
            text[at] = static_cast<unsigned char>(printable ? ' ' + random() % 95 : 1 + random() % 255);
        std::memcpy(buffer, text, sizeof buffer);
        bool good = blowfish.Encode(buffer, length);
        const std::size_t stored = strnlen(reinterpret_cast<char*>(buffer), sizeof buffer);
        good = good && static_cast<int>(stored) == TcBlowfish::EncodedLength(length) && stored <= 99;
        good = good && blowfish.Decode(buffer, static_cast<int>(stored));
        good = good && std::memcmp(buffer, text, sizeof buffer) == 0;
        if (!good && wrong++ == 0) firstWrong = reinterpret_cast<char*>(text);
    }
    EXPECT_EQ(wrong, 0) << firstWrong;
}

}  // namespace
}  // namespace vardel

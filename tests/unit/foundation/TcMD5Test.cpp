#include "foundation/TcMD5.h"

#include <gtest/gtest.h>

#include <string>

namespace vardel {
namespace {

std::string Digest(const std::string& text) {
    TcMD5 md5;
    md5.setPlainText(text.c_str());
    return md5.getMD5Digest();
}

// RFC 1321, section A.5.
TEST(TcMD5, GivesTheDigestsOfTheStandardsTestSuite) {
    EXPECT_EQ(Digest(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Digest("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Digest("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Digest("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Digest("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(Digest("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(Digest("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

// Around the places where the padding takes one block more.
TEST(TcMD5, PadsTextsOfEveryLengthAroundABlock) {
    EXPECT_EQ(Digest(std::string(55, 'a')), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(Digest(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(Digest(std::string(63, 'a')), "b06521f39153d618550606be297466d5");
    EXPECT_EQ(Digest(std::string(64, 'a')), "014842d480b571495a4a0363793f7367");
    EXPECT_EQ(Digest(std::string(65, 'a')), "c743a45e0d2e6a95cb859adae0248435");
    EXPECT_EQ(Digest(std::string(1'000'000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
}

TEST(TcMD5, IsTheDigestOfTheEmptyTextBeforeATextIsGiven) {
    EXPECT_STREQ(TcMD5().getMD5Digest(), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(TcMD5, TakesTextsOneAfterTheOther) {
    TcMD5 md5;
    md5.setPlainText("abc");
    md5.setPlainText("a");
    EXPECT_STREQ(md5.getMD5Digest(), "0cc175b9c0f1b6a831c399e269772661");
}

TEST(TcMD5, ReadsBytesAboveAsciiAsTheyStand) {
    EXPECT_EQ(Digest("\xE4\xF6\xFC"), "768a58510fb1546c8fe8b443dee45b37");
}

}  // namespace
}  // namespace vardel

#include "capture/AddressText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

namespace vardel {
namespace {

std::string IpText(const u8 (&octets)[4]) {
    TcString text;
    text.SetWords(FormatIpAddress(octets));
    return text.GetContent();
}

std::string MacText(const u8 (&octets)[6]) {
    TcString text;
    text.SetWords(FormatMacAddress(octets));
    return text.GetContent();
}

std::string PrintedIp(const u8 (&octets)[4]) {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", octets[0], octets[1], octets[2], octets[3]);
    return text;
}

std::string PrintedMac(const u8 (&octets)[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", octets[0], octets[1], octets[2],
                  octets[3], octets[4], octets[5]);
    return text;
}

TEST(AddressText, EachOctetIsWrittenAsPrintedWhereverItStands) {
    for (unsigned value = 0; value < 256; ++value) {
        for (unsigned place = 0; place < 6; ++place) {
            u8 mac[6] = {0xa1, 0x09, 0xff, 0x00, 0x5b, 0x10};
            mac[place] = static_cast<u8>(value);
            EXPECT_EQ(MacText(mac), PrintedMac(mac));
            for (const u8 others : {u8{7}, u8{42}, u8{255}}) {
                u8 ip[4] = {others, others, others, others};
                ip[place % 4] = static_cast<u8>(value);
                EXPECT_EQ(IpText(ip), PrintedIp(ip));
            }
        }
    }
}

TEST(AddressText, ShortAndLongOctetsMix) {
    std::mt19937 random(7);
    for (int round = 0; round < 20'000; ++round) {
        u8 ip[4];
        for (u8& octet : ip) octet = static_cast<u8>(random() >> (24 + random() % 8));
        ASSERT_EQ(IpText(ip), PrintedIp(ip));
    }
}

// Tables are asked by the words themselves.
TEST(AddressText, IsTheSameWordsAsTheTextsOwn) {
    const u8 ip[4] = {192, 168, 0, 1};
    EXPECT_EQ(FormatIpAddress(ip).length, 11u);
    EXPECT_EQ(FormatIpAddress(ip).HashNum(), TcString("192.168.0.1").GetHashNum());
    const u8 mac[6] = {0, 0x11, 0x22, 0x33, 0x44, 0x55};
    EXPECT_EQ(FormatMacAddress(mac).length, 17u);
    EXPECT_EQ(FormatMacAddress(mac).HashNum(), TcString("00:11:22:33:44:55").GetHashNum());
}

}  // namespace
}  // namespace vardel

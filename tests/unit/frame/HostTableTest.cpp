#include "frame/HostTable.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

struct HostTableTest : testing::Test {
    HostRecord& Add(const char* ip) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip;
        data.arpMap.Insert(TcString(ip), host);
        return *host;
    }
    test::TestServices system;
    VardelData data{system.services};
};

TEST(PrintableText, KeepsVisibleCharacters) {
    EXPECT_EQ(PrintableText("printer-3 (2nd floor) ~\\"), "printer-3 (2nd floor) ~\\");
}

TEST(PrintableText, EscapesWhatCouldSteerATerminal) {
    EXPECT_EQ(PrintableText("a\x1b[2Jb\n\r\t\x07"), "a\\x1b[2Jb\\x0a\\x0d\\x09\\x07");
    EXPECT_EQ(PrintableText("\x7f\x9b\xff"), "\\x7f\\x9b\\xff");
    EXPECT_EQ(PrintableText(std::string_view("a\0b", 3)), "a\\x00b");
}

TEST(PrintableText, KeepsLettersForWhoReadsUtf8AndNothingElse) {
    EXPECT_EQ(PrintableText("H\xf4te \xdc" "ber \xa1", true), "H\xc3\xb4te \xc3\x9c" "ber \xc2\xa1");
    EXPECT_EQ(PrintableText("\x1b\x7f\x80\x9b\x9f\xa0\xad", true), "\\x1b\\x7f\\x80\\x9b\\x9f\\xa0\\xad");
}

TEST(FormatHostTable, AlignsColumnsByCharactersNotBytes) {
    HostRow accented{}, plain{};
    accented.name = "h\xc3\xb4te";
    plain.name = "h4te";
    accented.os = plain.os = "os";
    std::string table = FormatHostTable({accented, plain});
    table.erase(0, table.find('\n') + 1);
    const std::string first = table.substr(0, table.find('\n')), second = table.substr(table.find('\n') + 1);
    EXPECT_EQ(first.find("os"), second.find("os") + 1) << table;
}

TEST_F(HostTableTest, AnEmptyTableIsItsHeadingAlone) {
    EXPECT_EQ(FormatHostTable(CollectHosts(data)), "IP  MAC  Vendor  Name  Device  OS  Trust  Last seen\n");
}

TEST_F(HostTableTest, ShowsEachFieldInItsColumn) {
    HostRecord& host = Add("10.0.0.5");
    host.mac = "00:11:22:33:44:55";
    host.vendor = "Acme Cards";
    host.hostName = "desk";
    host.friendlyName = "Hall";
    host.os = "Windows XP";
    host.lastSeenText = "12:34:56";
    host.trustState = TrustState::Distrusted;
    EXPECT_EQ(FormatHostTable(CollectHosts(data)),
              "IP        MAC                Vendor      Name  Device  OS          Trust       Last seen\n"
              "10.0.0.5  00:11:22:33:44:55  Acme Cards  desk  Hall    Windows XP  distrusted  12:34:56\n");
}

TEST_F(HostTableTest, SortsByTheNumberOfTheAddress) {
    Add("10.0.0.10");
    Add("192.168.0.1");
    Add("10.0.0.9");
    Add("9.255.255.255");
    std::vector<std::string> order;
    for (const HostRow& row : CollectHosts(data)) order.push_back(row.ip);
    EXPECT_EQ(order, (std::vector<std::string>{"9.255.255.255", "10.0.0.9", "10.0.0.10", "192.168.0.1"}));
}

TEST_F(HostTableTest, EachOctetCountsForMoreThanAllBehindIt) {
    const std::vector<std::string> sorted{"10.0.0.255", "10.0.1.0",       "10.0.255.255",
                                          "10.1.0.0",   "10.255.255.255", "11.0.0.0"};
    for (const std::string& ip : sorted) Add(ip.c_str());
    std::vector<std::string> order;
    for (const HostRow& row : CollectHosts(data)) order.push_back(row.ip);
    EXPECT_EQ(order, sorted);
}

TEST_F(HostTableTest, LinesEndWithoutBlanks) {
    Add("10.0.0.5");
    Add("10.0.0.6").lastSeenText = "12:34:56";
    const std::string table = FormatHostTable(CollectHosts(data));
    EXPECT_EQ(table.find(" \n"), std::string::npos);
    EXPECT_NE(table.find("unknown\n"), std::string::npos);
}

TEST_F(HostTableTest, TextOfTheNetworkIsMadePrintable) {
    Add("10.0.0.5").hostName = "evil\x1b]0;owned\x07";
    EXPECT_EQ(CollectHosts(data)[0].name, "evil\\x1b]0;owned\\x07");
}

}  // namespace
}  // namespace vardel

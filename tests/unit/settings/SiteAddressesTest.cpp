#include "settings/SiteAddresses.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {
namespace {

const std::string kDefaultServer = SiteAddresses{}.updateServer;

std::string ServerOf(const std::string& value) {
    return ParseSiteAddresses("[Addresses]\nUpdateServer=" + value + "\n").updateServer;
}

void ExpectDefaults(const SiteAddresses& addresses) {
    EXPECT_EQ(addresses.updateServer, "https://update.vardelwatch.example");
    EXPECT_EQ(addresses.makerSite, "https://www.vardelwatch.example");
    EXPECT_EQ(addresses.helpSite, "https://help.vardelwatch.example");
}

TEST(SiteAddresses, HaveDefaults) {
    ExpectDefaults(ParseSiteAddresses(""));
    ExpectDefaults(ParseSiteAddresses("[Addresses]\n"));
}

TEST(SiteAddresses, EachIsReadByItsName) {
    const SiteAddresses addresses = ParseSiteAddresses(
        "[Addresses]\r\nUpdateServer=http://a\r\nMakerSite=https://b/c\r\nHelpSite=http://d:81");
    EXPECT_EQ(addresses.updateServer, "http://a");
    EXPECT_EQ(addresses.makerSite, "https://b/c");
    EXPECT_EQ(addresses.helpSite, "http://d:81");
}

TEST(SiteAddresses, BlanksCommentsAndLettersDoNotMatter) {
    const SiteAddresses addresses = ParseSiteAddresses(
        "; a comment\n# another\n\n  [ ADDRESSES ]  \n;UpdateServer=http://no\n\tupdateserver \t=  http://a  \n"
        "MAKERSITE=http://b?x=y\nUnknown=http://c\nno value\n=\n");
    EXPECT_EQ(addresses.updateServer, "http://a");
    EXPECT_EQ(addresses.makerSite, "http://b?x=y");
    EXPECT_EQ(addresses.helpSite, SiteAddresses{}.helpSite);
}

TEST(SiteAddresses, OtherSectionsDoNotCount) {
    ExpectDefaults(ParseSiteAddresses("UpdateServer=http://a\n[Other]\nUpdateServer=http://b\n[Addresses\nHelpSite=http://c"));
    EXPECT_EQ(ParseSiteAddresses("[Other]\n[Addresses]\nUpdateServer=http://a\n[Other]\nUpdateServer=http://b").updateServer,
              "http://a");
}

TEST(SiteAddresses, TheLastUsableValueHolds) {
    EXPECT_EQ(ServerOf("http://a\nUpdateServer=http://b\nUpdateServer=ftp://c"), "http://b");
}

TEST(SiteAddresses, SlashesAtTheEndGo) {
    EXPECT_EQ(ServerOf("http://a/"), "http://a");
    EXPECT_EQ(ServerOf("HTTP://a/b//"), "HTTP://a/b");
}

TEST(SiteAddresses, AValueThatIsNoWebAddressLeavesTheDefault) {
    for (const char* value : {"", "a", "a.example", "http://", "http:///", "https:", "file:///etc/passwd", "ftp://a",
                              "javascript:alert(1)", "C:\\calc.exe", "\\\\server\\share\\a.exe", "http://a b",
                              "http://a\tb", "http://a\"b", "http://a'b", "http://a`b", "http://a\\b",
                              "http://a\x01", "http://\xe4", "http://a\x7f"})
        EXPECT_EQ(ServerOf(value), kDefaultServer) << value;
    EXPECT_EQ(ServerOf("http://a" + std::string(1, '\0') + "b"), kDefaultServer);
    EXPECT_EQ(ServerOf("http://" + std::string(2000, 'a')), kDefaultServer);
    EXPECT_EQ(ServerOf("http://" + std::string(1000, 'a')), "http://" + std::string(1000, 'a'));
}

class SiteAddressFile : public testing::Test {
  protected:
    SiteAddressFile() { folders.programPath = folder.Path("vardelwatch"); }
    const TestFolder folder;
    ScriptedFolders folders;
};

TEST_F(SiteAddressFile, LiesBesideTheProgram) {
    ExpectDefaults(ReadSiteAddresses(folders));
    folder.Write("vardelwatch.ini", "[Addresses]\nHelpSite=http://help\n");
    EXPECT_EQ(ReadSiteAddresses(folders).helpSite, "http://help");
    folder.Write("vardelwatch.ini", "[Addresses]\nHelpSite=http://other\n");
    EXPECT_EQ(ReadSiteAddresses(folders).helpSite, "http://other");
}

TEST_F(SiteAddressFile, IsNotLookedForWhereTheProgramIsUnknown) {
    folder.Write("vardelwatch.ini", "[Addresses]\nHelpSite=http://help\n");
    folders.programPath = "";
    ExpectDefaults(ReadSiteAddresses(folders));
    folders.programPath = "vardelwatch";
    ExpectDefaults(ReadSiteAddresses(folders));
}

TEST_F(SiteAddressFile, AFolderOfItsNameIsNoFile) {
    folder.Write("vardelwatch.ini/file", "x");
    ExpectDefaults(ReadSiteAddresses(folders));
}

TEST_F(SiteAddressFile, OneThatIsTooLargeIsLeftUnread) {
    const std::string text = "[Addresses]\nHelpSite=http://help\n;";
    folder.Write("vardelwatch.ini", text + std::string(64 * 1024 - text.size(), 'x'));
    EXPECT_EQ(ReadSiteAddresses(folders).helpSite, "http://help");
    folder.Write("vardelwatch.ini", text + std::string(64 * 1024 + 1 - text.size(), 'x'));
    ExpectDefaults(ReadSiteAddresses(folders));
}

TEST_F(SiteAddressFile, AnyBytesAreReadUnharmed) {
    std::string bytes = "[Addresses]\n";
    for (int i = 0; i < 4096; ++i) bytes += static_cast<char>(i * 37);
    for (std::size_t size = 0; size <= bytes.size(); size += 7) ParseSiteAddresses(bytes.substr(0, size));
    folder.Write("vardelwatch.ini", bytes + "\nHelpSite=http://help\n");
    EXPECT_EQ(ReadSiteAddresses(folders).helpSite, "http://help");
}

}  // namespace
}  // namespace vardel::test

#include "frame/ReportGenerator.h"

#include <gtest/gtest.h>


#include "frame/ReportDocument.h"
#include "tests/unit/support/ReportLan.h"
#include "tests/unit/support/ScriptedEvents.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

constexpr char kRow[] = "%VDL_HOST_NAME%|%VDL_HOST_IP%|%VDL_HOST_MAC%|%VDL_HOST_OS%|%VDL_HOST_VENDOR%\n";

std::string Block(const std::string& name, const std::string& body) {
    return "<VDL_" + name + " - begin>" + body + "<VDL_" + name + " - end>";
}

struct FormedReport : testing::Test {
    std::string Form(const std::string& text) { return FormReport(text, lan.data); }
    test::ReportLan lan;
};

TEST_F(FormedReport, HostsAreCountedByTheirTrust) {
    for (const u32 trust : {1, 1, 1, 2, 2, 0, 7})
        lan.Add({.ip = "10.0.0." + std::to_string(lan.data.arpMap.Count()), .trust = trust});
    lan.Watch("router", "10.0.0.1", true);
    EXPECT_EQ(Form("%VDL_HOSTCOUNT% %VDL_HOSTCOUNT_TRUST% %VDL_HOSTCOUNT_DISTRUST% %VDL_HOSTCOUNT_UNKNOWN% "
                   "%VDL_HOSTCOUNT_WATCHED%"),
              "7 3 2 1 1");
}

TEST_F(FormedReport, ATemplateWithoutMarkersIsCopiedWithItsCounts) {
    lan.Add({.ip = "10.0.0.5"});
    EXPECT_EQ(Form("Hosts: %VDL_HOSTCOUNT%\n%VDL_HOST_IP%\n"), "Hosts: 1\n%VDL_HOST_IP%\n");
}

TEST_F(FormedReport, EachBlockTakesItsHosts) {
    lan.Add({.name = "t", .ip = "1", .trust = 1});
    lan.Add({.name = "d", .ip = "2", .trust = 2});
    lan.Add({.name = "u", .ip = "3", .trust = 0});
    lan.Add({.name = "x", .ip = "4", .trust = 9});
    const std::string name = "%VDL_HOST_NAME%";
    EXPECT_EQ(Form(Block("HOSTS_UNKNOWN", name) + "," + Block("HOSTS_DISTRUSTED", name) + "," +
                   Block("HOSTS_TRUSTED", name) + "," + Block("HOSTS", name)),
              "u,d,t,tdux");
}

TEST_F(FormedReport, ARowHoldsTheFieldsOfItsHost) {
    lan.Add({.name = "desk", .ip = "10.0.0.5", .mac = "00:11:22:33:44:55", .os = "Windows XP", .vendor = "Acme"});
    EXPECT_EQ(Form(Block("HOSTS", kRow)), "desk|10.0.0.5|00:11:22:33:44:55|Windows XP|Acme\n");
}

TEST_F(FormedReport, AnEmptyFieldIsOneBlank) {
    lan.Add({.ip = "10.0.0.5"});
    EXPECT_EQ(Form(Block("HOSTS", kRow)), " |10.0.0.5| | | \n");
}

TEST_F(FormedReport, AnUnknownVendorIsOneBlankWhateverTheRecordHolds) {
    lan.Add({.name = "a", .ip = "b", .mac = "c", .os = "d", .vendor = "Unknown vendor", .vendorUnknown = true});
    EXPECT_EQ(Form(Block("HOSTS", kRow)), "a|b|c|d| \n");
}

TEST_F(FormedReport, AnEmptyTableRemovesTheHostBlocksAndCountsNothing) {
    EXPECT_EQ(Form("%VDL_HOSTCOUNT%%VDL_HOSTCOUNT_TRUST%%VDL_HOSTCOUNT_DISTRUST%%VDL_HOSTCOUNT_UNKNOWN%"
                   "%VDL_HOSTCOUNT_WATCHED%" +
                   Block("HOSTS", kRow) + Block("HOSTS_TRUSTED", kRow) + Block("HOSTS_DISTRUSTED", kRow) +
                   Block("HOSTS_UNKNOWN", kRow) + Block("HOSTS_WATCHED", kRow) + Block("SHARE_ACCESS", kRow) + "!"),
              "00000!");
}

TEST_F(FormedReport, OfTwoBlocksOfAKindTheSecondStays) {
    lan.Add({.name = "t", .ip = "1", .trust = 1});
    const std::string block = Block("HOSTS_TRUSTED", "%VDL_HOST_NAME%");
    EXPECT_EQ(Form(block + block), "t" + block);
}

TEST_F(FormedReport, WatchedHostsAreToldInEnglish) {
    lan.system.strings.texts = {{7, "in einer anderen Sprache"}};
    lan.data.languageId = 1031;
    lan.Watch("router", "10.0.0.1", true);
    lan.Watch("", "10.0.0.2", false);
    EXPECT_EQ(Form(Block("HOSTS_WATCHED", "%VDL_HOST_NAME%|%VDL_HOST_IP%|%VDL_HOST_STATE%|%VDL_HOST_OS%\n")),
              "router|10.0.0.1|Online|%VDL_HOST_OS%\n |10.0.0.2|Offline|%VDL_HOST_OS%\n");
}

TEST_F(FormedReport, AWatchedNameThatFillsItsFieldEndsThere) {
    lan.Watch(std::string(60, 'n'), "10.0.0.1", true);
    EXPECT_EQ(Form(Block("HOSTS_WATCHED", "%VDL_HOST_NAME%")), std::string(50, 'n'));
}

TEST_F(FormedReport, ShareAccessesStandInTheOrderOfTheirKeys) {
    lan.Access(7, "10.0.0.7", "music", "");
    lan.Access(-3, "10.0.0.3", "IPC$", "ann");
    EXPECT_EQ(Form(Block("SHARE_ACCESS", "%VDL_SHARE_HOST%|%VDL_SHARE_NAME%|%VDL_SHARE_USER%\n")),
              "10.0.0.3|IPC$|ann\n10.0.0.7|music| \n");
}

TEST_F(FormedReport, AnInnerBlockOfALaterKindIsExpandedInTheFirstRowAlone) {
    lan.Add({.name = "a", .ip = "1", .trust = 1});
    lan.Add({.name = "b", .ip = "2", .trust = 1});
    const std::string inner = Block("HOSTS_WATCHED", "(%VDL_HOST_STATE%)");
    lan.Watch("w", "10.0.0.1", true);
    EXPECT_EQ(Form(Block("HOSTS", "%VDL_HOST_NAME%" + inner)), "a(Online)b" + inner);
}

// Blocks of an earlier kind inside a later one's were expanded before it.
TEST_F(FormedReport, AnInnerBlockOfAnEarlierKindIsExpandedOnceForAllRows) {
    lan.Add({.name = "a", .ip = "1", .trust = 1});
    EXPECT_EQ(Form(Block("HOSTS_TRUSTED", "[" + Block("HOSTS", "%VDL_HOST_NAME%") + "]")), "[a]");
}

// Names that hold markers leave the report's own blocks alone.
TEST_F(FormedReport, AHostileNameOpensNoBlock) {
    lan.Add({.name = "<VDL_HOSTS_TRUSTED - begin>", .ip = "10.0.0.66"});
    lan.Add({.name = "%VDL_HOST_IP%", .ip = "10.0.0.67"});
    lan.Add({.name = "desk", .ip = "10.0.0.5", .trust = 1});
    EXPECT_EQ(Form(Block("HOSTS", "%VDL_HOST_NAME%\n") + Block("HOSTS_TRUSTED", "trusted %VDL_HOST_NAME%\n")),
              "<VDL_HOSTS_TRUSTED - begin>\n%VDL_HOST_IP%\ndesk\ntrusted desk\n");
}

// What happens to the fences, in order: -name when one is reset, +name when it is set.
class FenceRecorder : public test::ScriptedEvents {
  public:
    bool Reset(EventHandle event) override { return Note('-', event); }
    bool Set(EventHandle event) override { return Note('+', event); }
    std::string steps;

  private:
    bool Note(char sign, EventHandle event) {
        if (!event) return false;
        steps += sign + created[reinterpret_cast<std::uintptr_t>(event) - 1].name + " ";
        return true;
    }
};

TEST(ReportFences, TheHostTableIsTakenOnceAndTheShareListWithItsBlock) {
    FenceRecorder events;
    test::ReportLan lan(events);
    lan.data.fences.CreateAll();
    FormReport(Block("HOSTS", kRow) + Block("HOSTS_TRUSTED", kRow) + Block("SHARE_ACCESS", "x"), lan.data);
    EXPECT_EQ(events.steps, "-ReadInARPMap +ReadInARPMap -ReadShareList +ReadShareList ");
}

TEST(ReportFences, TheShareListIsLeftAloneWithoutItsBlock) {
    FenceRecorder events;
    test::ReportLan lan(events);
    lan.data.fences.CreateAll();
    FormReport("<VDL_SHARE_ACCESS - end><VDL_SHARE_ACCESS - begin>", lan.data);
    EXPECT_EQ(events.steps, "-ReadInARPMap +ReadInARPMap ");
}

TEST(ReportFilePath, IsTheTemplatesNameWithoutItsEndingInTheFolder) {
    EXPECT_EQ(ReportFilePath("C:\\app\\templates\\status.html.vdlt", "D:\\out\\", '\\'), "D:\\out\\\\status.html");
    EXPECT_EQ(ReportFilePath("/opt/app/templates/hosts.csv.vdlt", "/var/reports/", '/'), "/var/reports//hosts.csv");
}

TEST(ReportFilePath, CutsFiveCharactersWhateverTheyAre) {
    EXPECT_EQ(ReportFilePath("/templates/status.data", "/out", '/'), "/out/status");
    EXPECT_EQ(ReportFilePath("/templates/report", "/out", '/'), "/out/r");
}

TEST(ReportFilePath, TakesNoNoticeOfAMissingSeparator) {
    EXPECT_EQ(ReportFilePath("/templates/a.txt.vdlt", "", '/'), "/a.txt");
    EXPECT_EQ(ReportFilePath("a.txt.vdlt", "/out/", '/'), "/out/a.txt");
    EXPECT_EQ(ReportFilePath("a.txt.vdlt", "/out", '/'), "/outa.txt");
}

TEST(ReportFilePath, IsEmptyWhereNothingIsLeft) {
    EXPECT_EQ(ReportFilePath("", "/out/", '/'), "");
    EXPECT_EQ(ReportFilePath("abc", "/out/", '/'), "");
    EXPECT_EQ(ReportFilePath(".vdlt", "/out/", '/'), "");
}

struct WrittenReport : testing::Test {
    // Templates and reports in folders of their own; the reports' with the separator at its end.
    WrittenReport() {
        folder.Write("reports/kept", "");
        lan.data.settings.ReportPath = Native("reports/").c_str();
    }
    std::string Native(const std::string& name) {
        std::string path = folder.Path(name);
        for (char& character : path)
            if (character == '/') character = lan.system.folders.separator;
        return path;
    }
    void Generate(const std::string& name, const std::string& text) {
        folder.Write("templates/" + name, text);
        lan.data.settings.ReportTemplate = Native("templates/" + name).c_str();
        ReportGenerator(lan.data);
    }
    std::vector<std::string> Reports() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path("reports")))
            if (entry.path().filename() != "kept") names.push_back(entry.path().filename().string());
        return names;
    }
    test::TestFolder folder;
    test::ReportLan lan;
};

TEST_F(WrittenReport, BearsItsTemplatesName) {
    lan.Add({.name = "desk", .ip = "10.0.0.5"});
    Generate("status.html.vdlt", Block("HOSTS", "%VDL_HOST_NAME%"));
    EXPECT_EQ(folder.Read("reports/status.html"), "desk");
    EXPECT_EQ(Reports(), std::vector<std::string>{"status.html"});
}

TEST_F(WrittenReport, IsWrittenAnewEachTime) {
    Generate("status.txt.vdlt", "%VDL_HOSTCOUNT% and a long end");
    lan.Add({.ip = "10.0.0.5"});
    Generate("status.txt.vdlt", "%VDL_HOSTCOUNT%");
    EXPECT_EQ(folder.Read("reports/status.txt"), "1");
}

TEST_F(WrittenReport, KeepsTheLineEndsOfItsTemplate) {
    const std::string lines = "one\r\ntwo\r\n";
    Generate("lines.txt.vdlt", lines);
    EXPECT_EQ(folder.Read("reports/lines.txt"), lines);
}

TEST_F(WrittenReport, EndsAtAZeroByteOfItsTemplate) {
    Generate("zero.txt.vdlt", std::string("seen\0unseen", 11));
    EXPECT_EQ(folder.Read("reports/zero.txt"), "seen");
}

TEST_F(WrittenReport, IsNotThereForAMissingOrAnEmptyTemplate) {
    ReportGenerator(lan.data);
    lan.data.settings.ReportTemplate = Native("templates/gone.txt.vdlt").c_str();
    ReportGenerator(lan.data);
    Generate("empty.txt.vdlt", "");
    Generate("zero.txt.vdlt", std::string("\0behind", 7));
    EXPECT_TRUE(Reports().empty());
}

TEST_F(WrittenReport, AnEmptyTemplateLeavesTheLastReport) {
    Generate("status.txt.vdlt", "report");
    Generate("status.txt.vdlt", "");
    EXPECT_EQ(folder.Read("reports/status.txt"), "report");
}

TEST_F(WrittenReport, ATargetThatCannotBeWrittenIsNoMatter) {
    folder.Write("reports/status.txt/inside", "a folder in the report's place");
    Generate("status.txt.vdlt", "report");
    lan.data.settings.ReportPath = Native("gone/").c_str();
    Generate("other.txt.vdlt", "report");
    EXPECT_EQ(Reports(), std::vector<std::string>{"status.txt"});
    EXPECT_EQ(folder.Read("reports/status.txt/inside"), "a folder in the report's place");
}

// No text of the network has a part in where the report goes.
TEST_F(WrittenReport, ANameOfTheNetworkChoosesNoPath) {
    lan.Add({.name = "../../escape", .ip = "10.0.0.66"});
    Generate("status.txt.vdlt", Block("HOSTS", "%VDL_HOST_NAME%"));
    EXPECT_EQ(folder.Read("reports/status.txt"), "../../escape");
    EXPECT_EQ(Reports(), std::vector<std::string>{"status.txt"});
}

// Copying the document for each row would take hours here.
TEST(LargeReport, HasARowForEachOfManyHosts) {
    test::ReportLan lan;
    for (u32 i = 0; i < 65536; ++i)
        lan.Add({.name = "host" + std::to_string(i), .ip = std::to_string(i), .mac = "00:11:22:33:44:55"});
    const std::string report = FormReport(Block("HOSTS", kRow) + Block("HOSTS_UNKNOWN", kRow), lan.data);
    EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 2 * 65536);
}

}  // namespace
}  // namespace vardel

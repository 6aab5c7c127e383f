#include "frame/ReportDocument.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

using Values = std::vector<std::string_view>;

std::string Expanded(std::string_view text, ReportBlock block, const std::vector<Values>& rows) {
    ReportDocument document(text);
    document.Expand(block, [&](const auto& add) {
        for (const Values& row : rows) add(row);
    });
    return document.Text();
}

const Values kDesk = {"desk", "10.0.0.5", "00:11:22:33:44:55", "Windows XP", "Acme"};
const Values kLamp = {"lamp", "10.0.0.6", "66:77:88:99:aa:bb", "", ""};

TEST(ReportDocument, TextWithoutTagsIsCopied) {
    EXPECT_EQ(ReportDocument("<p>100 % of %nothing%</p>\r\n").Text(), "<p>100 % of %nothing%</p>\r\n");
}

TEST(ReportDocument, AZeroByteEndsTheText) {
    EXPECT_EQ(ReportDocument(std::string_view("ab\0cd", 5)).Text(), "ab");
    EXPECT_TRUE(ReportDocument(std::string_view("\0cd", 3)).IsEmpty());
}

TEST(ReportDocument, EachCountTagHasItsNumber) {
    ReportDocument document(
        "%VDL_HOSTCOUNT%/%VDL_HOSTCOUNT_TRUST%/%VDL_HOSTCOUNT_DISTRUST%/%VDL_HOSTCOUNT_UNKNOWN%/"
        "%VDL_HOSTCOUNT_WATCHED%/%VDL_HOSTCOUNT%");
    document.PutCounts({.hosts = 10, .trusted = 1, .distrusted = 2, .unknown = 3, .watched = 4});
    EXPECT_EQ(document.Text(), "10/1/2/3/4/10");
}

TEST(ReportDocument, CountTagsInsideBlocksAreReplaced) {
    ReportDocument document("<VDL_HOSTS - begin>%VDL_HOSTCOUNT% <VDL_HOSTS - end>");
    document.PutCounts({.hosts = 2});
    document.Expand(ReportBlock::Hosts, [](const auto& add) {
        add(kDesk);
        add(kLamp);
    });
    EXPECT_EQ(document.Text(), "2 2 ");
}

// The tags go one after the other over the whole text, so the first of the order gets the shared sign.
TEST(ReportDocument, TagsThatShareASignAreReplacedInTheirOrder) {
    ReportDocument document("%VDL_HOSTCOUNT_TRUST%VDL_HOSTCOUNT%");
    document.PutCounts({.hosts = 7, .trusted = 1});
    EXPECT_EQ(document.Text(), "%VDL_HOSTCOUNT_TRUST7");
    EXPECT_EQ(Expanded("<VDL_HOSTS - begin>%VDL_HOST_IP%VDL_HOST_NAME%<VDL_HOSTS - end>", ReportBlock::Hosts, {kDesk}),
              "%VDL_HOST_IPdesk");
}

TEST(ReportDocument, EachTagOfAHostBlockHasItsValue) {
    EXPECT_EQ(Expanded("a<VDL_HOSTS - begin>[%VDL_HOST_NAME%|%VDL_HOST_IP%|%VDL_HOST_MAC%|%VDL_HOST_OS%|"
                       "%VDL_HOST_VENDOR%|%VDL_HOST_NAME%]<VDL_HOSTS - end>z",
                       ReportBlock::Hosts, {kDesk, kLamp}),
              "a[desk|10.0.0.5|00:11:22:33:44:55|Windows XP|Acme|desk][lamp|10.0.0.6|66:77:88:99:aa:bb| | |lamp]z");
}

TEST(ReportDocument, TheFourHostBlocksHaveMarkersOfTheirOwn) {
    const std::pair<ReportBlock, std::string> kinds[] = {{ReportBlock::Hosts, "VDL_HOSTS"},
                                                         {ReportBlock::TrustedHosts, "VDL_HOSTS_TRUSTED"},
                                                         {ReportBlock::DistrustedHosts, "VDL_HOSTS_DISTRUSTED"},
                                                         {ReportBlock::UnknownHosts, "VDL_HOSTS_UNKNOWN"}};
    std::string all;
    for (const auto& [block, name] : kinds) all += "<" + name + " - begin>%VDL_HOST_IP%;<" + name + " - end>";
    for (const auto& [block, name] : kinds) {
        std::string expected = all;
        const std::string own = "<" + name + " - begin>%VDL_HOST_IP%;<" + name + " - end>";
        expected.replace(expected.find(own), own.size(), "10.0.0.5;10.0.0.6;");
        EXPECT_EQ(Expanded(all, block, {kDesk, kLamp}), expected);
    }
}

TEST(ReportDocument, AWatchedHostHasThreeTags) {
    EXPECT_EQ(Expanded("<VDL_HOSTS_WATCHED - begin>%VDL_HOST_NAME% %VDL_HOST_IP% %VDL_HOST_STATE%\n"
                       "<VDL_HOSTS_WATCHED - end>",
                       ReportBlock::WatchedHosts, {{"router", "10.0.0.1", "Online"}, {"", "10.0.0.2", "Offline"}}),
              "router 10.0.0.1 Online\n  10.0.0.2 Offline\n");
}

TEST(ReportDocument, AShareAccessHasThreeTags) {
    EXPECT_EQ(Expanded("<VDL_SHARE_ACCESS - begin>%VDL_SHARE_USER%@%VDL_SHARE_HOST%:%VDL_SHARE_NAME%\n"
                       "<VDL_SHARE_ACCESS - end>",
                       ReportBlock::ShareAccesses, {{"10.0.0.5", "music", "ann"}, {"10.0.0.6", "IPC$", ""}}),
              "ann@10.0.0.5:music\n @10.0.0.6:IPC$\n");
}

TEST(ReportDocument, ATagOutsideTheBlocksThatKnowItStays) {
    EXPECT_EQ(Expanded("%VDL_HOST_IP%<VDL_HOSTS_WATCHED - begin>%VDL_HOST_OS%%VDL_HOST_MAC%%VDL_HOST_VENDOR%"
                       "<VDL_HOSTS_WATCHED - end>",
                       ReportBlock::WatchedHosts, {{"router", "10.0.0.1", "Online"}}),
              "%VDL_HOST_IP%%VDL_HOST_OS%%VDL_HOST_MAC%%VDL_HOST_VENDOR%");
    EXPECT_EQ(Expanded("<VDL_HOSTS - begin>%VDL_HOST_STATE%%VDL_SHARE_USER%<VDL_HOSTS - end>", ReportBlock::Hosts,
                       {kDesk}),
              "%VDL_HOST_STATE%%VDL_SHARE_USER%");
    EXPECT_EQ(Expanded("<VDL_SHARE_ACCESS - begin>%VDL_HOST_NAME%<VDL_SHARE_ACCESS - end>", ReportBlock::ShareAccesses,
                       {{"a", "b", "c"}}),
              "%VDL_HOST_NAME%");
}

TEST(ReportDocument, ABlockWithoutRecordsVanishes) {
    EXPECT_EQ(Expanded("a<VDL_HOSTS - begin>%VDL_HOST_IP%<VDL_HOSTS - end>z", ReportBlock::Hosts, {}), "az");
}

TEST(ReportDocument, ABlockWithoutItsEndOrItsBeginStays) {
    for (const char* text : {"a<VDL_HOSTS - begin>%VDL_HOST_IP%z", "a%VDL_HOST_IP%<VDL_HOSTS - end>z"})
        EXPECT_EQ(Expanded(text, ReportBlock::Hosts, {kDesk}), text);
}

TEST(ReportDocument, AnEndAheadOfItsBeginLeavesBoth) {
    const char* text = "a<VDL_HOSTS - end>b<VDL_HOSTS - begin>%VDL_HOST_IP%<VDL_HOSTS - end>";
    EXPECT_EQ(Expanded(text, ReportBlock::Hosts, {kDesk}), text);
}

TEST(ReportDocument, RowsAreAskedForOnlyIfTheBlockIsThere) {
    ReportDocument document("<VDL_HOSTS - end><VDL_HOSTS - begin>");
    document.Expand(ReportBlock::Hosts, [](const auto&) { ADD_FAILURE(); });
    document.Expand(ReportBlock::ShareAccesses, [](const auto&) { ADD_FAILURE(); });
}

TEST(ReportDocument, OnlyTheFirstBlockOfAKindIsExpanded) {
    EXPECT_EQ(Expanded("<VDL_HOSTS_TRUSTED - begin>%VDL_HOST_IP%<VDL_HOSTS_TRUSTED - end>, "
                       "<VDL_HOSTS_TRUSTED - begin>%VDL_HOST_IP%<VDL_HOSTS_TRUSTED - end>",
                       ReportBlock::TrustedHosts, {kDesk}),
              "10.0.0.5, <VDL_HOSTS_TRUSTED - begin>%VDL_HOST_IP%<VDL_HOSTS_TRUSTED - end>");
}

TEST(ReportDocument, AnEmptyBodyWritesNothing) {
    EXPECT_EQ(Expanded("a<VDL_HOSTS - begin><VDL_HOSTS - end>z", ReportBlock::Hosts, {kDesk, kLamp}), "az");
}

TEST(ReportDocument, AnInnerBlockIsCopiedWithEachRowAndExpandedOnce) {
    ReportDocument document("<VDL_HOSTS - begin>%VDL_HOST_IP%:<VDL_HOSTS_TRUSTED - begin>(%VDL_HOST_NAME%)"
                            "<VDL_HOSTS_TRUSTED - end>;<VDL_HOSTS - end>");
    document.Expand(ReportBlock::Hosts, [](const auto& add) {
        add(kDesk);
        add(kLamp);
    });
    // The names inside were put in with the outer row already.
    document.Expand(ReportBlock::TrustedHosts, [](const auto& add) {
        add(kDesk);
        add(kDesk);
    });
    EXPECT_EQ(document.Text(),
              "10.0.0.5:(desk)(desk);10.0.0.6:<VDL_HOSTS_TRUSTED - begin>(lamp)<VDL_HOSTS_TRUSTED - end>;");
}

TEST(ReportDocument, AMarkerThatIsJoinedByAVanishingBlockCounts) {
    ReportDocument document("<VDL_HOSTS_TRU<VDL_HOSTS - begin>x<VDL_HOSTS - end>STED - begin>%VDL_HOST_IP%"
                            "<VDL_HOSTS_TRUSTED - end>");
    document.Expand(ReportBlock::Hosts, [](const auto&) {});
    document.Expand(ReportBlock::TrustedHosts, [](const auto& add) { add(kDesk); });
    EXPECT_EQ(document.Text(), "10.0.0.5");
}

TEST(ReportDocument, AValueIsNeverSearchedForTags) {
    const Values hostile = {"%VDL_HOST_MAC%", "10.0.0.66", "66:66:66:66:66:66", "%VDL_HOST_NAME%", ""};
    EXPECT_EQ(Expanded("<VDL_HOSTS - begin>%VDL_HOST_NAME%|%VDL_HOST_OS%<VDL_HOSTS - end>", ReportBlock::Hosts,
                       {hostile}),
              "%VDL_HOST_MAC%|%VDL_HOST_NAME%");
    // Nor does it make one with what stands beside it.
    const Values sign = {"%", "10.0.0.66", "", "", ""};
    EXPECT_EQ(Expanded("<VDL_HOSTS - begin>%VDL_HOST_NAME%VDL_HOST_IP%<VDL_HOSTS - end>", ReportBlock::Hosts, {sign}),
              "%VDL_HOST_IP%");
}

TEST(ReportDocument, AValueIsNeverSearchedForMarkers) {
    ReportDocument document("<VDL_HOSTS - begin>%VDL_HOST_NAME%\n<VDL_HOSTS - end>"
                            "<VDL_HOSTS_WATCHED - begin>%VDL_HOST_IP%<VDL_HOSTS_WATCHED - end>!");
    document.Expand(ReportBlock::Hosts, [](const auto& add) {
        add(Values{"<VDL_HOSTS_WATCHED - begin>", "10.0.0.66", "", "", ""});
        add(Values{"<VDL_HOSTS_WATCHED - end>", "10.0.0.67", "", "", ""});
        add(kDesk);
    });
    document.Expand(ReportBlock::WatchedHosts, [](const auto& add) { add(Values{"router", "10.0.0.1", "Online"}); });
    EXPECT_EQ(document.Text(), "<VDL_HOSTS_WATCHED - begin>\n<VDL_HOSTS_WATCHED - end>\ndesk\n10.0.0.1!");
}

TEST(ReportDocument, AZeroByteEndsAValue) {
    EXPECT_EQ(Expanded("<VDL_HOSTS - begin>%VDL_HOST_NAME%.<VDL_HOSTS - end>", ReportBlock::Hosts,
                       {{std::string_view("a\0b", 3), "", "", "", ""}}),
              "a.");
}

}  // namespace
}  // namespace vardel

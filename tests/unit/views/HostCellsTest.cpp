#include "views/HostCells.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

constexpr HostColumn kAllColumns[] = {HostColumn::Trust,      HostColumn::Ip,   HostColumn::Mac,
                                      HostColumn::LastPacket, HostColumn::Name, HostColumn::Vendor,
                                      HostColumn::Information};

struct HostCells : testing::Test {
    HostCells() {
        system.strings.texts = {
            {92, "Access denied"}, {93, "Access blocked"}, {157, "No administrative Account available"}};
    }
    std::string Text(HostColumn column) { return HostCellText(host, column, data, nullptr).GetContent(); }
    test::TestServices system;
    VardelData data{system.services};
    HostRecord host;
};

TEST_F(HostCells, EachColumnHasItsTitleAndWidth) {
    const u32 titles[] = {1, 2, 3, 4, 5, 6, 7};
    const int widths[] = {25, 100, 100, 80, 200, 200, 250};
    for (int i = 0; i < kHostColumns; ++i) {
        EXPECT_EQ(FormOf(kAllColumns[i]).titleId, titles[i]);
        EXPECT_EQ(FormOf(kAllColumns[i]).width, widths[i]);
    }
}

TEST_F(HostCells, DigitsOfTheSettingShowColumns) {
    const auto shown = [](i32 setting) {
        std::string columns;
        for (int i = 0; i < kHostColumns; ++i) columns += IsColumnShown(kAllColumns[i], setting) ? '1' : '0';
        return columns;
    };
    EXPECT_EQ(shown(0), "1100000");
    EXPECT_EQ(shown(11111), "1111111");
    EXPECT_EQ(shown(10000), "1110000");
    EXPECT_EQ(shown(1000), "1101000");
    EXPECT_EQ(shown(100), "1100100");
    EXPECT_EQ(shown(10), "1100010");
    EXPECT_EQ(shown(1), "1100001");
    EXPECT_EQ(shown(700), "1100100");
    EXPECT_EQ(shown(200000), "1110000");
}

TEST_F(HostCells, PlainColumnsShowTheirField) {
    host.ip = "10.0.0.5";
    host.mac = "00:11:22:33:44:55";
    host.lastSeenText = "12:34:56";
    host.vendor = "Unknown vendor";
    EXPECT_EQ(Text(HostColumn::Trust), "");
    EXPECT_EQ(Text(HostColumn::Ip), "10.0.0.5");
    EXPECT_EQ(Text(HostColumn::Mac), "00:11:22:33:44:55");
    EXPECT_EQ(Text(HostColumn::LastPacket), "12:34:56");
    EXPECT_EQ(Text(HostColumn::Vendor), "Unknown vendor");
}

TEST_F(HostCells, TheVendorOfAReportIsNothingWhileItIsUnknown) {
    host.vendor = "Acme";
    EXPECT_TRUE(KnownVendor(host).IsEmpty());
    host.vendorUnknown = 0;
    EXPECT_STREQ(KnownVendor(host).GetContent(), "Acme");
}

TEST_F(HostCells, NamesHaveAnOrderOfPreference) {
    host.hostName = "host";
    host.friendlyName = "device";
    EXPECT_EQ(Text(HostColumn::Name), "host");
    host.nameUnresolved = 1;
    EXPECT_EQ(Text(HostColumn::Name), "device");
    host.friendlyName = "";
    EXPECT_EQ(Text(HostColumn::Name), "host");
    host.displayName = "shown";
    EXPECT_EQ(Text(HostColumn::Name), "shown");
}

TEST_F(HostCells, InformationIsTheSystemOrHowTheInspectionWent) {
    host.os = "Windows XP";
    const std::pair<i32, std::string> texts[] = {{999, " "},
                                                 {0, " "},
                                                 {100, "Access denied"},
                                                 {200, "Access blocked"},
                                                 {300, "No administrative Account available"}};
    for (const auto& [status, text] : texts) {
        host.wmiStatus = status;
        EXPECT_EQ(Text(HostColumn::Information), text) << status;
    }
    host.osFromBrowse = 1;
    EXPECT_EQ(Text(HostColumn::Information), "Windows XP");
    host.osFromBrowse = 0;
    host.wmiOsKnown = 1;
    EXPECT_EQ(Text(HostColumn::Information), "Windows XP");
}

TEST_F(HostCells, TextsComeFromTheViewsLanguage) {
    int module = 0;
    const auto language = reinterpret_cast<ModuleHandle>(&module);
    host.wmiStatus = 100;
    HostCellText(host, HostColumn::Information, data, language);
    EXPECT_EQ(system.strings.lastModule, language);
}

TEST_F(HostCells, TheTrustIconIsGreyWhileTheHostIs) {
    const std::pair<u32, int> icons[] = {{1, 0}, {2, 2}, {0, 4}};
    for (const auto& [trust, icon] : icons) {
        host.trustState = static_cast<TrustState>(trust);
        host.greyedOut = 0;
        EXPECT_EQ(HostCellIcon(host, HostColumn::Trust), icon);
        host.greyedOut = 1;
        EXPECT_EQ(HostCellIcon(host, HostColumn::Trust), icon + 1);
    }
    host.trustState = static_cast<TrustState>(3);
    EXPECT_EQ(HostCellIcon(host, HostColumn::Trust), -1);
}

TEST_F(HostCells, TheInformationIconTellsTheInspection) {
    const std::pair<i32, int> icons[] = {{999, -1}, {0, -1}, {100, 7}, {200, 8}, {300, 9}};
    for (const auto& [status, icon] : icons) {
        host.wmiStatus = status;
        EXPECT_EQ(HostCellIcon(host, HostColumn::Information), icon) << status;
    }
    host.wmiOsKnown = 1;
    EXPECT_EQ(HostCellIcon(host, HostColumn::Information), 6);
    for (const HostColumn column : {HostColumn::Ip, HostColumn::Mac, HostColumn::Name})
        EXPECT_EQ(HostCellIcon(host, column), -1);
}

TEST_F(HostCells, AStaleHostIsGreyEvenWhenItIsOffline) {
    EXPECT_EQ(HostRowColor(host, true), kDefaultRowColor);
    host.offline = 1;
    EXPECT_EQ(HostRowColor(host, true), (RowColor{180, 0, 0}));
    EXPECT_EQ(HostRowColor(host, false), kDefaultRowColor);
    host.greyedOut = 1;
    EXPECT_EQ(HostRowColor(host, true), (RowColor{100, 100, 100}));
}

TEST_F(HostCells, GroupsFollowTheTrust) {
    EXPECT_EQ(HostGroup(TrustState::Trusted), 1);
    EXPECT_EQ(HostGroup(TrustState::Distrusted), 2);
    EXPECT_EQ(HostGroup(TrustState::Unknown), 3);
    EXPECT_EQ(HostGroupTitleId(1), 500u);
    EXPECT_EQ(HostGroupTitleId(2), 501u);
    EXPECT_EQ(HostGroupTitleId(3), 502u);
}

TEST_F(HostCells, TheFilterHidesByTrust) {
    const auto hidden = [](i32 filter, bool hideTrusted) {
        std::string answer;
        for (const TrustState trust : {TrustState::Trusted, TrustState::Distrusted, TrustState::Unknown})
            answer += IsHostHidden(trust, filter, hideTrusted) ? '1' : '0';
        return answer;
    };
    EXPECT_EQ(hidden(7, false), "000");
    EXPECT_EQ(hidden(6, false), "100");
    EXPECT_EQ(hidden(5, false), "010");
    EXPECT_EQ(hidden(3, false), "001");
    EXPECT_EQ(hidden(7, true), "100");
}

TEST_F(HostCells, TheLastGroupCannotBeSwitchedOff) {
    EXPECT_EQ(TurnFilter(7, kShowTrusted), 6);
    EXPECT_EQ(TurnFilter(6, kShowTrusted), 7);
    EXPECT_EQ(TurnFilter(4, kShowUnknown), 4);
    EXPECT_EQ(TurnFilter(4, kShowDistrusted), 6);
}

TEST_F(HostCells, AHostIsStalePastItsMinutes) {
    EXPECT_FALSE(IsHostStale(1000, 1000 + 60, 1));
    EXPECT_TRUE(IsHostStale(1000, 1000 + 61, 1));
    EXPECT_FALSE(IsHostStale(0, 1'000'000, 1)) << "one that was never seen";
    EXPECT_TRUE(IsHostStale(1, 1'000'000, 1)) << "the first second counts";
    EXPECT_FALSE(IsHostStale(1000, 2000, 0xffffffffu));
}

struct CompareHostsTest : testing::Test {
    void Expect(HostColumn column, int order) {
        EXPECT_EQ(CompareHosts(first, second, column), order);
        EXPECT_EQ(CompareHosts(second, first, column), -order);
    }
    HostRecord first, second;
};

TEST_F(CompareHostsTest, AddressesSortAsNumbers) {
    first.ip = "10.0.0.9";
    second.ip = "10.0.0.10";
    Expect(HostColumn::Ip, -1);
    first.ip = "9.255.255.255";
    Expect(HostColumn::Ip, -1);
    first.ip = "10.0.0.10";
    Expect(HostColumn::Ip, 0);
}

TEST_F(CompareHostsTest, TextsSortWithoutRegardToCase) {
    for (const auto& [column, field] : {std::pair(HostColumn::Mac, &HostRecord::mac),
                                        std::pair(HostColumn::LastPacket, &HostRecord::lastSeenText),
                                        std::pair(HostColumn::Name, &HostRecord::hostName),
                                        std::pair(HostColumn::Vendor, &HostRecord::vendor)}) {
        first.*field = "ALPHA";
        second.*field = "beta";
        Expect(column, -1);
        second.*field = "alpha";
        Expect(column, 0);
    }
}

TEST_F(CompareHostsTest, NamesSortByTheHostsOwn) {
    first.hostName = "b";
    first.displayName = "a";
    second.hostName = "a";
    second.displayName = "b";
    Expect(HostColumn::Name, 1);
}

TEST_F(CompareHostsTest, TrustSortsByItsNumber) {
    first.trustState = TrustState::Trusted;
    second.trustState = TrustState::Distrusted;
    Expect(HostColumn::Trust, -1);
    second.trustState = TrustState::Unknown;
    Expect(HostColumn::Trust, 1);
}

TEST_F(CompareHostsTest, InformationSortsOnlyByWhetherTheInspectionToldIt) {
    first.os = "A";
    second.os = "B";
    Expect(HostColumn::Information, 0);
    second.wmiOsKnown = 1;
    Expect(HostColumn::Information, -1);
}

}  // namespace
}  // namespace vardel

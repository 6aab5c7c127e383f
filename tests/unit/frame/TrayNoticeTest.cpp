#include "frame/TrayNotice.h"

#include <gtest/gtest.h>

#include "frame/AlertSurface.h"
#include "platform/CodePage.h"

namespace vardel {
namespace {

TEST(TrayNotice, TheTooltipAloneNeedsNoBalloon) {
    const TrayNotice notice = PlanTrayNotice(kTrayProgram, "Vardelwatch", "Vardelwatch - 3 host(s) found", 6);
    EXPECT_EQ(notice.tip, "Vardelwatch - 3 host(s) found");
    EXPECT_FALSE(notice.balloon);
    EXPECT_EQ(notice.icon, 102u);
    EXPECT_TRUE(notice.wholeRecord);
    EXPECT_TRUE(notice.iconAgain) << "wanted for every call";
}

TEST(TrayNotice, AnEmptyTooltipIsTheProductsName) {
    EXPECT_EQ(PlanTrayNotice(kTrayInformation, "text", "", 6).tip, "Vardelwatch");
}

TEST(TrayNotice, BalloonsShowTheirOwnIconWhereTheSystemCan) {
    for (const u32 icon : {kTrayInformation, kTrayMacSpoofing, kTrayRemoteAccess}) {
        const TrayNotice notice = PlanTrayNotice(icon, "New host(s) found :", "tip", 6);
        EXPECT_TRUE(notice.balloon);
        EXPECT_EQ(notice.text, "New host(s) found :");
        EXPECT_EQ(notice.title, "Vardelwatch");
        EXPECT_EQ(notice.kind, BalloonKind::TrayIcon);
        EXPECT_EQ(notice.icon, icon);
        EXPECT_TRUE(notice.iconAgain);
    }
}

TEST(TrayNotice, AndOtherwiseOneOfTheSystems) {
    EXPECT_EQ(PlanTrayNotice(kTrayInformation, "a", "b", 5).kind, BalloonKind::Information);
    EXPECT_EQ(PlanTrayNotice(kTrayMacSpoofing, "a", "b", 5).kind, BalloonKind::Warning);
    const TrayNotice notice = PlanTrayNotice(kTrayRemoteAccess, "a", "b", 5);
    EXPECT_EQ(notice.kind, BalloonKind::Warning);
    EXPECT_EQ(notice.icon, 102u);
    EXPECT_FALSE(notice.iconAgain);
    EXPECT_TRUE(notice.wholeRecord);
}

TEST(TrayNotice, OldControlsHaveNoBalloonsButTheTooltipChanges) {
    for (const int major : {4, 0, kNoControlsVersion}) {
        const TrayNotice notice = PlanTrayNotice(kTrayInformation, "text", "tip", major);
        EXPECT_FALSE(notice.balloon) << major;
        EXPECT_FALSE(notice.wholeRecord) << major;
        EXPECT_FALSE(notice.iconAgain) << major;
        EXPECT_EQ(notice.tip, "tip") << major;
        EXPECT_EQ(notice.icon, 102u) << major;
    }
}

TEST(TrayNotice, AnotherIconRaisesNoBalloon) { EXPECT_FALSE(PlanTrayNotice(120, "text", "tip", 6).balloon); }

TEST(TrayNotice, TextsAreCutToTheirFields) {
    const std::string text(300, 'x');
    const TrayNotice notice = PlanTrayNotice(kTrayInformation, text.c_str(), text.c_str(), 6);
    EXPECT_EQ(notice.tip, std::string(127, 'x'));
    EXPECT_EQ(notice.text, std::string(255, 'x'));
    const std::string exact = std::string(127, 'x');
    EXPECT_EQ(PlanTrayNotice(kTrayProgram, "", exact.c_str(), 6).tip, exact);
}

TEST(TrayNotice, ATextOfTheFieldsSizeKeepsAllItsCharacters) {
    for (const std::size_t size : {126u, 127u}) {
        const std::string tip(size, 't');
        EXPECT_EQ(PlanTrayNotice(kTrayProgram, "", tip.c_str(), 6).tip, tip);
    }
    EXPECT_EQ(PlanTrayNotice(kTrayProgram, "", std::string(128, 't').c_str(), 6).tip, std::string(127, 't'));
    const std::string text(255, 'b');
    EXPECT_EQ(PlanTrayNotice(kTrayInformation, text.c_str(), "", 6).text, text);
    EXPECT_EQ(PlanTrayNotice(kTrayInformation, (text + 'b').c_str(), "", 6).text, text);
}

TEST(TrayNotice, TextsAreCutBetweenCharacters) {
    std::string text = "a";
    while (text.size() < 400) text += "\x83\x5c";  // two bytes where the code page has such characters
    for (const std::string& cut : {text, text.substr(1)}) {
        const TrayNotice notice = PlanTrayNotice(kTrayInformation, cut.c_str(), cut.c_str(), 6);
        EXPECT_EQ(notice.tip, cut.substr(0, WholeCharacters(cut, 127)));
        EXPECT_EQ(notice.text, cut.substr(0, WholeCharacters(cut, 255)));
    }
}

}  // namespace
}  // namespace vardel

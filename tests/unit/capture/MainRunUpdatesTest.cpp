#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "tests/unit/support/MainRunFixture.h"

namespace vardel {
namespace {

constexpr i64 kWeek = 604800;

TEST(UpdateCheckMoment, IsDueFromSevenDaysOn) {
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000));
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek + 1));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 - kWeek - 1));
    EXPECT_TRUE(IsUpdateCheckDue(1'700'000'000, 0));
}

TEST(UpdateCheckMoment, AMomentInTheFutureIsNotDue) {
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'001));
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, 1'700'000'000 + 10 * kWeek));
    EXPECT_FALSE(IsUpdateCheckDue(0, std::numeric_limits<i64>::max()));
}

TEST(UpdateCheckMoment, AnyStoredMomentIsTaken) {
    // The difference leaves the range of 64 bits and comes out negative.
    EXPECT_FALSE(IsUpdateCheckDue(1'700'000'000, std::numeric_limits<i64>::min()));
    EXPECT_TRUE(IsUpdateCheckDue(-1, std::numeric_limits<i64>::min()));
}

struct UpdateCheckCase {
    const char* name;
    u8 isOn;
    i64 age;  // how long the last check lies back, seconds
    bool isNoted;
};
struct MainRunUpdateCheck : test::MainRunFixture, testing::WithParamInterface<UpdateCheckCase> {};

TEST_P(MainRunUpdateCheck, NotesItsMomentWhenDue) {
    const i64 before = system.clock.now - GetParam().age;
    Stored([&](VardelSettings& settings) {
        settings.UpdateCheck = GetParam().isOn;
        settings.LastUpdateTime = before;
    });
    Run();
    if (GetParam().isOn) {
        EXPECT_EQ(StoredLastUpdateTime(), GetParam().isNoted ? system.clock.now : before);
        EXPECT_EQ(app->data.settings.LastUpdateTime, GetParam().isNoted ? system.clock.now : before);
        return;
    }
    // Switched off, the stored moment isn't even read; on again it is still the old one.
    Stored([](VardelSettings& settings) { settings.UpdateCheck = 1; });
    EXPECT_EQ(app->data.settings.LastUpdateTime, 0);
}

INSTANTIATE_TEST_SUITE_P(Moments, MainRunUpdateCheck,
                         testing::Values(UpdateCheckCase{"SevenDaysOld", 1, kWeek, true},
                                         UpdateCheckCase{"ASecondLessThanSevenDaysOld", 1, kWeek - 1, false},
                                         UpdateCheckCase{"InTheFuture", 1, -60, false},
                                         UpdateCheckCase{"SwitchedOff", 0, 10 * kWeek, false}),
                         test::RowName());

struct MainRunUpdates : test::MainRunFixture {
    MainRunUpdates() {
        system.strings.texts[218] = "New updates are available!";
        Stored([this](VardelSettings& settings) {
            settings.UpdateCheck = 1;
            settings.LastUpdateTime = system.clock.now - kWeek;
        });
    }
    void Offers(const std::string& file, const std::string& text) {
        system.http.documents["https://update.vardelwatch.example/download/versions/" + file] = text;
    }
    std::vector<std::string> Agents() const {
        std::vector<std::string> agents;
        for (const auto& fetch : system.http.fetches) agents.push_back(fetch.agent);
        return agents;
    }
};

TEST_F(MainRunUpdates, BothChecksRunBeforeAnythingElseIsMade) {
    Offers("vardelwatch.version", "9.0.0.0");
    bool madeEarlier = false;
    system.http.onFetch = [&] { madeEarlier |= record.Has("create WriteEventMapHandle manual signalled"); };
    Run();
    EXPECT_EQ(Agents(), (Lines{"Vardelwatch - UpdateCheck", "Vardelwatch - UpdateMACCheck"}));
    EXPECT_FALSE(madeEarlier);
}

TEST_F(MainRunUpdates, AFailedCheckIsNotTriedAgainForAWeekAndTellsNothing) {
    Run();
    EXPECT_EQ(Agents().size(), 2u);
    EXPECT_EQ(StoredLastUpdateTime(), system.clock.now);
    EXPECT_FALSE(record.Has("make update popup"));
    EndApp();
    Run();
    EXPECT_EQ(Agents().size(), 2u);
}

TEST_F(MainRunUpdates, ANewerProgramOrListIsToldInAPopup) {
    const Lines notice{"update time 5000",
                       "update ramp",
                       "update at the edge",
                       "update colors (220,220,220) (160,160,160) (50,105,0) (140,140,140)",
                       "update font 10 700",
                       "update show New updates are available!"};
    const std::pair<const char*, const char*> offers[] = {{"vardelwatch.version", "9.0.0.0"}, {"arplist.version", "99"}};
    for (const auto& [file, text] : offers) {
        system.http.documents.clear();
        Offers(file, text);
        frame.popupCalls.clear();
        Stored([](VardelSettings& settings) { settings.UpdateCheck = 1; });
        Run();
        EXPECT_EQ(frame.popupCalls, notice) << file;
        EndApp();
    }
}

TEST_F(MainRunUpdates, WithoutAPopupTheRunGoesOn) {
    frame.hasPopup = false;
    Offers("arplist.version", "99");
    Run();
    EXPECT_TRUE(record.Has("create app"));
}

}  // namespace
}  // namespace vardel

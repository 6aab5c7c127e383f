#include "frame/PopupFade.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

using TimerStart = PopupStep::Start;

TEST(PopupFade, TheFirstTickShowsTheWindow) {
    PopupFade fade(true);
    PopupStep expected;
    expected.showFirst = true;
    expected.opacity = 2;
    EXPECT_EQ(fade.OnTimer(10005, 5000), expected);
    expected.showFirst = false;
    expected.opacity = 4;
    EXPECT_EQ(fade.OnTimer(10005, 5000), expected);
}

TEST(PopupFade, AHundredTicksMakeItAsOpaqueAsItGetsAndThenItStays) {
    PopupFade fade(true);
    for (int tick = 1; tick < 100; ++tick) {
        const PopupStep step = fade.OnTimer(10005, 5000);
        EXPECT_EQ(step.opacity, 2 * tick);
        EXPECT_FALSE(step.kill || step.start || step.destroy);
    }
    const PopupStep last = fade.OnTimer(10005, 5000);
    EXPECT_EQ(last.opacity, 200);
    EXPECT_EQ(last.kill, 10005u);
    EXPECT_EQ(last.start, (TimerStart{10007, 5000}));
}

TEST(PopupFade, OneThatWaitsForAClickStartsNoTimer) {
    PopupFade fade(true);
    PopupStep step;
    for (int tick = 0; tick < 100; ++tick) step = fade.OnTimer(10005, -1);
    EXPECT_EQ(step.kill, 10005u);
    EXPECT_FALSE(step.start);
}

TEST(PopupFade, ItsTimeOverItFadesOut) {
    PopupFade fade(true);
    const PopupStep step = fade.OnTimer(10007, 5000);
    EXPECT_EQ(step.kill, 10007u);
    EXPECT_EQ(step.start, (TimerStart{10006, 5}));
    EXPECT_FALSE(step.opacity || step.destroy);
}

TEST(PopupFade, AHundredTicksLaterItIsGone) {
    PopupFade fade(true);
    for (int tick = 0; tick < 100; ++tick) fade.OnTimer(10005, 5000);
    for (int tick = 1; tick < 100; ++tick) {
        const PopupStep step = fade.OnTimer(10006, 5000);
        EXPECT_EQ(step.opacity, 200 - 2 * tick);
        EXPECT_FALSE(step.kill || step.start || step.destroy);
    }
    const PopupStep last = fade.OnTimer(10006, 5000);
    EXPECT_EQ(last.opacity, 0);
    EXPECT_EQ(last.kill, 10006u);
    EXPECT_TRUE(last.destroy);
}

TEST(PopupFade, ACloseRequestFadesOutAndDestroysNothingYet) {
    PopupFade fade(true);
    for (int tick = 0; tick < 30; ++tick) fade.OnTimer(10005, -1);
    const PopupStep step = fade.OnClose();
    EXPECT_EQ(step.start, (TimerStart{10006, 5}));
    EXPECT_EQ(step.kill, 10005u) << "a fade in that went on would hold it up for ever";
    EXPECT_FALSE(step.destroy);
    EXPECT_EQ(fade.OnTimer(10006, -1).opacity, 58);
}

TEST(PopupFade, WithoutLayeredWindowsItLivesItsTimeUnseen) {
    PopupFade fade(false);
    PopupStep step = fade.OnTimer(10005, 7500);
    EXPECT_FALSE(step.showFirst || step.opacity);
    EXPECT_EQ(step.kill, 10005u);
    EXPECT_EQ(step.start, (TimerStart{10007, 7500}));
    step = fade.OnTimer(10006, 7500);
    EXPECT_FALSE(step.opacity);
    EXPECT_EQ(step.kill, 10006u);
    EXPECT_TRUE(step.destroy);
}

TEST(PopupFade, ANewWindowBeginsInvisible) {
    PopupFade fade(true);
    fade.OnTimer(10005, 5000);
    fade.Begin();
    EXPECT_EQ(fade.Opacity(), 0);
    EXPECT_TRUE(fade.OnTimer(10005, 5000).showFirst);
}

TEST(PopupFade, OtherTimersAskForNothing) {
    PopupFade fade(true);
    EXPECT_EQ(fade.OnTimer(10004, 5000), PopupStep{});
    EXPECT_EQ(fade.Opacity(), 0);
}

}  // namespace
}  // namespace vardel

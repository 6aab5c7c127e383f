#include "capture/NotifyPopup.h"

#include <gtest/gtest.h>

#include "tests/unit/support/AlertRecorder.h"

namespace vardel {
namespace {

using test::Calls;

struct NotifyPopupTest : testing::Test {
    Calls calls;
    test::RecordingPopup popup{"popup", calls};
};

TEST_F(NotifyPopupTest, TheWatchPopupStandsInTheMiddleUntilClicked) {
    SetUpWatchPopup(popup);
    EXPECT_EQ(calls, (Calls{"popup in the middle", "popup font 10 700", "popup time -1"}));
}

TEST_F(NotifyPopupTest, TheSyslogPopupIsWhiteAtTheEdge) {
    SetUpSyslogPopup(popup);
    EXPECT_EQ(calls, (Calls{"popup at the edge", "popup font 10 700",
                            "popup colors (255,255,255) (255,255,255) (0,0,0) (255,110,40)", "popup time 5000"}));
}

TEST_F(NotifyPopupTest, TheUpdateNoticeSetsItsLookAndIsShown) {
    ShowUpdateNotice(popup, "New updates are available!");
    EXPECT_EQ(calls, (Calls{"popup time 5000", "popup ramp", "popup at the edge",
                            "popup colors (220,220,220) (160,160,160) (50,105,0) (140,140,140)", "popup font 10 700",
                            "popup show New updates are available!"}));
}

TEST_F(NotifyPopupTest, AnUpdateNoticeThatIsShowingIsLeftAlone) {
    popup.showing = true;
    ShowUpdateNotice(popup, "New updates are available!");
    EXPECT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls.back(), "popup font 10 700");
}

}  // namespace
}  // namespace vardel

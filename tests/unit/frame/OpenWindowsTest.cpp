#include "frame/OpenWindows.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

using AWindow = ProgramWindow;
using DeedKind = WindowDeed::Kind;

constexpr AWindow kAllWindows[] = {AWindow::Settings, AWindow::Resources, AWindow::View,
                           AWindow::EventLog, AWindow::SysLog,    AWindow::Updates};

WindowSet OpenSet(std::initializer_list<AWindow> windows) {
    WindowSet set;
    for (const AWindow window : windows) set.Add(window);
    return set;
}

TEST(OpenWindows, ACommandOpensItsWindowWhenNoneIsOpen) {
    for (const AWindow window : kAllWindows) EXPECT_EQ(OnWindowCommand({}, window), (WindowDeed{DeedKind::Open, window}));
}

TEST(OpenWindows, AnOpenViewComesForwardInsteadOfTheEventLog) {
    EXPECT_EQ(OnWindowCommand(OpenSet({AWindow::View}), AWindow::EventLog), (WindowDeed{DeedKind::BringToFront, AWindow::View}));
}

TEST(OpenWindows, AnyOpenWindowIsInTheWayOfEveryOther) {
    for (const AWindow open : kAllWindows)
        for (const AWindow asked : kAllWindows)
            EXPECT_EQ(OnWindowCommand(OpenSet({open}), asked), (WindowDeed{DeedKind::BringToFront, open}));
}

TEST(OpenWindows, TheFirstInTheirOrderComesForward) {
    WindowSet open = OpenSet({AWindow::Settings, AWindow::Resources, AWindow::View, AWindow::EventLog, AWindow::SysLog,
                           AWindow::Updates});
    for (const AWindow first : kAllWindows) {
        EXPECT_EQ(OnWindowCommand(open, AWindow::Updates), (WindowDeed{DeedKind::BringToFront, first}));
        open.Remove(first);
    }
    EXPECT_TRUE(open.IsEmpty());
}

TEST(OpenWindows, ADoubleClickBringsTheSettingsForwardAndOpensNoView) {
    EXPECT_EQ(OnTrayDoubleClick(OpenSet({AWindow::Settings})), (WindowDeed{DeedKind::BringToFront, AWindow::Settings}));
}

TEST(OpenWindows, ADoubleClickLooksAtTheViewLast) {
    const AWindow order[] = {AWindow::Settings, AWindow::Resources, AWindow::EventLog,
                            AWindow::SysLog,   AWindow::Updates,   AWindow::View};
    WindowSet open = OpenSet({AWindow::Settings, AWindow::Resources, AWindow::View, AWindow::EventLog, AWindow::SysLog,
                           AWindow::Updates});
    for (const AWindow first : order) {
        EXPECT_EQ(OnTrayDoubleClick(open), (WindowDeed{DeedKind::BringToFront, first}));
        open.Remove(first);
    }
    EXPECT_EQ(OnTrayDoubleClick(open), (WindowDeed{DeedKind::Open, AWindow::View}));
}

}  // namespace
}  // namespace vardel

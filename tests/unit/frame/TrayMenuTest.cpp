#include "frame/TrayMenu.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

struct TrayMenuTest : testing::Test {
    TrayMenuTest() {
        for (int window = 0; window < kProgramWindows; ++window) present.Add(static_cast<ProgramWindow>(window));
    }
    std::map<u32, TrayItemState> States() {
        std::map<u32, TrayItemState> states;
        for (const TrayItemState& state : TrayItemStates(data, present)) states[state.command] = state;
        return states;
    }
    std::optional<bool> Enabled(u32 command) {
        const auto states = States();
        return states.count(command) ? states.at(command).enabled : std::nullopt;
    }
    test::TestServices system;
    VardelData data{system.services};
    WindowSet present;
};

TEST_F(TrayMenuTest, WithoutAnInterfaceStartAndStopStayAsTheyStand) {
    EXPECT_EQ(States().count(40001), 0u);
    EXPECT_EQ(States().count(40002), 0u);
}

TEST_F(TrayMenuTest, StartAndStopFollowTheCaptureSwitch) {
    data.interfaceName = "eth0";
    EXPECT_EQ(Enabled(40001), true);
    EXPECT_EQ(Enabled(40002), false);
    data.capturing = 1;
    EXPECT_EQ(Enabled(40001), false);
    EXPECT_EQ(Enabled(40002), true);
}

TEST_F(TrayMenuTest, SilentModeIsMarkedWhileAlertsAreOff) {
    data.settings.UseToolTips = 1;
    EXPECT_EQ(States()[40015].checked, false);
    SwitchSilentMode(data.settings);
    EXPECT_EQ(data.settings.UseToolTips.Get(), 0);
    EXPECT_EQ(States()[40015].checked, true);
    SwitchSilentMode(data.settings);
    EXPECT_EQ(data.settings.UseToolTips.Get(), 1) << "twice restores the alerts";
    EXPECT_EQ(States()[40015].checked, false);
    EXPECT_EQ(States()[40015].enabled, std::nullopt);
}

TEST_F(TrayMenuTest, WindowsWithNothingToShowAreGrey) {
    VardelSettings& settings = data.settings;
    settings.ShareSearch = settings.UsingEventLog = settings.Syslog = 0;
    for (const u32 command : {40021u, 40027u, 40029u}) EXPECT_EQ(Enabled(command), false) << command;
    settings.ShareSearch = 1;
    EXPECT_EQ(Enabled(40021), true);
    EXPECT_EQ(Enabled(40027), false);
    settings.UsingEventLog = 1;
    EXPECT_EQ(Enabled(40027), true);
    EXPECT_EQ(Enabled(40029), false);
    settings.Syslog = 1;
    EXPECT_EQ(Enabled(40029), true);
    for (const u32 command : {40003u, 40006u, 40033u}) EXPECT_EQ(Enabled(command), true) << command;
}

TEST_F(TrayMenuTest, WindowsThatThisProgramDoesNotHaveAreGrey) {
    data.settings.ShareSearch = 1;
    present = {};
    present.Add(ProgramWindow::View);
    EXPECT_EQ(Enabled(40006), true);
    for (const u32 command : {40003u, 40021u, 40027u, 40029u, 40033u}) EXPECT_EQ(Enabled(command), false) << command;
}

TEST(TrayCommands, EachHasItsWindow) {
    const std::pair<u32, ProgramWindow> windows[] = {
        {40003, ProgramWindow::Settings}, {40006, ProgramWindow::View},   {40021, ProgramWindow::Resources},
        {40027, ProgramWindow::EventLog}, {40029, ProgramWindow::SysLog}, {40033, ProgramWindow::Updates}};
    for (const auto& [command, window] : windows) EXPECT_EQ(WindowOf(command), window) << command;
    for (const u32 command : {40001u, 40002u, 40004u, 40005u, 40011u, 40015u, 22000u})
        EXPECT_EQ(WindowOf(command), std::nullopt) << command;
}

TEST(TrayCommands, EachHasItsImage) {
    const std::map<u32, u32> expected = {{40001, 131}, {40002, 130}, {40006, 109}, {40021, 151},
                                         {40027, 163}, {40029, 168}, {40003, 126}, {40033, 221},
                                         {40005, 170}, {40011, 133}, {40004, 112}};
    std::map<u32, u32> images;
    for (const TrayImage& image : TrayImages()) images[image.command] = image.icon;
    EXPECT_EQ(images, expected);
}

TEST(TrayCommands, EachBelongsToOneOfTheMenus) {
    EXPECT_EQ(TrayMenuPartOf(21999), TrayMenuPart::Tray);
    EXPECT_EQ(TrayMenuPartOf(22000), TrayMenuPart::Language);
    EXPECT_EQ(TrayMenuPartOf(22499), TrayMenuPart::Language);
    EXPECT_EQ(TrayMenuPartOf(22500), TrayMenuPart::Tray);
    for (const u32 command : {40005u, 40033u, 40011u})
        EXPECT_EQ(TrayMenuPartOf(command), TrayMenuPart::Informations) << command;
    for (const u32 command : {40001u, 40004u, 40006u, 40015u})
        EXPECT_EQ(TrayMenuPartOf(command), TrayMenuPart::Tray) << command;
}

}  // namespace
}  // namespace vardel

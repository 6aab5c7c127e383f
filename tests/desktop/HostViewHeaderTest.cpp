// The host view's columns: which are there, sorting by them, their widths.
#include "tests/desktop/HostViewFixture.h"

namespace vardel {
namespace {

using test::HostView;

TEST_F(HostView, HiddenColumnsAreNotThere) {
    data.settings.VisibleColumns = 100;
    HostRecord& host = Knows("10.0.0.1");
    host.hostName = "nas";
    While([&] {
        EXPECT_EQ(Titles(), (std::vector<std::string>{" ", "IP - Address", "Hostname"}));
        EXPECT_EQ(Cell(LineOf("10.0.0.1"), 2), "nas");
    });
}

TEST_F(HostView, AClickOnAHeaderSortsAndEveryClickTurnsTheDirection) {
    Knows("10.0.0.10").mac = "00:00:00:00:00:01";
    Knows("10.0.0.9").mac = "00:00:00:00:00:02";
    While(
        [&] {
            ClickHeader(1);
            EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.9 10.0.0.10 ");
            ClickHeader(1);
            EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.10 10.0.0.9 ");
            ClickHeader(2);
            EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.10 10.0.0.9 ") << "ascending again, by another column";
            ClickHeader(1);
            EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.10 10.0.0.9 ");
        },
        [&] { EXPECT_FALSE(view.SortsAscending()); });
    While([&] {
        ClickHeader(1);
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.9 10.0.0.10 ") << "the direction outlives the window";
    });
}

TEST_F(HostView, HostsThatComeLaterJoinAtTheEndUntilTheNextClick) {
    Knows("10.0.0.5");
    Knows("10.0.0.9");
    While([&] {
        ClickHeader(1);
        Knows("10.0.0.7");
        Tick();
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.5 10.0.0.9 10.0.0.7 ");
        ClickHeader(1);
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.9 10.0.0.7 10.0.0.5 ");
    });
}

TEST_F(HostView, ADoubleClickOnADividerFitsTheColumn) {
    HostRecord& host = Knows("10.0.0.5");
    host.hostName = "a name that is much longer than its column";
    host.os = "an operating system";
    host.wmiOsKnown = 1;
    Knows("10.0.0.6");
    While([&] {
        const HDC dc = GetDC(List());
        const HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
        const auto extent = [&](const std::string& text) {
            SIZE size{};
            GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
            return static_cast<int>(size.cx);
        };
        const int name = extent("a name that is much longer than its column"), osText = extent("an operating system");
        SelectObject(dc, old);
        ReleaseDC(List(), dc);
        SetWidth(0, 60);
        DoubleClickDivider(0);
        EXPECT_EQ(Width(0), TcGuiTools::Scaled(25));
        DoubleClickDivider(4);
        EXPECT_EQ(Width(4), name + TcGuiTools::Scaled(16));
        for (int column = 2; column <= 6; ++column) SetWidth(column, 60);  // all of them can be seen
        DoubleClickDivider(6);
        EXPECT_EQ(Width(6), osText + TcGuiTools::Scaled(40)) << "the icon takes its place";
    });
}

TEST_F(HostView, AColumnWithoutTextsIsAsWideAsItsHeader) {
    Knows("10.0.0.5");
    While([&] {
        SendMessageA(List(), LVM_SETCOLUMNWIDTH, 2, LVSCW_AUTOSIZE_USEHEADER);
        const int header = Width(2);
        SetWidth(2, header + 60);
        DoubleClickDivider(2);
        EXPECT_EQ(Width(2), header);
    });
}

TEST_F(HostView, WidthsLastAsLongAsTheProgramWhereTheUserWantsIt) {
    data.settings.SaveColumnWidth = 1;
    While([&] { SetWidth(4, 333); });
    While([&] {
        EXPECT_EQ(Width(4), 333);
        EXPECT_EQ(Width(1), TcGuiTools::Scaled(100));
        data.settings.SaveColumnWidth = 0;
        SetWidth(4, 222);
    });
    While([&] { EXPECT_EQ(Width(4), TcGuiTools::Scaled(200)); });
    data.settings.SaveColumnWidth = 1;
    While([&] { EXPECT_EQ(Width(4), 333) << "what was kept before"; });
}

}  // namespace
}  // namespace vardel

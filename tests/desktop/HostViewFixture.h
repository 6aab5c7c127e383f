// The real host view over a host table of the test's own; steps run inside its message loop.
//
//     Knows("10.0.0.5", TrustState::Trusted);
//     While([&] { EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.5 "); });
#pragma once

#include <utility>

#include "resources/DialogIds.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/desktop/ListControl.h"
#include "tests/desktop/OpenMenu.h"
#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/ViewLan.h"
#include "toolkit/TcGuiTools.h"
#include "views/VardelViewDlg.h"

namespace vardel::test {

class HostViewFixture : public ViewLan {
  protected:
    HostViewFixture() {
        ShowAllColumns();
        system.strings.texts.insert({{92, "Access denied"},
                                     {93, "Access blocked"},
                                     {157, "No administrative Account available"},
                                     {500, "Trusted hosts"},
                                     {501, "Distrusted hosts"},
                                     {502, "Unknown hosts"}});
        data.settings.SaveViewWindow = 0;
        data.settings.ViewOfflineRed = 0;
    }

    // Opens the view, runs each step once what the step before it posted has been handled, and closes it.
    template <class... Step>
    void While(Step&&... step) {
        Steps steps;
        (steps.Then(std::forward<Step>(step)), ...);
        steps.Then([this] { SendMessageA(view.GetHwnd(), WM_CLOSE, 0, 0); });
        view.Open(data, nullptr);
        EXPECT_EQ(view.GetHwnd(), nullptr);
    }

    HWND List() { return view.GetControl(IDC_HOST_LIST); }
    HWND Header() { return HeaderOf(List()); }
    // As the window's timer does every second.
    void Tick() { SendMessageA(view.GetHwnd(), WM_TIMER, 10001, 0); }
    void Command(UINT command) { SendMessageA(view.GetHwnd(), WM_COMMAND, command, 0); }
    std::string Count() {
        TcString text;
        view.GetControlText(IDC_HOST_COUNT, text);
        return text.GetContent();
    }

    int LineCount() { return LineCountOf(List()); }
    std::string Cell(int line, int column) { return CellText(List(), line, column); }
    // Of the line whose cell in the column is `text`; -1: none.
    int LineOf(const std::string& text, int column = 1) {
        for (int line = 0; line < LineCount(); ++line)
            if (Cell(line, column) == text) return line;
        return -1;
    }
    // Addresses from the top; the headings of the groups in brackets.
    std::string Lines() {
        std::string all;
        for (int line = 0; line < LineCount(); ++line)
            all += view.List().RowOfLine(line) < 0 ? "[" + Cell(line, 0) + "] " : Cell(line, 1) + " ";
        return all;
    }
    std::vector<std::string> Titles() {
        std::vector<std::string> titles;
        const auto count = static_cast<int>(SendMessageA(Header(), HDM_GETITEMCOUNT, 0, 0));
        for (int column = 0; column < count; ++column) titles.push_back(ColumnTitle(List(), column));
        return titles;
    }
    int Width(int column) {
        return static_cast<int>(SendMessageA(List(), LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
    }
    void SetWidth(int column, int width) {
        SendMessageA(List(), LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), width);
    }

    void Select(const std::string& ip, bool on = true) {
        LVITEMA item{};
        item.state = on ? LVIS_SELECTED | LVIS_FOCUSED : 0u;
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageA(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(LineOf(ip)), reinterpret_cast<LPARAM>(&item));
    }
    int SelectedCount() { return static_cast<int>(SendMessageA(List(), LVM_GETSELECTEDCOUNT, 0, 0)); }

    // The mouse on the header, in the middle of a column or on the divider at its right.
    void ClickHeader(int column) {
        const LPARAM point = HeaderPoint(column, false);
        SendMessageA(Header(), WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageA(Header(), WM_LBUTTONUP, 0, point);
    }
    void DoubleClickDivider(int column) { SendMessageA(Header(), WM_LBUTTONDBLCLK, MK_LBUTTON, HeaderPoint(column, true)); }

    // The context menu by its key; the next step finds it open.
    void AskForMenu() { PostMessageA(List(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(List()), -1); }

    // How many pixels of a line are of a colour.
    int PixelsOf(int line, COLORREF color) {
        return PictureOf(List())->Count(color, PlaceOfLine(List(), line));
    }

    VardelViewDlg view;

  private:
    LPARAM HeaderPoint(int column, bool divider) {
        RECT place{};
        SendMessageA(Header(), HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&place));
        const LONG x = divider ? place.right - 1 : (place.left + place.right) / 2;
        return MAKELPARAM(x, (place.top + place.bottom) / 2);
    }
};

// The view as its user meets it.
struct HostView : HostViewFixture {};

}  // namespace vardel::test
